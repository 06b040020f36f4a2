/* BMP files and arguments that are refused, each with its text; the wrappers around the loaders. */
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>
#include <sys/stat.h>

#include "gui_bmp_file.h"
#include "recording_expect.h"

using gui_test::BmpFile;
using gui_test::FileOnDisk;
using gui_test::Surface;
using gui_test::test_bitmap;

namespace
{

constexpr char kSource[] = "load_bmp.c";

/* Both loaders refuse the file with the same text and touch nothing. */
void expect_both_refuse(const char *path, const std::string &text)
{
    for (bool converted : {false, true}) {
        recording::forget_printed();
        Surface surface(64);
        EXPECT_EQ(converted ? LoadBMPEx(path, &surface.record, 3) : LoadBMP(path, &surface.record), -1)
            << text;
        EXPECT_PRINTED_AS_ERROR(kSource, text);
        EXPECT_EQ(recording::printed_lines().size(), 1u) << text;
        EXPECT_TRUE(surface.untouched());
    }
}

} // namespace

TEST(BmpInfo, ReadsBothHeaders)
{
    BmpFile bitmap = test_bitmap(5, 3, 24);
    FileOnDisk file(bitmap);
    const std::vector<uint8_t> bytes = bitmap.bytes();
    uint8_t rest[12], info[44];
    EXPECT_EQ(GetBmpInfo(file.path(), rest, info), 0);
    EXPECT_EQ(std::memcmp(rest, &bytes[2], sizeof rest), 0);
    EXPECT_EQ(std::memcmp(info, &bytes[14], sizeof info), 0);
    EXPECT_EQ(recording::printed_text(), "");
}

TEST(BmpInfo, RefusesWhatItCannotRead)
{
    uint8_t rest[12], info[44];
    EXPECT_EQ(GetBmpInfo(nullptr, rest, info), -1);
    EXPECT_PRINTED_AS_ERROR(kSource, "OSD_LoadBMP: filename=NULL");
    EXPECT_EQ(GetBmpInfo("/nonexistent/logo.bmp", rest, info), -1);
    EXPECT_PRINTED_AS_ERROR(kSource, "Open file faild:/nonexistent/logo.bmp!");
    FileOnDisk file(test_bitmap(5, 3, 24));
    EXPECT_EQ(GetBmpInfo(file.path(), nullptr, info), -1);
    EXPECT_EQ(GetBmpInfo(file.path(), rest, nullptr), -1);
}

// The reader asks for 44 bytes behind the file header. The last 4 are no part of the info header: a file
// may end before them, or among them, and they count as 0.
TEST(BmpInfo, NeedsBothHeadersButNotWhatFollowsThem)
{
    const std::vector<uint8_t> bytes = test_bitmap(1, 1, 16).bytes();
    ASSERT_EQ(bytes.size(), 58u);
    for (size_t size = 0; size <= bytes.size(); ++size) {
        recording::forget_printed();
        FileOnDisk file(std::vector<uint8_t>(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size)));
        uint8_t rest[12] = {}, info[44];
        std::memset(info, 0x5A, sizeof info);
        if (size < 14 + 40) {
            EXPECT_EQ(GetBmpInfo(file.path(), rest, info), -1) << size;
            EXPECT_PRINTED_AS_ERROR(kSource, "not bitmap file");
            continue;
        }
        EXPECT_EQ(GetBmpInfo(file.path(), rest, info), 0) << size;
        EXPECT_EQ(recording::printed_text(), "");
        EXPECT_EQ(std::memcmp(rest, &bytes[2], sizeof rest), 0);
        for (size_t i = 0; i < sizeof info; ++i)
            EXPECT_EQ(info[i], 14 + i < size ? bytes[14 + i] : 0) << i << " of " << size;
    }
}

TEST(BmpInfo, NeedsTheMagicOfAShortFileToo)
{
    std::vector<uint8_t> bytes = test_bitmap(1, 1, 16).bytes();
    bytes.resize(54);
    bytes[1] = 'A';
    expect_both_refuse(FileOnDisk(bytes).path(), "not bitmap file");
}

TEST(BmpRefusal, ANullPath)
{
    expect_both_refuse(nullptr, "OSD_LoadBMP: filename=NULL");
}

TEST(BmpRefusal, AFileThatIsNotThere)
{
    expect_both_refuse("/nonexistent/logo.bmp", "Open file faild:/nonexistent/logo.bmp!");
}

TEST(BmpRefusal, AnotherMagic)
{
    for (const char *magic : {"MB", "bm", "BA", "PK"}) {
        BmpFile bitmap = test_bitmap(4, 2, 24);
        bitmap.magic = magic;
        FileOnDisk file(bitmap);
        expect_both_refuse(file.path(), "not bitmap file");
    }
    expect_both_refuse("/tmp", "not bitmap file"); // a directory opens, but cannot be read
}

TEST(BmpRefusal, DepthsBelow16Bits)
{
    for (uint16_t bits : {uint16_t{0}, uint16_t{1}, uint16_t{4}, uint16_t{8}, uint16_t{15}}) {
        BmpFile bitmap = test_bitmap(4, 2, 24);
        bitmap.bits = bits;
        FileOnDisk file(bitmap);
        expect_both_refuse(file.path(), "bitmap format not supported!");
    }
}

TEST(BmpRefusal, CompressedFiles)
{
    for (uint32_t compression : {1u, 2u, 3u, 0x80000000u}) {
        BmpFile bitmap = test_bitmap(4, 2, 24);
        bitmap.compression = compression;
        FileOnDisk file(bitmap);
        expect_both_refuse(file.path(), "not support compressed bitmap file!");
    }
}

TEST(BmpRefusal, TopDownFiles)
{
    for (int32_t height : {-1, -2, INT_MIN}) {
        BmpFile bitmap = test_bitmap(4, 2, 24);
        bitmap.height = height;
        FileOnDisk file(bitmap);
        expect_both_refuse(file.path(), "bmpInfo.bmiHeader.biHeight < 0");
    }
}

// The depth is looked at first, then the compression, then the height.
TEST(BmpRefusal, InThisOrder)
{
    BmpFile bitmap = test_bitmap(4, 2, 24);
    bitmap.height = -2;
    bitmap.compression = 1;
    bitmap.bits = 8;
    expect_both_refuse(FileOnDisk(bitmap).path(), "bitmap format not supported!");
    bitmap.bits = 24;
    expect_both_refuse(FileOnDisk(bitmap).path(), "not support compressed bitmap file!");
}

TEST(BmpRefusal, WidthsBelowOne)
{
    for (int32_t width : {0, -1, -4, INT_MIN}) {
        BmpFile bitmap = test_bitmap(4, 2, 24);
        bitmap.width = width;
        FileOnDisk file(bitmap);
        expect_both_refuse(file.path(), "not enough memory to malloc!");
    }
}

// The area is that of whole rows, for both loaders: the row length that LoadBMPEx cuts to 16 bits is
// only the distance from one row of the file to the next.
TEST(BmpRefusal, AreasThatNoMemoryHolds)
{
    struct Case {
        int32_t width, height;
        uint16_t bits;
    };
    for (const Case &huge : {Case{32768, 65535, 32}, Case{INT_MAX - 3, 65535, 64}, Case{1 << 30, 4, 32},
                             Case{16383, 65535, 32}, Case{3000000, 2000000, 24}, Case{3000000, 2000000, 16},
                             Case{65536, 65535, 24}, Case{65536 + 4, 20000, 32}, Case{1 << 28, 2, 32}}) {
        BmpFile bitmap = test_bitmap(4, 2, 24);
        bitmap.width = huge.width;
        bitmap.height = huge.height;
        bitmap.bits = huge.bits;
        FileOnDisk file(bitmap);
        expect_both_refuse(file.path(), "not enough memory to malloc!");
    }
}

// The same in every copying and converting way, also where 16 bits of the row length are none at all.
TEST(BmpRefusal, AreasThatNoMemoryHoldsInAnyFormat)
{
    for (uint16_t bits : {uint16_t{16}, uint16_t{24}, uint16_t{32}, uint16_t{48}}) {
        BmpFile bitmap = test_bitmap(4, 2, 24);
        bitmap.width = 1 << 24;
        bitmap.height = 20000;
        bitmap.bits = bits;
        FileOnDisk file(bitmap);
        for (uint32_t format : {0u, 1u, 3u, 5u, 7u, 8u}) {
            recording::forget_printed();
            Surface surface(64);
            EXPECT_EQ(LoadBMPEx(file.path(), &surface.record, format), -1) << bits << " " << format;
            EXPECT_PRINTED_AS_ERROR(kSource, "not enough memory to malloc!");
            EXPECT_EQ(recording::printed_lines().size(), 1u);
            EXPECT_TRUE(surface.untouched());
        }
    }
}

// LoadBMP would read such rows askew and past the end.
TEST(BmpRefusal, PaddedRowsOnlyByThePlainLoader)
{
    for (int32_t width : {1, 2, 3, 5, 6, 7}) {
        FileOnDisk file(test_bitmap(width, 2, 24));
        Surface surface(static_cast<size_t>(width * 2 * 4));
        EXPECT_EQ(LoadBMP(file.path(), &surface.record), -1) << width;
        EXPECT_PRINTED_AS_ERROR(kSource, "bitmap format not supported!");
        EXPECT_TRUE(surface.untouched());
        EXPECT_EQ(LoadBMPEx(file.path(), &surface.record, 7), 0) << width;
    }
    FileOnDisk file(test_bitmap(3, 2, 16));
    Surface surface(3 * 2 * 2);
    EXPECT_EQ(LoadBMP(file.path(), &surface.record), -1);
}

TEST(BmpRefusal, ASurfaceWithoutMemory)
{
    FileOnDisk file(test_bitmap(4, 2, 24));
    OsdSurface surface = {0, 0, 0, nullptr};
    EXPECT_EQ(LoadBMP(file.path(), &surface), -1);
    EXPECT_EQ(LoadBMPEx(file.path(), &surface, 3), -1);
    EXPECT_EQ(LoadBMP(file.path(), nullptr), -1);
    EXPECT_EQ(LoadBMPEx(file.path(), nullptr, 3), -1);
    EXPECT_EQ(LoadBitMap2Surface(file.path(), nullptr, nullptr), -1);
}

// Whatever stands in the headers: a result, and no byte outside the surface. The address sanitizer
// watches the latter; here the surface holds the largest picture that the file can fill.
TEST(BmpRefusal, RandomHeadersAreHarmless)
{
    std::mt19937 random(7);
    std::vector<uint8_t> bytes = test_bitmap(16, 16, 24).bytes();
    testing::internal::CaptureStderr();
    for (int round = 0; round < 4000; ++round) {
        std::vector<uint8_t> damaged = bytes;
        for (unsigned change = random() % 4 + 1; change > 0; --change)
            damaged[10 + random() % 24] = static_cast<uint8_t>(random() % 3 == 0 ? random() : random() % 20);
        FileOnDisk file(damaged);
        uint8_t rest[12], info[44];
        ASSERT_EQ(GetBmpInfo(file.path(), rest, info), 0);
        int32_t width, height;
        std::memcpy(&width, info + 4, sizeof width);
        std::memcpy(&height, info + 8, sizeof height);
        height &= 0xFFFF;
        if (width > 4096 || height > 1024) continue; // would need a surface that no test should have
        const size_t size = width < 1 ? 1 : static_cast<size_t>(width) * static_cast<size_t>(height) * 4 + 1;
        Surface surface(size);
        uint32_t format = random() % 10;
        if (size > 40000) format = 7; // a format without conversion prints a line a pixel
        const int32_t converted = LoadBMPEx(file.path(), &surface.record, format);
        EXPECT_TRUE(converted == 0 || converted == -1);
        Surface plain(size);
        const int32_t copied = LoadBMP(file.path(), &plain.record);
        EXPECT_TRUE(copied == 0 || copied == -1);
    }
    testing::internal::GetCapturedStderr();
}

TEST(ExtensionName, StandsBehindTheLastDot)
{
    EXPECT_STREQ(GetExtName("logo.bmp"), "bmp");
    EXPECT_STREQ(GetExtName("/mnt/a.b/logo.tar.gz"), "gz");
    EXPECT_STREQ(GetExtName("logo."), "");
    EXPECT_STREQ(GetExtName(".bmp"), "bmp");
    const char *const plain = "logo";
    EXPECT_EQ(GetExtName(plain), plain + 4) << "without a dot: the end of the name";
    EXPECT_EQ(recording::printed_text(), "");
    EXPECT_EQ(GetExtName(nullptr), nullptr);
    EXPECT_PRINTED_AS_ERROR(kSource, "filename can't be null!");
}

TEST(LoadImage, WantsTheExtensionInLowerCase)
{
    const std::vector<uint8_t> bytes = test_bitmap(4, 2, 24).bytes();
    for (const char *extension : {".BMP", ".Bmp", ".bmpx", ".bm", "", ".png"}) {
        recording::forget_printed();
        FileOnDisk file(bytes, extension);
        Surface surface(64);
        EXPECT_EQ(LoadImage(file.path(), &surface.record), -1) << extension;
        EXPECT_EQ(LoadImageEx(file.path(), &surface.record, 3), -1) << extension;
        EXPECT_EQ(recording::times_printed("not supported image file!"), 2u);
        EXPECT_PRINTED_AS_ERROR(kSource, "not supported image file!");
        EXPECT_TRUE(surface.untouched());
    }
    FileOnDisk file(bytes, ".bmp");
    Surface surface(64);
    EXPECT_EQ(LoadImage(file.path(), &surface.record), 0);
    EXPECT_EQ(surface.record.pitch, 16u);
    EXPECT_EQ(LoadImageEx(file.path(), &surface.record, 3), 0);
    EXPECT_EQ(surface.record.pitch, 8u);
}

TEST(LoadImage, ANullNameIsNoImageFile)
{
    Surface surface(64);
    EXPECT_EQ(LoadImage(nullptr, &surface.record), -1);
    EXPECT_PRINTED_AS_ERROR(kSource, "filename can't be null!");
    EXPECT_PRINTED_AS_ERROR(kSource, "not supported image file!");
}

TEST(LoadImage, ReportsALoaderThatFails)
{
    Surface surface(64);
    EXPECT_EQ(LoadImage("/nonexistent/logo.bmp", &surface.record), -1);
    EXPECT_EQ(LoadImageEx("/nonexistent/logo.bmp", &surface.record, 3), -1);
    EXPECT_EQ(recording::times_printed("OSD_LoadBMP error!"), 2u);
    EXPECT_PRINTED_AS_ERROR(kSource, "OSD_LoadBMP error!");
}

TEST(LoadBitMap2Surface, FillsPlainMemoryWithoutGaps)
{
    FileOnDisk file(test_bitmap(4, 2, 24));
    Surface target(4 * 2 * 4);
    OsdSurface unused = {1, 2, 3, nullptr};
    EXPECT_EQ(LoadBitMap2Surface(file.path(), &unused, target.record.pixels), 0);
    EXPECT_EQ(target.bytes()[0], gui_test::test_byte(0, 1, 0));
    EXPECT_EQ(target.bytes()[16], gui_test::test_byte(0, 0, 0));
    EXPECT_EQ(unused.width, 1u);
    EXPECT_EQ(LoadBitMap2Surface("/nonexistent/logo.bmp", nullptr, target.record.pixels), -1);
}

TEST(CreateSurfaceByBitMap, ConvertsAndReportsFailure)
{
    FileOnDisk file(test_bitmap(4, 2, 24));
    Surface surface(4 * 2 * 2);
    EXPECT_EQ(CreateSurfaceByBitMap(file.path(), &surface.record, 3), 0);
    EXPECT_EQ(surface.record.pitch, 8u);
    EXPECT_NE(CreateSurfaceByBitMap("/nonexistent/logo.bmp", &surface.record, 3), 0);
    EXPECT_PRINTED_AS_ERROR(kSource, "load bmp error!");
}
