#include "gui/pixel_fill.h"

#include <cwchar>

namespace nvrhal
{
namespace
{

// wmemset writes 32-bit patterns with the widest stores that the processor has, which a plain loop
// over pixels does not get at the library's optimisation level.
static_assert(sizeof(wchar_t) == sizeof(uint32_t));

void fill_run(uint32_t *at, size_t count, uint32_t pixel)
{
    std::wmemset(reinterpret_cast<wchar_t *>(at), static_cast<wchar_t>(pixel), count);
}

// Two pixels a pattern, with a single one before the first 4-byte boundary and after the last.
void fill_run(uint16_t *at, size_t count, uint16_t pixel)
{
    if (count == 0) return;
    if (reinterpret_cast<uintptr_t>(at) % sizeof(uint32_t) != 0) {
        *at++ = pixel;
        --count;
    }
    const uint32_t pair = static_cast<uint32_t>(pixel) << 16 | pixel;
    std::wmemset(reinterpret_cast<wchar_t *>(at), static_cast<wchar_t>(pair), count / 2);
    if (count % 2 != 0) at[count - 1] = pixel;
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
    for (int64_t row = from; row < to; ++row)
        fill_inside(memory, first + row * stride, first + row * stride + rect.width, pixel);
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
