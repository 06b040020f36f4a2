/* pixel_fill.cpp - see pixel_fill.h. */
#include "gui/pixel_fill.h"

#include <cstring>
#include <cwchar>

namespace nvrhal
{
namespace
{

// Small runs are a few 16-byte stores, two of them wherever the run begins and ends. A store across a
// 16-byte boundary costs two, so that longer runs, whose rows all branch alike, take aligned ones of
// 2, 4 and 8 bytes to get to the boundary and from it. Long runs are written by wmemset: with the
// widest stores that the processor has, which a loop does not get at the library's optimisation
// level, but fast only from a cache line's boundary on.
constexpr size_t kStore_bytes = 16;
constexpr size_t kLine_bytes = 64;
constexpr size_t kSmallRun_bytes = 128;
constexpr size_t kShortRun_bytes = 512;

static_assert(sizeof(wchar_t) == sizeof(uint32_t));

typedef uint32_t Pattern __attribute__((vector_size(kStore_bytes)));

constexpr uint32_t repeated(uint32_t pixel)
{
    return pixel;
}

constexpr uint32_t repeated(uint16_t pixel)
{
    return static_cast<uint32_t>(pixel) << 16 | pixel;
}

// First an unaligned store, then aligned ones, then one that overlaps the last of them. The pattern
// reads the same from every place where a pixel may begin.
inline void fill_small(uint8_t *at, size_t bytes, const Pattern &pattern)
{
    uint8_t *const last = at + bytes - kStore_bytes;
    std::memcpy(at, &pattern, kStore_bytes);
    at += kStore_bytes - reinterpret_cast<uintptr_t>(at) % kStore_bytes;
    for (; at + 2 * kStore_bytes <= last; at += 2 * kStore_bytes) {
        std::memcpy(at, &pattern, kStore_bytes);
        std::memcpy(at + kStore_bytes, &pattern, kStore_bytes);
    }
    if (at < last) std::memcpy(at, &pattern, kStore_bytes);
    if (at + kStore_bytes < last) std::memcpy(at + kStore_bytes, &pattern, kStore_bytes);
    std::memcpy(last, &pattern, kStore_bytes);
}

template <size_t kBytes> inline void store(uint8_t **at, const Pattern &pattern)
{
    std::memcpy(*at, &pattern, kBytes);
    *at += kBytes;
}

// Pixels begin at even addresses, so the pattern reads the same from each of these steps on.
inline void fill_short(uint8_t *at, size_t bytes, const Pattern &pattern)
{
    uint8_t *const end = at + bytes;
    const size_t to_boundary = -reinterpret_cast<uintptr_t>(at) % kStore_bytes;
    if (to_boundary & 2) store<2>(&at, pattern);
    if (to_boundary & 4) store<4>(&at, pattern);
    if (to_boundary & 8) store<8>(&at, pattern);
    for (; at + kLine_bytes <= end; at += kLine_bytes) {
#pragma GCC unroll 4
        for (size_t i = 0; i < kLine_bytes; i += kStore_bytes)
            std::memcpy(at + i, &pattern, kStore_bytes);
    }
    while (at + kStore_bytes <= end)
        store<kStore_bytes>(&at, pattern);
    const auto rest = static_cast<size_t>(end - at);
    if (rest & 8) store<8>(&at, pattern);
    if (rest & 4) store<4>(&at, pattern);
    if (rest & 2) store<2>(&at, pattern);
}

template <typename Pixel> inline void fill_run(Pixel *from, size_t count, Pixel pixel)
{
    auto *at = reinterpret_cast<uint8_t *>(from);
    size_t bytes = count * sizeof(Pixel);
    if (bytes < kStore_bytes) {
        for (; count > 0; --count)
            *from++ = pixel;
        return;
    }
    const uint32_t word = repeated(pixel);
    const Pattern pattern = {word, word, word, word};
    if (bytes <= kSmallRun_bytes) return fill_small(at, bytes, pattern);
    if (bytes <= kShortRun_bytes) return fill_short(at, bytes, pattern);

    fill_small(at, kLine_bytes, pattern);
    const size_t head = kLine_bytes - reinterpret_cast<uintptr_t>(at) % kLine_bytes;
    at += head;
    bytes -= head;
    std::wmemset(reinterpret_cast<wchar_t *>(at), static_cast<wchar_t>(word), bytes / sizeof(word));
    std::memcpy(at + bytes - sizeof(word), &word, sizeof(word)); // half a word may be left
}

// Pixels [begin, end) as far as they lie in the memory.
template <typename Pixel> void fill_inside(const PixelMemory &memory, int64_t begin, int64_t end, Pixel pixel)
{
    const int64_t total = static_cast<int64_t>(memory.size_bytes / sizeof(Pixel));
    if (begin < 0) begin = 0;
    if (end > total) end = total;
    if (begin < end)
        fill_run(static_cast<Pixel *>(memory.start) + begin, static_cast<size_t>(end - begin), pixel);
}

// Place of the rectangle's first pixel. False when it is so far off that no row can be inside.
bool place_of(const PixelMemory &memory, const PixelRect &rect, int64_t *first)
{
    constexpr int64_t kReach = int64_t{1} << 62; // above any height * stride, below any overflow
    int64_t row_start;
    if (__builtin_mul_overflow(rect.row, static_cast<int64_t>(memory.stride_px), &row_start)) return false;
    if (__builtin_add_overflow(row_start, rect.column, first)) return false;
    return *first > -kReach && *first < kReach;
}

template <typename Pixel> void fill_pixels(const PixelMemory &memory, const PixelRect &rect, Pixel pixel)
{
    if (!memory.start || rect.width < 1 || rect.height < 1) return;
    int64_t first;
    if (!place_of(memory, rect, &first)) return;

    const int64_t stride = memory.stride_px;
    if (stride == 0) return fill_inside(memory, first, first + rect.width, pixel);

    // Only the rows that touch the memory, however many the rectangle claims.
    const int64_t total = static_cast<int64_t>(memory.size_bytes / sizeof(Pixel));
    if (first >= total) return;
    const int64_t from = first + rect.width > 0 ? 0 : -(first + rect.width) / stride + 1;
    const int64_t inside = (total - first + stride - 1) / stride;
    const int64_t to = inside < rect.height ? inside : rect.height;
    if (from >= to) return;

    // Rows without a gap between them are one run.
    if (rect.width >= stride)
        return fill_inside(memory, first + from * stride, first + (to - 1) * stride + rect.width, pixel);
    // The first and the last row may be cut; those between them are whole.
    fill_inside(memory, first + from * stride, first + from * stride + rect.width, pixel);
    for (int64_t row = from + 1; row < to - 1; ++row)
        fill_run(static_cast<Pixel *>(memory.start) + (first + row * stride), static_cast<size_t>(rect.width),
                 pixel);
    if (to - 1 > from)
        fill_inside(memory, first + (to - 1) * stride, first + (to - 1) * stride + rect.width, pixel);
}

} // namespace

void fill_pixels_16(const PixelMemory &memory, const PixelRect &rect, uint16_t pixel)
{
    fill_pixels(memory, rect, pixel);
}

void fill_pixels_32(const PixelMemory &memory, const PixelRect &rect, uint32_t pixel)
{
    fill_pixels(memory, rect, pixel);
}

} // namespace nvrhal
