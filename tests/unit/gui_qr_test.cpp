/*
 * QR images: the file byte by byte, and its text as an independent reader (zbarimg) sees it.
 * The reader starts as a process of its own; the images are read from disk as a phone would.
 */
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "nvrhal.h"
#include "recording_expect.h"

namespace
{

class TemporaryDirectory
{
public:
    TemporaryDirectory()
    {
        char name[] = "/tmp/nvrhal_qr_XXXXXX";
        if (!mkdtemp(name)) std::abort();
        path_ = name;
    }
    ~TemporaryDirectory()
    {
        for (const std::string &file : files_)
            unlink(file.c_str());
        rmdir(path_.c_str());
    }
    TemporaryDirectory(const TemporaryDirectory &) = delete;
    TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

    std::string file(const std::string &name)
    {
        files_.push_back(path_ + "/" + name);
        return files_.back();
    }

private:
    std::string path_;
    std::vector<std::string> files_;
};

std::vector<uint8_t> bytes_of(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

uint32_t word32_at(const std::vector<uint8_t> &bytes, size_t at)
{
    return bytes.at(at) | bytes.at(at + 1) << 8 | bytes.at(at + 2) << 16 |
           static_cast<uint32_t>(bytes.at(at + 3)) << 24;
}

/* What the reader finds in the images, in their order, as raw bytes without anything between them. */
std::string read_codes(const std::vector<std::string> &paths)
{
    std::string command =
        std::string(NVRHAL_ZBARIMG) + " --quiet --raw --nodbus -Sdisable -Sqrcode.enable -Sbinary";
    for (const std::string &path : paths)
        command += " '" + path + "'";
    FILE *reader = popen(command.c_str(), "r");
    if (!reader) return "";
    std::string text;
    char block[4096];
    for (size_t got; (got = std::fread(block, 1, sizeof block, reader)) > 0;)
        text.append(block, got);
    return pclose(reader) == 0 ? text : "reader failed: " + text;
}

std::string text_of_length(size_t length)
{
    std::string text;
    for (size_t i = 0; i < length; ++i)
        text += static_cast<char>('!' + (i * 7 + length) % 90);
    return text;
}

/* Bytes that a symbol of versions 3 to 40 holds at the lowest correction level, 8-bit mode. */
constexpr size_t kCapacity[] = {53,   78,   106,  134,  154,  192,  230,  271,  321,  367,  425,  458,  520,
                                586,  644,  718,  792,  858,  929,  1003, 1091, 1171, 1273, 1367, 1465, 1528,
                                1628, 1732, 1840, 1952, 2068, 2188, 2303, 2431, 2563, 2699, 2809, 2953};

} // namespace

TEST(QrImage, AShortTextHasTheStatedHeaders)
{
    TemporaryDirectory directory;
    const std::string path = directory.file("code.bmp");
    qrencode("http://192.168.1.10", path.c_str());
    EXPECT_PRINTED("intext=http://192.168.1.10");

    const std::vector<uint8_t> file = bytes_of(path);
    ASSERT_EQ(file.size(), 40678u);
    EXPECT_EQ(file[0], 'B');
    EXPECT_EQ(file[1], 'M');
    EXPECT_EQ(word32_at(file, 2), 40678u);
    EXPECT_EQ(word32_at(file, 6), 0u);
    EXPECT_EQ(word32_at(file, 10), 1078u);
    EXPECT_EQ(word32_at(file, 14), 40u);
    EXPECT_EQ(word32_at(file, 18), 198u);
    EXPECT_EQ(word32_at(file, 22), 198u);
    EXPECT_EQ(word32_at(file, 26), 1u | 8u << 16) << "one plane, eight bits";
    EXPECT_EQ(word32_at(file, 30), 0u);
    EXPECT_EQ(word32_at(file, 34), 39600u);
    for (size_t at = 38; at < 54; ++at)
        EXPECT_EQ(file[at], 0);
    for (uint32_t grey = 0; grey < 256; ++grey)
        EXPECT_EQ(word32_at(file, 54 + grey * 4), grey * 0x010101u);
}

// Finder patterns tell up from down: they are in every corner of the symbol but the lower right.
TEST(QrImage, ModulesAreSixBySixPixelsBehindAQuietZone)
{
    TemporaryDirectory directory;
    const std::string path = directory.file("code.bmp");
    qrencode("http://192.168.1.10", path.c_str());
    const std::vector<uint8_t> file = bytes_of(path);
    constexpr int kModules = 29, kSide = 198, kStride = 200;
    auto pixel = [&](int x, int y_from_top) {
        return file.at(static_cast<size_t>(1078 + (kSide - 1 - y_from_top) * kStride + x));
    };
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kStride; ++x) {
            const bool quiet = x < 12 || y < 12 || x >= kSide - 12 || y >= kSide - 12;
            if (quiet)
                ASSERT_EQ(pixel(x, y), 255) << x << ", " << y;
            else
                ASSERT_EQ(pixel(x, y), pixel(x - x % 6, y - y % 6)) << x << ", " << y;
            ASSERT_TRUE(pixel(x, y) == 255 || pixel(x, y) == 1);
        }
    }
    auto is_finder = [&](int left, int top) {
        for (int y = 0; y < 7; ++y) {
            for (int x = 0; x < 7; ++x) {
                const bool ring = x == 0 || y == 0 || x == 6 || y == 6;
                const bool core = x > 1 && x < 5 && y > 1 && y < 5;
                const bool dark = pixel(12 + 6 * (left + x), 12 + 6 * (top + y)) == 1;
                if (dark != (ring || core)) return false;
            }
        }
        return true;
    };
    EXPECT_TRUE(is_finder(0, 0));
    EXPECT_TRUE(is_finder(kModules - 7, 0));
    EXPECT_TRUE(is_finder(0, kModules - 7));
    EXPECT_FALSE(is_finder(kModules - 7, kModules - 7));
}

TEST(QrImage, GrowsWithTheText)
{
    TemporaryDirectory directory;
    const std::string path = directory.file("code.bmp");
    qrencode(text_of_length(53).c_str(), path.c_str());
    EXPECT_EQ(word32_at(bytes_of(path), 18), 198u);
    qrencode(text_of_length(54).c_str(), path.c_str());
    const std::vector<uint8_t> file = bytes_of(path);
    EXPECT_EQ(word32_at(file, 18), 222u);
    EXPECT_EQ(word32_at(file, 34), 222u * 224u);
    EXPECT_EQ(file.size(), 222u * 224u + 1078u);

    qrencode(text_of_length(134).c_str(), path.c_str());
    const std::vector<uint8_t> large = bytes_of(path); // more than 16 bits can count
    EXPECT_EQ(word32_at(large, 2), 270u * 272u + 1078u);
    EXPECT_EQ(word32_at(large, 18), 270u);
    EXPECT_EQ(word32_at(large, 34), 270u * 272u);
}

// One byte, and the smallest and the largest text of every symbol size.
TEST(QrImage, TextsOfAllSymbolSizesAreReadBack)
{
    TemporaryDirectory directory;
    std::vector<std::string> paths;
    std::string expected;
    auto add = [&](size_t length, size_t version) {
        const std::string text = text_of_length(length);
        paths.push_back(directory.file(std::to_string(length) + ".bmp"));
        qrencode(text.c_str(), paths.back().c_str());
        EXPECT_EQ(word32_at(bytes_of(paths.back()), 18), 6 * (17 + 4 * version + 4)) << length;
        expected += text;
    };
    add(1, 3);
    for (size_t i = 0; i < std::size(kCapacity); ++i) {
        add(i == 0 ? 2 : kCapacity[i - 1] + 1, i + 3);
        add(kCapacity[i], i + 3);
    }
    EXPECT_EQ(paths.size(), 77u);
    EXPECT_TRUE(read_codes(paths) == expected);
}

TEST(QrImage, ChineseIsReadBackByteByByte)
{
    TemporaryDirectory directory;
    std::string longest;
    while (longest.size() + 3 <= 2953)
        longest += longest.size() % 2 ? "摄" : "像";
    for (const std::string &text :
         {std::string("录像机"), std::string("网络硬盘录像机 NVR-08 http://192.168.1.10/设置"),
          std::string("\xC2\xBC\xCF\xF1\xBB\xFA"), longest}) {
        const std::string path = directory.file("code.bmp");
        qrencode(text.c_str(), path.c_str());
        EXPECT_PRINTED("intext=" + text);
        EXPECT_EQ(read_codes({path}), text);
    }
}

TEST(QrImage, DigitsAndCapitalsKeepTheirCase)
{
    TemporaryDirectory directory;
    const std::string path = directory.file("code.bmp");
    for (const char *text : {"0123456789", "ABC-123", "abc-123"}) {
        qrencode(text, path.c_str());
        EXPECT_EQ(read_codes({path}), text);
    }
}

// Standard output carries the printed text and then the image, and is closed behind it.
TEST(QrImage, TheNameDashIsStandardOutput)
{
    TemporaryDirectory directory;
    const std::string path = directory.file("stdout"), reference_path = directory.file("reference.bmp");
    qrencode("to standard output", reference_path.c_str());
    std::fflush(stdout);
    EXPECT_EXIT(
        {
            if (!std::freopen(path.c_str(), "wb", stdout)) std::exit(3);
            qrencode("to standard output", "-");
            std::exit(write(STDOUT_FILENO, "", 0) == -1 ? 0 : 2);
        },
        testing::ExitedWithCode(0), "");
    const std::vector<uint8_t> written = bytes_of(path), reference = bytes_of(reference_path);
    const std::string heading = "intext=to standard output\n";
    ASSERT_EQ(written.size(), heading.size() + reference.size());
    EXPECT_EQ(std::string(written.begin(), written.begin() + static_cast<ptrdiff_t>(heading.size())),
              heading);
    EXPECT_TRUE(std::equal(reference.begin(), reference.end(),
                           written.begin() + static_cast<ptrdiff_t>(heading.size())));
}

TEST(QrImageExits, WithoutAText)
{
    TemporaryDirectory directory;
    const std::string path = directory.file("code.bmp");
    EXPECT_EXIT(qrencode(nullptr, path.c_str()), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(qrencode("", path.c_str()), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(qrencode("text", nullptr), testing::ExitedWithCode(1), "");
    EXPECT_NE(access(path.c_str(), F_OK), 0) << "no file is made";
}

TEST(QrImageExits, WithATextThatNoSymbolHolds)
{
    TemporaryDirectory directory;
    const std::string path = directory.file("code.bmp");
    EXPECT_EXIT(qrencode(text_of_length(2954).c_str(), path.c_str()), testing::ExitedWithCode(1), "");
    EXPECT_NE(access(path.c_str(), F_OK), 0);
}

/* What image.h says of how much fits. */
TEST(QrImageExits, WithOneByteMoreThanATextOfItsKindMayHave)
{
    const struct {
        std::string_view again_and_again;
        size_t most_bytes;
    } kKinds[] = {{"7", 7089}, {"A", 4296}, {"a", 2953}, {"abcdefgh12345678", 2930}, {"a1111K", 2086}};
    TemporaryDirectory directory;
    for (const auto &kind : kKinds) {
        SCOPED_TRACE(kind.again_and_again);
        std::string text;
        while (text.size() <= kind.most_bytes)
            text += kind.again_and_again;
        text.resize(kind.most_bytes + 1);
        const std::string path = directory.file("code.bmp");
        EXPECT_EXIT(qrencode(text.c_str(), path.c_str()), testing::ExitedWithCode(1), "");
        EXPECT_FALSE(std::filesystem::exists(path));
        text.pop_back();
        qrencode(text.c_str(), path.c_str());
        EXPECT_TRUE(std::filesystem::remove(path));
    }
}

TEST(QrImageExits, WhenTheFileCannotBeCreated)
{
    EXPECT_EXIT(qrencode("text", "/nonexistent/code.bmp"), testing::ExitedWithCode(1),
                "Failed to create file: /nonexistent/code.bmp\n");
    EXPECT_PRINTED("intext=text");
    EXPECT_EXIT(qrencode("text", ""), testing::ExitedWithCode(1), "Failed to create file: \n");
}

// A file that takes no byte counts as one that cannot be created.
TEST(QrImageExits, WhenTheDiskIsFull)
{
    if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "this machine has no /dev/full";
    EXPECT_EXIT(qrencode("text", "/dev/full"), testing::ExitedWithCode(1),
                "Failed to create file: /dev/full\n");
}
