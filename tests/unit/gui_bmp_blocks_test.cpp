/* Pictures of more bytes than the loaders read at a time, and reads that give less than was asked. */
#include <gtest/gtest.h>

#include <algorithm>
#include <sys/uio.h>

#include "gui_bmp_file.h"
#include "recording_expect.h"

using gui_test::FileOnDisk;
using gui_test::Surface;
using gui_test::test_bitmap;
using gui_test::test_byte;

namespace
{

// The most bytes that one readv of the library gives; 0 = all that it asks for.
size_t largest_read_bytes = 0;
unsigned short_reads = 0;

} // namespace

extern "C" {
ssize_t __real_readv(int descriptor, const iovec *pieces, int count);

ssize_t __wrap_readv(int descriptor, const iovec *pieces, int count)
{
    if (largest_read_bytes == 0) return __real_readv(descriptor, pieces, count);
    std::vector<iovec> cut;
    size_t left = largest_read_bytes;
    for (int i = 0; i < count && left > 0; ++i) {
        cut.push_back({pieces[i].iov_base, std::min(pieces[i].iov_len, left)});
        left -= cut.back().iov_len;
    }
    short_reads += left == 0;
    return __real_readv(descriptor, cut.data(), static_cast<int>(cut.size()));
}
}

namespace
{

// More than two blocks of 64 KiB, and no whole number of them.
constexpr int32_t kWidth = 164, kHeight = 301;

void expect_pixels(const Surface &surface, int32_t file_bytes, int32_t pixel_bytes, int32_t width,
                   int32_t height)
{
    const int32_t compared = std::min(file_bytes, pixel_bytes);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            for (int32_t i = 0; i < compared; ++i)
                ASSERT_EQ(surface.bytes()[static_cast<size_t>((y * width + x) * pixel_bytes + i)],
                          test_byte(x, height - 1 - y, static_cast<uint32_t>(i)))
                    << "row " << y << " of the surface, pixel " << x;
}

} // namespace

TEST(LargeBitmap, IsConvertedWholeHoweverManyBlocksItTakes)
{
    FileOnDisk file(test_bitmap(kWidth, kHeight, 24));
    Surface surface(size_t{kWidth} * kHeight * 4);
    ASSERT_EQ(LoadBMPEx(file.path(), &surface.record, 7), 0);
    expect_pixels(surface, 3, 4, kWidth, kHeight);
}

TEST(LargeBitmap, IsCopiedWholeByThePlainLoader)
{
    for (const uint16_t bits : {uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
        SCOPED_TRACE(bits);
        const int32_t pixel_bytes = bits == 16 ? 2 : 4;
        FileOnDisk file(test_bitmap(kWidth, 2 * kHeight, bits));
        Surface surface(size_t{kWidth} * 2 * kHeight * static_cast<size_t>(pixel_bytes));
        ASSERT_EQ(LoadBMP(file.path(), &surface.record), 0);
        expect_pixels(surface, std::min(bits / 8, 3), pixel_bytes, kWidth, 2 * kHeight);
    }
}

/* A read may end anywhere: in a row, at its end, or behind a few of them. */
TEST(CopiedBitmap, GoesOnWhereAShortReadEnded)
{
    constexpr int32_t kSmallWidth = 6, kSmallHeight = 70;
    for (const uint16_t bits : {uint16_t{16}, uint16_t{32}}) {
        const int32_t pixel_bytes = bits / 8;
        FileOnDisk file(test_bitmap(kSmallWidth, kSmallHeight, bits));
        for (const size_t bytes : {1, 5, 12, 24, 30, 100}) {
            SCOPED_TRACE(std::to_string(bits) + " bits, " + std::to_string(bytes) + " bytes a read");
            largest_read_bytes = bytes;
            short_reads = 0;
            Surface surface(static_cast<size_t>(kSmallWidth * kSmallHeight * pixel_bytes));
            ASSERT_EQ(LoadBMPEx(file.path(), &surface.record, bits == 16 ? 3 : 7), 0);
            largest_read_bytes = 0;
            EXPECT_GT(short_reads, 1u);
            EXPECT_EQ(recording::printed_text(), "");
            expect_pixels(surface, pixel_bytes, pixel_bytes, kSmallWidth, kSmallHeight);
        }
    }
}
