/* BMP files as rows: those that end early, and rows that go to their places however many are read at once. */
#include <gtest/gtest.h>

#include <algorithm>

#include "gui_bmp_file.h"
#include "recording_expect.h"

using gui_test::BmpFile;
using gui_test::FileOnDisk;
using gui_test::Surface;
using gui_test::test_bitmap;
using gui_test::test_byte;

// What is there is loaded: the lower rows come first in the file.
TEST(ShortBitmap, FillsTheRowsThatItHas)
{
    BmpFile bitmap = test_bitmap(4, 3, 24);
    bitmap.pixels.resize(12 + 7); // the lowest row, two pixels and a byte of the next
    FileOnDisk file(bitmap);
    for (bool converted : {false, true}) {
        recording::forget_printed();
        Surface surface(4 * 3 * 4);
        testing::internal::CaptureStderr();
        EXPECT_EQ(converted ? LoadBMPEx(file.path(), &surface.record, 7)
                            : LoadBMP(file.path(), &surface.record),
                  0);
        EXPECT_EQ(testing::internal::GetCapturedStderr().rfind("fread:: ", 0), 0u);
        EXPECT_PRINTED_AS_ERROR("load_bmp.c", converted ? "fread (3*12)error!line:#" : "fread error!line:#");
        const std::vector<uint8_t> &bytes = surface.bytes();
        EXPECT_EQ(bytes[32], test_byte(0, 0, 0));
        EXPECT_EQ(bytes[32 + 12], test_byte(3, 0, 0));
        EXPECT_EQ(bytes[16], test_byte(0, 1, 0));
        EXPECT_EQ(bytes[20], test_byte(1, 1, 0));
        for (size_t i = 24; i < 32; ++i)
            EXPECT_EQ(bytes[i], Surface::kOld);
        for (size_t i = 0; i < 16; ++i)
            EXPECT_EQ(bytes[i], Surface::kOld);
    }
}

// The smallest file with a pixel: what the header reader asks for behind the info header is already
// the pixel's, and the row's padding is not there.
TEST(ShortBitmap, OfOnePixelLoadsIt)
{
    for (uint16_t bits : {uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
        recording::forget_printed();
        std::vector<uint8_t> bytes = test_bitmap(1, 1, bits).bytes();
        const size_t pixel_bytes = bits / 8;
        bytes.resize(54 + pixel_bytes);
        FileOnDisk file(bytes);
        Surface surface(4);
        testing::internal::CaptureStderr();
        EXPECT_EQ(LoadBMPEx(file.path(), &surface.record, bits == 16 ? 3 : 7), 0) << bits;
        const std::string reason = testing::internal::GetCapturedStderr();
        for (size_t i = 0; i < pixel_bytes; ++i)
            EXPECT_EQ(surface.bytes()[i], test_byte(0, 0, static_cast<uint32_t>(i))) << bits;
        const unsigned short_reads = recording::times_printed("fread (1*4)error!line:#");
        EXPECT_EQ(short_reads, bits == 32 ? 0u : 1u) << "a row of whole words is all there";
        EXPECT_EQ(reason.rfind("fread:: ", 0) == 0, bits != 32);
    }
}

// Every pixel of the picture is reported, whether the file holds it or not, behind the short read.
TEST(ShortBitmap, ReportsEveryPixelOfAFormatWithoutConversion)
{
    BmpFile bitmap = test_bitmap(3, 4, 24);
    for (size_t held : {size_t{0}, size_t{1}, size_t{12 + 4}}) {
        std::vector<uint8_t> bytes = bitmap.bytes();
        bytes.resize(54 + held);
        FileOnDisk file(bytes);
        for (uint32_t format : {1u, 5u}) {
            recording::forget_printed();
            Surface surface(3 * 4 * 4);
            testing::internal::CaptureStderr();
            EXPECT_EQ(LoadBMPEx(file.path(), &surface.record, format), 0);
            testing::internal::GetCapturedStderr();
            EXPECT_TRUE(surface.untouched());
            EXPECT_EQ(recording::times_printed("file(load_bmp.c), line(#), no such format!"), 12u) << held;
            ASSERT_EQ(recording::printed_lines().size(), 13u);
            EXPECT_EQ(recording::printed_lines()[0].rfind("[load_bmp.c]-#: fread (4*12)error!line:", 0), 0u);
        }
    }
}

TEST(ShortBitmap, WithPixelsBeyondItsEndLoadsNothing)
{
    BmpFile bitmap = test_bitmap(4, 3, 24);
    std::vector<uint8_t> bytes = bitmap.bytes();
    for (uint32_t offset : {0x7FFFFFFFu, 0xFFFFFFFFu, 100000u}) {
        for (int i = 0; i < 4; ++i)
            bytes[static_cast<size_t>(10 + i)] = static_cast<uint8_t>(offset >> (8 * i));
        FileOnDisk file(bytes);
        Surface surface(4 * 3 * 4);
        testing::internal::CaptureStderr();
        EXPECT_EQ(LoadBMPEx(file.path(), &surface.record, 7), 0);
        EXPECT_EQ(LoadBMP(file.path(), &surface.record), 0);
        testing::internal::GetCapturedStderr();
        EXPECT_PRINTED("fread (3*12)error!line:#");
        EXPECT_PRINTED("fread error!line:#");
        EXPECT_TRUE(surface.untouched());
    }
}

// Rows that are copied go straight into the surface, many at a time: each to its place, whole or as
// far as the file has it.
TEST(CopiedBitmap, RowsGoToTheirPlacesHoweverManyThereAre)
{
    for (int32_t height : {1, 63, 64, 65, 128, 200}) {
        for (uint16_t bits : {uint16_t{16}, uint16_t{32}}) {
            const int32_t bytes = bits / 8, width = 6;
            FileOnDisk file(test_bitmap(width, height, bits));
            Surface surface(static_cast<size_t>(width * height * bytes));
            ASSERT_EQ(LoadBMPEx(file.path(), &surface.record, bits == 16 ? 3 : 7), 0);
            for (int32_t y = 0; y < height; ++y)
                for (int32_t i = 0; i < width * bytes; ++i)
                    ASSERT_EQ(surface.bytes()[static_cast<size_t>(y * width * bytes + i)],
                              test_byte(i / bytes, height - 1 - y, static_cast<uint32_t>(i % bytes)))
                        << height << " rows, row " << y;
        }
    }
}

TEST(CopiedBitmap, CutShortFillsTheRowsThatItHas)
{
    constexpr int32_t kWidth = 4, kHeight = 70, kRow_bytes = kWidth * 4;
    for (size_t there : {size_t{0}, size_t{1}, size_t{7}, size_t{16}, size_t{40}, size_t{64 * 16 + 5},
                         size_t{70 * 16 - 1}}) {
        recording::forget_printed();
        BmpFile bitmap = test_bitmap(kWidth, kHeight, 32);
        std::vector<uint8_t> bytes = bitmap.bytes();
        bytes.resize(std::max<size_t>(bytes.size() - bitmap.pixels.size() + there, 58));
        FileOnDisk file(bytes);
        Surface surface(static_cast<size_t>(kHeight * kRow_bytes));
        testing::internal::CaptureStderr();
        EXPECT_EQ(LoadBMPEx(file.path(), &surface.record, 7), 0);
        EXPECT_EQ(testing::internal::GetCapturedStderr().rfind("fread:: ", 0), 0u);
        EXPECT_PRINTED_AS_ERROR("load_bmp.c", "fread (70*16)error!line:#");
        const size_t in_file = bytes.size() - (bitmap.bytes().size() - bitmap.pixels.size());
        for (size_t i = 0; i < static_cast<size_t>(kHeight * kRow_bytes); ++i) {
            const auto file_row = static_cast<int32_t>(i / kRow_bytes),
                       at = static_cast<int32_t>(i % kRow_bytes);
            const uint8_t expected =
                i < in_file ? test_byte(at / 4, file_row, static_cast<uint32_t>(at % 4)) : Surface::kOld;
            ASSERT_EQ(surface.bytes()[static_cast<size_t>((kHeight - 1 - file_row) * kRow_bytes + at)],
                      expected)
                << there << " bytes, byte " << i;
        }
    }
}
