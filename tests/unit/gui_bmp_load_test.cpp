/* BMP files of every depth, padding and target format against a plain reading of the file. */
#include <gtest/gtest.h>

#include <cstring>

#include "gui_bmp_file.h"
#include "recording_expect.h"

using gui_test::BmpFile;
using gui_test::FileOnDisk;
using gui_test::Surface;
using gui_test::test_bitmap;
using gui_test::test_byte;

namespace
{

struct Size {
    int32_t width, height;
};

const Size kSizes[] = {{1, 1}, {2, 1}, {3, 2},  {4, 3},   {5, 5},  {6, 1},
                       {7, 4}, {8, 8}, {13, 3}, {64, 17}, {123, 9}};

uint16_t word_at(const std::vector<uint8_t> &bytes, size_t at)
{
    return static_cast<uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

} // namespace

TEST(LoadBmpEx, Converts24BitFilesInto32BitPixels)
{
    for (uint32_t format : {6u, 7u}) {
        for (const Size &size : kSizes) {
            FileOnDisk file(test_bitmap(size.width, size.height, 24));
            Surface surface(static_cast<size_t>(size.width * size.height * 4));
            ASSERT_EQ(LoadBMPEx(file.path(), &surface.record, format), 0);
            EXPECT_EQ(surface.record.width, static_cast<uint32_t>(size.width));
            EXPECT_EQ(surface.record.height, static_cast<uint32_t>(size.height));
            EXPECT_EQ(surface.record.pitch, static_cast<uint32_t>(size.width * 4));
            for (int32_t y = 0; y < size.height; ++y) {
                for (int32_t x = 0; x < size.width; ++x) {
                    const uint8_t *pixel = &surface.bytes()[static_cast<size_t>((y * size.width + x) * 4)];
                    const int32_t file_row = size.height - 1 - y;
                    for (uint32_t i = 0; i < 3; ++i)
                        ASSERT_EQ(pixel[i], test_byte(x, file_row, i))
                            << x << ", " << y << " of " << size.width;
                    ASSERT_EQ(pixel[3], 255);
                }
            }
        }
    }
}

TEST(LoadBmpEx, Packs24BitFilesInto16BitPixels)
{
    for (uint32_t format : {0u, 2u, 3u, 4u}) {
        const OsdCompInfo &widths = s_OSDCompInfo[format];
        for (const Size &size : kSizes) {
            FileOnDisk file(test_bitmap(size.width, size.height, 24));
            Surface surface(static_cast<size_t>(size.width * size.height * 2));
            ASSERT_EQ(LoadBMPEx(file.path(), &surface.record, format), 0);
            EXPECT_EQ(surface.record.pitch, static_cast<uint32_t>(size.width * 2));
            for (int32_t y = 0; y < size.height; ++y) {
                for (int32_t x = 0; x < size.width; ++x) {
                    const int32_t row = size.height - 1 - y;
                    ASSERT_EQ(word_at(surface.bytes(), static_cast<size_t>((y * size.width + x) * 2)),
                              OSD_MAKECOLOR_U16(test_byte(x, row, 0), test_byte(x, row, 1),
                                                test_byte(x, row, 2), widths.alpha_bits, widths.low_bits,
                                                widths.middle_bits, widths.high_bits))
                        << "format " << format << " at " << x << ", " << y << " of " << size.width;
                }
            }
        }
    }
}

TEST(LoadBmpEx, PacksEveryColourAsTheFormulaDoes)
{
    // Every value of every component, alone and together, four pixels and a rest at a time.
    BmpFile bitmap;
    bitmap.width = 256 * 4 + 3;
    bitmap.height = 1;
    for (int32_t x = 0; x < bitmap.width; ++x) {
        const int32_t which = x / 256, value = x % 256;
        for (int i = 0; i < 3; ++i)
            bitmap.pixels.push_back(static_cast<uint8_t>(which == 3 || which == i ? value : 0));
    }
    while (bitmap.pixels.size() % 4 != 0)
        bitmap.pixels.push_back(0);
    FileOnDisk file(bitmap);
    for (uint32_t format : {0u, 2u, 3u, 4u}) {
        const OsdCompInfo &widths = s_OSDCompInfo[format];
        Surface surface(static_cast<size_t>(bitmap.width) * 2);
        ASSERT_EQ(LoadBMPEx(file.path(), &surface.record, format), 0);
        for (int32_t x = 0; x < bitmap.width; ++x) {
            const uint8_t *bgr = &bitmap.pixels[static_cast<size_t>(x) * 3];
            ASSERT_EQ(word_at(surface.bytes(), static_cast<size_t>(x) * 2),
                      OSD_MAKECOLOR_U16(bgr[0], bgr[1], bgr[2], widths.alpha_bits, widths.low_bits,
                                        widths.middle_bits, widths.high_bits));
        }
    }
}

TEST(LoadBmpEx, TurnsWhiteAndRedIntoTheirRgb565Words)
{
    BmpFile bitmap = test_bitmap(2, 1, 24);
    bitmap.pixels = {0xFF, 0xFF, 0xFF, 0, 0, 0xFF, 0, 0};
    FileOnDisk file(bitmap);
    Surface surface(4);
    ASSERT_EQ(LoadBMPEx(file.path(), &surface.record, 3), 0);
    EXPECT_EQ(word_at(surface.bytes(), 0), 0xFFFF);
    EXPECT_EQ(word_at(surface.bytes(), 2), 0xF800);
}

TEST(LoadBmpEx, Copies16And32BitFilesUnchanged)
{
    for (uint16_t bits : {uint16_t{16}, uint16_t{32}}) {
        const uint32_t format = bits == 16 ? 4 : 7;
        const int32_t bytes = bits / 8;
        for (const Size &size : kSizes) {
            FileOnDisk file(test_bitmap(size.width, size.height, bits));
            Surface surface(static_cast<size_t>(size.width * size.height * bytes));
            ASSERT_EQ(LoadBMPEx(file.path(), &surface.record, format), 0);
            for (int32_t y = 0; y < size.height; ++y)
                for (int32_t x = 0; x < size.width * bytes; ++x)
                    ASSERT_EQ(surface.bytes()[static_cast<size_t>(y * size.width * bytes + x)],
                              test_byte(x / bytes, size.height - 1 - y, static_cast<uint32_t>(x % bytes)));
        }
    }
}

// A copy needs no conversion: formats that have none are as good as any.
TEST(LoadBmpEx, Copies16BitFilesWhateverTheFormat)
{
    FileOnDisk file(test_bitmap(5, 2, 16));
    for (uint32_t format = 0; format < 10; ++format) {
        recording::forget_printed();
        Surface surface(5 * 2 * 4);
        ASSERT_EQ(LoadBMPEx(file.path(), &surface.record, format), 0) << format;
        ASSERT_EQ(surface.record.pitch, format < 6 ? 10u : 20u) << format;
        for (size_t y = 0; y < 2; ++y)
            for (size_t x = 0; x < 10; ++x)
                EXPECT_EQ(surface.bytes()[y * surface.record.pitch + x],
                          test_byte(static_cast<int32_t>(x / 2), static_cast<int32_t>(1 - y), x % 2))
                    << "format " << format;
        EXPECT_EQ(recording::printed_text(), "") << format;
    }
}

// The pitch comes from the format, not from the file: what does not fit a row is left out.
TEST(LoadBmpEx, WritesAtMostAPitchOfBytesARow)
{
    FileOnDisk file(test_bitmap(4, 3, 32));
    Surface surface(4 * 3 * 2);
    ASSERT_EQ(LoadBMPEx(file.path(), &surface.record, 3), 0);
    EXPECT_EQ(surface.record.pitch, 8u);
    for (int32_t y = 0; y < 3; ++y)
        for (int32_t x = 0; x < 8; ++x)
            EXPECT_EQ(surface.bytes()[static_cast<size_t>(y * 8 + x)],
                      test_byte(x / 4, 2 - y, static_cast<uint32_t>(x % 4)));
}

TEST(LoadBmpEx, A16BitFileFillsHalfAWideRow)
{
    FileOnDisk file(test_bitmap(4, 2, 16));
    Surface surface(4 * 2 * 4);
    ASSERT_EQ(LoadBMPEx(file.path(), &surface.record, 7), 0);
    EXPECT_EQ(surface.record.pitch, 16u);
    for (size_t y = 0; y < 2; ++y)
        for (size_t x = 0; x < 16; ++x)
            EXPECT_EQ(surface.bytes()[y * 16 + x],
                      x < 8 ? test_byte(static_cast<int32_t>(x / 2), static_cast<int32_t>(1 - y), x % 2)
                            : Surface::kOld);
}

TEST(LoadBmpEx, ReportsEveryPixelOfAFormatWithoutConversion)
{
    FileOnDisk file(test_bitmap(3, 2, 24));
    for (uint32_t format : {1u, 5u, 8u, 0xFFFFFFFFu}) {
        recording::forget_printed();
        Surface surface(3 * 2 * 4);
        EXPECT_EQ(LoadBMPEx(file.path(), &surface.record, format), 0);
        EXPECT_TRUE(surface.untouched());
        EXPECT_EQ(recording::times_printed("file(load_bmp.c), line(#), no such format!"), 6u) << format;
        EXPECT_PRINTED_AS_ERROR("load_bmp.c", "file(load_bmp.c), line(#), no such format!");
    }
}

TEST(LoadBmpEx, SkipsPixelsOfOtherDepths)
{
    for (uint16_t bits : {uint16_t{48}, uint16_t{17}, uint16_t{40}, uint16_t{64}}) {
        FileOnDisk file(test_bitmap(4, 2, bits));
        Surface surface(4 * 2 * 4);
        EXPECT_EQ(LoadBMPEx(file.path(), &surface.record, 7), 0) << bits;
        EXPECT_TRUE(surface.untouched());
        EXPECT_EQ(surface.record.pitch, 16u);
    }
}

TEST(LoadBmpEx, AnEmptyPictureIsASuccess)
{
    BmpFile bitmap = test_bitmap(4, 1, 24);
    for (int32_t height : {0, 65536, 65536 * 3}) { // only 16 bits of the height count
        bitmap.height = height;
        std::vector<uint8_t> bytes = bitmap.bytes();
        for (size_t size : {bytes.size(), size_t{54}}) { // with some pixels, and as headers alone
            bytes.resize(size);
            FileOnDisk file(bytes);
            for (uint32_t format : {1u, 3u, 7u}) {
                recording::forget_printed();
                Surface surface(1);
                EXPECT_EQ(LoadBMPEx(file.path(), &surface.record, format), 0);
                EXPECT_EQ(surface.record.height, 0u);
                EXPECT_EQ(surface.record.width, 4u);
                EXPECT_EQ(LoadBMP(file.path(), &surface.record), 0);
                EXPECT_TRUE(surface.untouched());
                EXPECT_EQ(recording::printed_text(), "");
            }
        }
    }
}

// Nothing is read, so that neither the width nor the place of the pixels matters.
TEST(LoadBmpEx, AnEmptyPictureMayHaveAnyWidthAndOffset)
{
    for (int32_t width : {0, -1, 1, 3000000, INT32_MAX, INT32_MIN}) {
        BmpFile bitmap;
        bitmap.width = width;
        std::vector<uint8_t> bytes = bitmap.bytes();
        ASSERT_EQ(bytes.size(), 54u);
        for (size_t i = 10; i < 14; ++i)
            bytes[i] = 0xFF;
        FileOnDisk file(bytes);
        Surface surface(1);
        EXPECT_EQ(LoadBMPEx(file.path(), &surface.record, 7), 0) << width;
        EXPECT_TRUE(surface.untouched());
        EXPECT_EQ(recording::printed_text(), "");
    }
}

// The row length loses all but its low 16 bits: 21846 pixels of 3 bytes are read as rows of 4.
TEST(LoadBmpEx, CutsTheFilesRowLengthTo16Bits)
{
    BmpFile bitmap = test_bitmap(1, 1, 24);
    bitmap.width = 21846;
    bitmap.height = 2;
    bitmap.pixels = {1, 2, 3, 4, 5, 6, 7, 8};
    FileOnDisk file(bitmap);
    Surface surface(21846 * 2 * 4);
    EXPECT_EQ(LoadBMPEx(file.path(), &surface.record, 7), 0);
    EXPECT_EQ(recording::printed_text().find("fread"), std::string::npos) << "the 8 bytes are all of it";
    const uint32_t top[] = {0xFF070605};
    const uint32_t bottom[] = {0xFF030201, 0xFF060504};
    EXPECT_EQ(std::memcmp(&surface.bytes()[0], top, sizeof top), 0);
    EXPECT_EQ(std::memcmp(&surface.bytes()[21846 * 4], bottom, sizeof bottom), 0);
}

TEST(LoadBmp, CopiesPixelsAndMarksThemHalfTransparent)
{
    for (uint16_t bits : {uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
        const int32_t from = bits / 8, to = bits == 16 ? 2 : 4;
        for (const Size &size : kSizes) {
            if (size.width * from % 4 != 0) continue;
            FileOnDisk file(test_bitmap(size.width, size.height, bits));
            Surface surface(static_cast<size_t>(size.width * size.height * to));
            ASSERT_EQ(LoadBMP(file.path(), &surface.record), 0);
            EXPECT_EQ(surface.record.pitch, static_cast<uint32_t>(size.width * to));
            for (int32_t y = 0; y < size.height; ++y) {
                for (int32_t x = 0; x < size.width; ++x) {
                    const uint8_t *pixel = &surface.bytes()[static_cast<size_t>((y * size.width + x) * to)];
                    for (int32_t i = 0; i < (to == 4 ? 3 : 2); ++i)
                        ASSERT_EQ(pixel[i], test_byte(x, size.height - 1 - y, static_cast<uint32_t>(i)))
                            << bits;
                    if (to == 4) {
                        ASSERT_EQ(pixel[3], 128) << bits;
                    }
                }
            }
        }
    }
}

TEST(LoadBmp, KeepsAPitchThatIsGiven)
{
    FileOnDisk file(test_bitmap(4, 2, 24));
    Surface wide(2 * 24, 24);
    ASSERT_EQ(LoadBMP(file.path(), &wide.record), 0);
    EXPECT_EQ(wide.record.pitch, 24u);
    EXPECT_EQ(wide.bytes()[0], test_byte(0, 1, 0));
    EXPECT_EQ(wide.bytes()[24], test_byte(0, 0, 0));
    for (size_t gap = 16; gap < 24; ++gap)
        EXPECT_EQ(wide.bytes()[gap], Surface::kOld);

    // A pitch that is too small for a row holds the pixels that fit.
    Surface narrow(2 * 9, 9);
    ASSERT_EQ(LoadBMP(file.path(), &narrow.record), 0);
    EXPECT_EQ(narrow.bytes()[8], Surface::kOld);
    EXPECT_EQ(narrow.bytes()[9], test_byte(0, 0, 0));
    EXPECT_EQ(narrow.bytes()[17], Surface::kOld);
}

TEST(LoadBmp, TakesWhatFitsOfWiderPixels)
{
    FileOnDisk file(test_bitmap(4, 1, 64));
    Surface surface(16);
    ASSERT_EQ(LoadBMP(file.path(), &surface.record), 0);
    for (int32_t x = 0; x < 4; ++x) {
        EXPECT_EQ(surface.bytes()[static_cast<size_t>(x * 4)], test_byte(x, 0, 0));
        EXPECT_EQ(surface.bytes()[static_cast<size_t>(x * 4 + 3)], 128);
    }
}

TEST(LoadBmp, PixelsMayStandAnywhereInTheFile)
{
    BmpFile bitmap = test_bitmap(4, 2, 24);
    bitmap.pixel_offset = 1078;
    FileOnDisk file(bitmap);
    Surface surface(32);
    ASSERT_EQ(LoadBMP(file.path(), &surface.record), 0);
    EXPECT_EQ(surface.bytes()[0], test_byte(0, 1, 0));
    ASSERT_EQ(LoadBMPEx(file.path(), &surface.record, 7), 0);
    EXPECT_EQ(surface.bytes()[0], test_byte(0, 1, 0));
}
