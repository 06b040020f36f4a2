/*
 * Rectangle fill in the four formats of the framebuffer, beside memset row by row (the same bytes,
 * one value) and pixman's fill. The memory is that of a 1920 x 1080 screen, shared as a
 * framebuffer's is.
 */
#include <cstdint>
#include <cstring>
#include <pixman.h>
#include <sys/mman.h>

#include "contest.h"
#include "nvrhal.h"

namespace bench_gui
{
namespace
{

constexpr int kWidth_px = 1920, kHeight_px = 1080;

struct Format {
    const char *name;
    void (*paint)(int32_t, int32_t, int32_t, int32_t, uint32_t);
    int pixel_bytes;
    uint32_t pixel; // that the colour gives, for pixman
};

constexpr uint32_t kColour = 0x80F0C884;
constexpr Format kFormats[] = {
    {"RGB565", drawRect_rgb16, 2, 0xF650},
    {"ARGB4444", drawRect_rgb12, 2, 0xFFC8},
    {"ARGB1555", drawRect_rgb15, 2, 0xFB30},
    {"ARGB8888", drawRect_rgb32, 4, kColour},
};

struct Rect {
    int x, y, width, height;
};

// A whole screen, a window, a menu entry at an odd column, a button, a cursor.
constexpr Rect kRects[] = {
    {0, 0, 1920, 1080}, {100, 100, 800, 600}, {333, 77, 401, 40}, {641, 400, 200, 200}, {15, 15, 32, 32},
};

void compare(FILE *report, uint8_t *memory, const Format &format, const Rect &rect)
{
    const int stride = kWidth_px * format.pixel_bytes;
    const auto row_bytes = static_cast<size_t>(rect.width * format.pixel_bytes);
    uint8_t *first = memory + rect.y * stride + rect.x * format.pixel_bytes;
    std::vector<Contestant> contestants = {
        {"nvrhal", [&] { format.paint(rect.x, rect.y, rect.width, rect.height, kColour); }},
        {"memset",
         [&] {
             uint8_t *row = first;
             for (int y = 0; y < rect.height; ++y, row += stride)
                 std::memset(row, 0x5A, row_bytes);
         }},
        {"pixman",
         [&] {
             pixman_fill(reinterpret_cast<uint32_t *>(memory), stride / 4, format.pixel_bytes * 8, rect.x,
                         rect.y, rect.width, rect.height, format.pixel);
         }},
    };
    const double bytes = static_cast<double>(row_bytes) * rect.height;
    run(contestants, 40, static_cast<int>(4e6 / bytes) + 1);
    const double own = contestants[0].best_s;
    std::fprintf(report, "%-9s %4d x %-4d at %3d,%-3d", format.name, rect.width, rect.height, rect.x, rect.y);
    for (const Contestant &contestant : contestants)
        std::fprintf(report, "  %s %6.1f GB/s", contestant.name.c_str(), bytes / contestant.best_s / 1e9);
    std::fprintf(report, "  | of memset %.2f, of pixman %.2f\n", contestants[1].best_s / own,
                 contestants[2].best_s / own);
}

} // namespace

void compare_fills(FILE *report)
{
    const size_t size = size_t{kWidth_px} * kHeight_px * 4;
    void *memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return;
    std::memset(memory, 0, size);
    g_osd_info.mapped_address = memory;
    g_osd_info.mapped_length = static_cast<uint32_t>(size);
    for (const Format &format : kFormats) {
        g_osd_info.fixed.line_length = static_cast<uint32_t>(kWidth_px * format.pixel_bytes);
        for (const Rect &rect : kRects)
            compare(report, static_cast<uint8_t *>(memory), format, rect);
    }
    g_osd_info.mapped_address = nullptr;
    munmap(memory, size);
}

} // namespace bench_gui
