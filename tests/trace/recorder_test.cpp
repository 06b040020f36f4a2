/* The recording platform itself: what it answers unscripted, refuses, hands out and lets wait. */
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <thread>

#include "board_io.h"
#include "core_start.h"
#include "fb_driver.h"
#include "rtc_driver.h"

using recording::kHandedOutByte;
using recording::platform;

namespace
{

constexpr char kNode[] = "/dev/some_node";

bool is_all_pattern(const void *memory, size_t size)
{
    const auto *bytes = static_cast<const uint8_t *>(memory);
    return std::all_of(bytes, bytes + size, [](uint8_t byte) { return byte == kHandedOutByte; });
}

constexpr int32_t refusal(uint32_t module, uint32_t reason)
{
    return MI_ERROR(module, reason);
}

TEST(Recorder, LetsTheLibraryStartWithNothingScripted)
{
    DeviceParams params = core_test::device_params(4);
    EXPECT_EQ(ext_device_init(&params), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX("fb init done!");
    EXPECT_PRINTED_WITHOUT_PREFIX("init done!");
    EXPECT_NE(platform.node("/dev/fb0").memory().first, nullptr);
    for (const std::string &line : recording::printed_lines())
        EXPECT_TRUE(line.find("fail") == std::string::npos && line.find("err") == std::string::npos) << line;
}

TEST(Recorder, FillsWhatItMapsWithAPattern)
{
    const int descriptor = board_open(kNode, O_RDWR);
    void *memory = board_map(descriptor, 10000);
    ASSERT_NE(memory, nullptr);
    EXPECT_TRUE(is_all_pattern(memory, 10000));
    EXPECT_EQ(board_unmap(memory, 10000), 0);
}

TEST(Recorder, FillsTheRestOfRecordsWithAPattern)
{
    MI_SYS_Version version = {};
    ASSERT_EQ(MI_SYS_GetVersion(&version), 0);
    const std::string text = version.text;
    EXPECT_EQ(text, "recording platform");
    EXPECT_TRUE(is_all_pattern(version.text + text.size() + 1, sizeof version.text - text.size() - 1));

    const int descriptor = board_open("/dev/fb0", O_RDWR);
    fb_fix_screeninfo fixed = {};
    ASSERT_EQ(board_ioctl(descriptor, FBIOGET_FSCREENINFO, &fixed), 0);
    EXPECT_EQ(fixed.smem_len, fixed.line_length * 720);
    EXPECT_TRUE(is_all_pattern(fixed.id, sizeof fixed.id));
}

TEST(Recorder, LendsAPictureUntilItIsReleased)
{
    platform.be_lenient();
    MI_VENC_Pack packs[2] = {};
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    ASSERT_EQ(MI_VENC_GetStream(0, &stream, 0), 0);
    ASSERT_EQ(stream.pack_count, 1u);
    const uint8_t *picture = packs[0].address;
    EXPECT_EQ(picture[0], 0xFF);
    EXPECT_TRUE(is_all_pattern(packs[0].reserved, sizeof packs[0].reserved));
    EXPECT_TRUE(is_all_pattern(&packs[1], sizeof packs[1]));
    ASSERT_EQ(MI_VENC_ReleaseStream(0, &stream), 0);
    EXPECT_TRUE(is_all_pattern(picture, packs[0].length_bytes)) << "whoever still reads it gets nonsense";
}

TEST(Recorder, ShowsItsOwnTimeOnTheClock)
{
    platform.set_time_us(1'700'000'000'000'000); // 2023-11-14 22:13:20 UTC
    rtc_time time = {};
    ASSERT_EQ(board_ioctl(board_open(RTC_NODE, O_RDWR), RTC_RD_TIME, &time), 0);
    EXPECT_EQ(time.tm_year, 123);
    EXPECT_EQ(time.tm_mon, 10);
    EXPECT_EQ(time.tm_mday, 14);
    EXPECT_EQ(time.tm_sec, 20);
}

TEST(Recorder, RefusesEverythingOnADescriptorThatIsNotOpen)
{
    uint8_t bytes[4] = {1, 2, 3, 4};
    const int closed = board_open(kNode, O_RDWR);
    ASSERT_EQ(board_close(closed), 0);
    for (const int descriptor : {-1, 0, closed, 4711}) {
        SCOPED_TRACE(descriptor);
        errno = 0;
        EXPECT_EQ(board_read(descriptor, bytes, sizeof bytes), -1);
        EXPECT_EQ(errno, EBADF);
        EXPECT_EQ(board_ioctl(descriptor, 0x1234, bytes), -1);
        EXPECT_EQ(board_map(descriptor, 4096), nullptr);
        errno = 0;
        EXPECT_EQ(board_close(descriptor), -1);
        EXPECT_EQ(errno, EBADF);
    }
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(platform.count("board_read " + std::to_string(closed) + " 4"), 1u) << "recorded all the same";
}

TEST(Recorder, ReopensADescriptorThatWasOpened)
{
    platform.node(kNode).opens_as(7);
    EXPECT_EQ(board_ioctl(7, 1, nullptr), -1) << "nobody opened it yet";
    EXPECT_EQ(board_open(kNode, O_RDWR), 7);
    EXPECT_EQ(board_ioctl(7, 1, nullptr), 0);
}

TEST(Recorder, GivesDecodersALife)
{
    MI_VDEC_ChnAttr attr = {};
    MI_VDEC_ChnStat stat = {};
    const uint8_t byte = 0;
    const MI_VDEC_Stream stream = {&byte, 1, 0, 0, 0};
    constexpr int32_t kAbsent = refusal(MI_MODULE_VDEC, MI_REASON_ABSENT);
    constexpr int32_t kNotPermitted = refusal(MI_MODULE_VDEC, MI_REASON_NOT_PERMITTED);
    EXPECT_EQ(MI_VDEC_StartChn(2), kAbsent);
    EXPECT_EQ(MI_VDEC_StopChn(2), kAbsent);
    EXPECT_EQ(MI_VDEC_GetChnAttr(2, &attr), kAbsent);
    EXPECT_EQ(MI_VDEC_GetChnStat(2, &stat), kAbsent);
    EXPECT_EQ(MI_VDEC_SendStream(2, &stream, 0), kAbsent);
    EXPECT_EQ(MI_VDEC_DestroyChn(2), kAbsent);

    EXPECT_EQ(MI_VDEC_CreateChn(2, &attr), 0);
    EXPECT_EQ(MI_VDEC_CreateChn(2, &attr), refusal(MI_MODULE_VDEC, MI_REASON_EXISTS));
    EXPECT_EQ(MI_VDEC_SendStream(2, &stream, 0), kNotPermitted) << "it is not started";
    EXPECT_EQ(MI_VDEC_StartChn(2), 0);
    EXPECT_EQ(MI_VDEC_SendStream(2, &stream, 0), 0);
    EXPECT_EQ(MI_VDEC_DestroyChn(2), kNotPermitted) << "it is not stopped";
    EXPECT_EQ(MI_VDEC_StopChn(2), 0);
    EXPECT_EQ(MI_VDEC_DestroyChn(2), 0);
    EXPECT_EQ(MI_VDEC_DestroyChn(2), kAbsent);
}

TEST(Recorder, GivesBindingsALife)
{
    const MI_SYS_ChnPort decoder = {MI_MODULE_VDEC, 0, 1, 0}, other = {MI_MODULE_VDEC, 0, 0, 0};
    const MI_SYS_ChnPort port = {MI_MODULE_DISP, 0, 1, 0}, scaler = {MI_MODULE_DIVP, 0, 0, 0};
    constexpr int32_t kAbsent = refusal(MI_MODULE_SYS, MI_REASON_ABSENT);
    EXPECT_EQ(MI_SYS_BindChnPort(&decoder, &port, 15, 15), kAbsent) << "there is no such decoder";
    platform.have_decoders(2);
    EXPECT_EQ(MI_SYS_BindChnPort(&decoder, &scaler, 15, 15), kAbsent) << "nor such a scaler";
    EXPECT_EQ(MI_SYS_BindChnPort(&port, &decoder, 15, 15), refusal(MI_MODULE_SYS, MI_REASON_UNSUPPORTED));
    EXPECT_EQ(MI_SYS_UnBindChnPort(&decoder, &port), kAbsent);

    EXPECT_EQ(MI_SYS_BindChnPort(&decoder, &port, 15, 15), 0);
    EXPECT_EQ(MI_SYS_BindChnPort(&other, &port, 15, 15), refusal(MI_MODULE_SYS, MI_REASON_EXISTS));
    EXPECT_EQ(MI_SYS_UnBindChnPort(&other, &port), kAbsent);
    EXPECT_EQ(MI_SYS_UnBindChnPort(&decoder, &port), 0);
    EXPECT_EQ(MI_SYS_UnBindChnPort(&decoder, &port), kAbsent);
}

TEST(Recorder, GivesScalersAndEncodersALife)
{
    const MI_DIVP_ChnAttr scaler = {};
    const MI_VENC_ChnAttr encoder = {};
    EXPECT_EQ(MI_DIVP_StartChn(0), refusal(MI_MODULE_DIVP, MI_REASON_ABSENT));
    EXPECT_EQ(MI_DIVP_CreateChn(0, &scaler), 0);
    EXPECT_EQ(MI_DIVP_CreateChn(0, &scaler), refusal(MI_MODULE_DIVP, MI_REASON_EXISTS));
    EXPECT_EQ(MI_VENC_StartRecvPic(2), refusal(MI_MODULE_VENC, MI_REASON_ABSENT));
    EXPECT_EQ(MI_VENC_CreateChn(2, &encoder), 0);
    EXPECT_EQ(MI_VENC_CreateChn(2, &encoder), refusal(MI_MODULE_VENC, MI_REASON_EXISTS));
    EXPECT_EQ(MI_VENC_DestroyChn(2), 0);
}

TEST(Recorder, ScriptsWinOverRefusals)
{
    platform.script("MI_VDEC_StopChn").with("3").returns(0);
    EXPECT_EQ(MI_VDEC_StopChn(3), 0);
}

TEST(Recorder, RefusesNoChannelWhenLenient)
{
    platform.be_lenient();
    const MI_SYS_ChnPort decoder = {MI_MODULE_VDEC, 0, 1, 0}, port = {MI_MODULE_DISP, 0, 1, 0};
    EXPECT_EQ(MI_VDEC_DestroyChn(2), 0);
    EXPECT_EQ(MI_SYS_UnBindChnPort(&decoder, &port), 0);
    uint8_t byte = 0;
    EXPECT_EQ(board_read(99, &byte, 1), -1) << "descriptors have their life always";
    platform.reset();
    EXPECT_NE(MI_VDEC_DestroyChn(2), 0) << "strict again";
}

TEST(Recorder, LetsAReadWaitForWhatTheTestQueues)
{
    recording::Node node = platform.node(kNode);
    node.makes_reads_wait();
    int got = -7;
    uint8_t bytes[8] = {};
    const int descriptor = board_open(kNode, O_RDONLY);
    std::thread reader([&] { got = board_read(descriptor, bytes, sizeof bytes); });
    ASSERT_TRUE(node.wait_for_readers(1));
    EXPECT_EQ(got, -7);
    node.reads({11, 12, 13});
    reader.join();
    EXPECT_EQ(got, 3);
    EXPECT_EQ(bytes[2], 13);
}

TEST(Recorder, LetsWaitingReadersGo)
{
    recording::Node node = platform.node(kNode);
    node.makes_reads_wait();
    int got[2] = {-7, -7};
    uint8_t bytes[2] = {};
    const int descriptor = board_open(kNode, O_RDONLY);
    std::thread first([&] { got[0] = board_read(descriptor, &bytes[0], 1); });
    std::thread second([&] { got[1] = board_read(descriptor, &bytes[1], 1); });
    ASSERT_TRUE(node.wait_for_readers(2));
    node.lets_readers_go();
    first.join();
    second.join();
    EXPECT_EQ(got[0], 0);
    EXPECT_EQ(got[1], 0);
    EXPECT_EQ(board_read(descriptor, bytes, 1), 0) << "nobody waits any more";
}

TEST(Recorder, ShowsWhatACallHandedOverBeforeItAnswers)
{
    char before = 0, after = 0;
    platform.script("MI_SYS_GetVersion").sees([&](recording::Args &args) {
        before = args.record<MI_SYS_Version>(0).text[0];
    });
    platform.script("MI_SYS_GetVersion").fills([&](recording::Args &args) {
        after = args.record<MI_SYS_Version>(0).text[0];
    });
    MI_SYS_Version version = {};
    version.text[0] = 'x';
    ASSERT_EQ(MI_SYS_GetVersion(&version), 0);
    EXPECT_EQ(before, 'x');
    EXPECT_EQ(after, 'r');
}

} // namespace
