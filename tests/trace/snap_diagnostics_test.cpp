/* test_save_jpeg_to_file and venc_start_getstream. */
#include <pthread.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

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
    EXPECT_PRINTED("open ./2025_00_01-05_29_59.jpg success");
    std::string text = recording::printed_text();
    std::string head;
    for (char c = 'A'; c <= 'J'; ++c) {
        char one[32];
        snprintf(one, sizeof one, "pu8Addr_data[%x] ", c);
        head += one;
    }
    EXPECT_NE(text.find(head + "\npu8Addr_data[4b] "), std::string::npos) << text;
    EXPECT_EQ(platform.calls(), trace("board_time_us"));
}

TEST_F(SavedJpeg, DumpsTheFirst100BytesOfAPack)
{
    std::string bytes(250, 'x');
    MI_VENC_Pack packs[] = {pack_of(bytes, 0)};
    MI_VENC_Stream stream = {};
    stream.packs = packs;
    stream.pack_count = 1;
    EXPECT_EQ(test_save_jpeg_to_file(&stream), 0);
    EXPECT_EQ(contents().size(), 250u);
    unsigned dumped = 0;
    std::string text = recording::printed_text();
    for (size_t at = text.find("pu8Addr_data[78] "); at != std::string::npos;
         at = text.find("pu8Addr_data[78] ", at + 1))
        ++dumped;
    EXPECT_EQ(dumped, 100u);
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

/** Whether this process may have a round-robin thread of priority 75 at all. */
bool real_time_is_permitted()
{
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    sched_param priority = {};
    priority.sched_priority = 75;
    pthread_attr_setinheritsched(&attr, PTHREAD_EXPLICIT_SCHED);
    pthread_attr_setschedpolicy(&attr, SCHED_RR);
    pthread_attr_setschedparam(&attr, &priority);
    pthread_t thread;
    int created = pthread_create(
        &thread, &attr, [](void *) -> void * { return nullptr; }, nullptr);
    if (created == 0) pthread_join(thread, nullptr);
    pthread_attr_destroy(&attr);
    return created == 0;
}

TEST(EncoderThread, IsStartedInRealTimeAndGivenTwoSeconds)
{
    bool permitted = real_time_is_permitted();
    EXPECT_EQ(venc_start_getstream(3), permitted ? 0 : -1);
    EXPECT_PRINTED("----------priority max=99,min=1-------------- !");
    EXPECT_EQ(platform.calls(), permitted ? trace("board_sleep_us 2000000") : "");
}

} // namespace
