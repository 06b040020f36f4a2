/* test_save_jpeg_to_file and venc_start_getstream. */
#include <sched.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

#include "snap_refusal.h"
#include "snap_request.h"

using recording::platform;
using recording::trace;

namespace
{

/** A directory of its own as the current one, and a fixed local time. */
class SavedJpeg : public testing::Test
{
protected:
    void SetUp() override
    {
        char name[] = "/tmp/saved_jpeg_XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        directory_ = name;
        ASSERT_EQ(chdir(name), 0);
        setenv("TZ", "XXX-05:30", 1); // half past five east of Greenwich
        tzset();
        platform.set_time_us(1735689600LL * 1000000 - 1); // 2024-12-31 23:59:59 UTC, and local 2025
    }
    void TearDown() override
    {
        unlink(kName);
        ASSERT_EQ(chdir("/"), 0);
        rmdir(directory_.c_str());
    }

    static std::string contents()
    {
        std::ifstream in(kName, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    static unsigned bytes_dumped()
    {
        const std::string text = recording::printed_text();
        unsigned dumped = 0;
        for (size_t at = text.find("pu8Addr_data["); at != std::string::npos;
             at = text.find("pu8Addr_data[", at + 1))
            ++dumped;
        return dumped;
    }

    static constexpr const char *kName = "./2025_00_01-05_29_59.jpg"; // month counted from 0
    std::string directory_;
};

MI_VENC_Pack pack_of(std::string &bytes, uint32_t offset)
{
    MI_VENC_Pack pack = {};
    pack.address = reinterpret_cast<uint8_t *>(bytes.data());
    pack.length_bytes = static_cast<uint32_t>(bytes.size());
    pack.offset_bytes = offset;
    return pack;
}

TEST_F(SavedJpeg, HoldsEveryPackFromItsOffset)
{
    std::string first = "skipABCDEFGHIJKLM", second = "nop";
    MI_VENC_Pack packs[] = {pack_of(first, 4), pack_of(second, 0)};
    MI_VENC_Stream stream = {};
    stream.packs = packs;
    stream.pack_count = 2;
    EXPECT_EQ(test_save_jpeg_to_file(&stream), 0);
    EXPECT_EQ(contents(), "ABCDEFGHIJKLMnop");
    EXPECT_PRINTED_IN_ORDER(R"(
        EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEsnap.c,test_save_jpeg_to_file,#
        open ./2025_00_01-05_29_59.jpg success
    )");
    std::string text = recording::printed_text();
    std::string head;
    for (char c = 'A'; c <= 'J'; ++c) {
        char one[32];
        snprintf(one, sizeof one, "pu8Addr_data[%x] ", c);
        head += one;
    }
    EXPECT_NE(text.find(head + "\npu8Addr_data[4b] "), std::string::npos) << text;
    EXPECT_EQ(bytes_dumped(), 13u + 3u);
    EXPECT_EQ(platform.calls(), trace("board_time_us"));
}

TEST_F(SavedJpeg, DumpsTheFirst100BytesOfAPack)
{
    std::string bytes(250, 5); // one digit
    MI_VENC_Pack packs[] = {pack_of(bytes, 0)};
    MI_VENC_Stream stream = {};
    stream.packs = packs;
    stream.pack_count = 1;
    EXPECT_EQ(test_save_jpeg_to_file(&stream), 0);
    EXPECT_EQ(contents().size(), 250u);
    EXPECT_EQ(bytes_dumped(), 100u);
    std::string line, dump;
    for (int i = 0; i < 10; ++i)
        line += "pu8Addr_data[5] ";
    for (int i = 0; i < 10; ++i)
        dump += line + "\n";
    EXPECT_NE(recording::printed_text().find("success\n" + dump), std::string::npos);
}

TEST_F(SavedJpeg, WritesOverAnExistingFileWithoutShorteningIt)
{
    std::ofstream(kName) << "0123456789";
    std::string bytes = "abc";
    MI_VENC_Pack packs[] = {pack_of(bytes, 0)};
    MI_VENC_Stream stream = {};
    stream.packs = packs;
    stream.pack_count = 1;
    EXPECT_EQ(test_save_jpeg_to_file(&stream), 0);
    EXPECT_EQ(contents(), "abc3456789");
}

TEST_F(SavedJpeg, IsNamedByTheFullYearOfAClockThatWasNeverSet)
{
    platform.set_time_us(0);
    MI_VENC_Stream stream = {};
    EXPECT_EQ(test_save_jpeg_to_file(&stream), 0);
    EXPECT_PRINTED("open ./1970_00_01-05_30_00.jpg success");
    EXPECT_EQ(unlink("./1970_00_01-05_30_00.jpg"), 0);
}

TEST_F(SavedJpeg, SaysThatTheFileCannotBeCreated)
{
    ASSERT_EQ(mkdir(kName, 0755), 0); // a directory has the name
    MI_VENC_Stream stream = {};
    EXPECT_EQ(test_save_jpeg_to_file(&stream), 0);
    EXPECT_PRINTED("create file ./2025_00_01-05_29_59.jpg error");
    rmdir(kName);
}

TEST_F(SavedJpeg, SkipsPacksWithoutBytesAndGuardsNull)
{
    std::string bytes = "abcdef";
    MI_VENC_Pack packs[] = {pack_of(bytes, 6), pack_of(bytes, 7), pack_of(bytes, 0xFFFFFFFF), {}};
    packs[3].length_bytes = 5;
    MI_VENC_Stream stream = {};
    stream.packs = packs;
    stream.pack_count = 4;
    EXPECT_EQ(test_save_jpeg_to_file(&stream), 0);
    EXPECT_EQ(contents(), "");
    stream.packs = nullptr;
    EXPECT_EQ(test_save_jpeg_to_file(&stream), 0);
    EXPECT_EQ(test_save_jpeg_to_file(nullptr), 0);
}

TEST_F(SavedJpeg, GoesOnOverADiskWithoutRoom)
{
    ASSERT_EQ(symlink("/dev/full", kName), 0);
    std::string bytes(100000, 'x');
    MI_VENC_Pack packs[] = {pack_of(bytes, 0)};
    MI_VENC_Stream stream = {};
    stream.packs = packs;
    stream.pack_count = 1;
    EXPECT_EQ(test_save_jpeg_to_file(&stream), 0);
    EXPECT_PRINTED("open ./2025_00_01-05_29_59.jpg success");
    EXPECT_EQ(bytes_dumped(), 100u);
    EXPECT_EQ(recording::printed_text().find("error"), std::string::npos);
}

/* Whether this process may have real-time threads does not matter: the thread is an ordinary one here. */
TEST(EncoderThread, IsStartedInRealTimeAndGivenTwoSeconds)
{
    EXPECT_EQ(venc_start_getstream(3), 0);
    EXPECT_EQ(snap_refusal::asked_policy, SCHED_RR);
    EXPECT_EQ(snap_refusal::asked_priority, 75);
    EXPECT_TRUE(snap_refusal::asked_explicitly);
    EXPECT_EQ(snap_refusal::given[0], 1u); // running
    EXPECT_EQ(snap_refusal::given[1], 3u);
    EXPECT_EQ(snap_refusal::joined, 1u); // its parameter ends with the call
    EXPECT_PRINTED_IN_ORDER(R"(
        EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEsnap.c,venc_start_getstream,#
        ----------priority max=99,min=1-------------- !
    )");
    EXPECT_EQ(platform.calls(), trace("board_sleep_us 2000000"));
}

TEST(EncoderThread, FailsWhenThereIsNone)
{
    snap_refusal::thread = true;
    EXPECT_EQ(venc_start_getstream(3), -1);
    EXPECT_EQ(snap_refusal::joined, 0u);
    EXPECT_EQ(platform.calls(), "");
}

} // namespace
