/* What the screen says of cameras, disks and endings, pixel by pixel on the board's framebuffer. */
#include <gtest/gtest.h>

#include <ctime>

#include "controls/event_inputs.h"
#include "overlay_board.h"
#include "screen/pane_texts.h"
#include "screen/qr_code.h"
#include "vboard_devices.h"
#include "wall/recording_status.h"

using namespace nvrec;
using namespace nvrec_test;

namespace
{

constexpr std::time_t kNoon = 1790000000;

class NvrecScreenStates : public OverlayOnBoard
{
protected:
    /* Pane 1 of 2 x 2, painted with that state. */
    Rect paint(const PaneState &state)
    {
        const Rect damaged = marks_.set_state(1, state, kNoon);
        EXPECT_TRUE(canvas_.begin());
        canvas_.clear(canvas_.whole());
        marks_.paint(canvas_);
        canvas_.end();
        return damaged;
    }

    void SetUp() override
    {
        OverlayOnBoard::SetUp();
        ASSERT_EQ(canvas_.open(), "");
        ASSERT_EQ(font_.open(find_font()), "");
        marks_.lay(wall_.session().panes(), {});
    }

    /* How many pixels of an area show the video. */
    static int clear_pixels(const Rect &area)
    {
        int clear = 0;
        for (int y = area.y; y < area.bottom(); ++y) {
            for (int x = area.x; x < area.right(); ++x)
                clear += pixel(x, y) == 0;
        }
        return clear;
    }

    Canvas canvas_;
    Font font_;
    PaneMarks marks_{&font_, {}};
};

constexpr Rect kCorner = {970, 10, 200, 100}; /* of pane 1, away from all texts */

TEST_F(NvrecScreenStates, ASilentCamerasPictureLiesUnderADarkPatternUntilItComesBack)
{
    PaneState silent;
    silent.notice = PaneNotice::kNoVideo;
    silent.since = kNoon - 60;
    EXPECT_EQ(paint(silent), (Rect{960, 0, 960, 540})) << "the whole pane changes";
    EXPECT_EQ(clear_pixels(kCorner), kCorner.w * kCorner.h / 4) << "one of four pixels shows the video";
    EXPECT_EQ(clear_pixels({10, 10, 200, 100}), 200 * 100) << "the other panes are as they were";
    const Rect notice = marks_.notice_of(1);
    EXPECT_GT(notice.h, 60) << "large";
    EXPECT_LE(std::abs(notice.x + notice.w / 2 - 1440), 1);

    EXPECT_EQ(paint({}), (Rect{960, 0, 960, 540}));
    EXPECT_EQ(clear_pixels(kCorner), kCorner.w * kCorner.h);
    EXPECT_TRUE(marks_.notice_of(1).empty());
}

TEST_F(NvrecScreenStates, ASilentCamerasPaneSaysTheDayFromMidnightOn)
{
    PaneState silent;
    silent.notice = PaneNotice::kNoVideo;
    silent.since = kNoon - 60;
    paint(silent);
    const Rect today = marks_.notice_of(1);
    EXPECT_EQ(marks_.set_state(1, silent, kNoon + 60), Rect{}) << "as long as it is today";
    const Rect damaged = marks_.set_state(1, silent, kNoon + 86400);
    EXPECT_GT(marks_.notice_of(1).w, today.w) << "longer by the day";
    EXPECT_EQ(damaged, marks_.notice_of(1)) << "which is all that changes";
    EXPECT_EQ(marks_.set_state(1, silent, kNoon + 86460), Rect{});
}

TEST_F(NvrecScreenStates, ANoticeWithoutThePatternCostsItsOwnPlaceAlone)
{
    PaneState waiting;
    waiting.notice = PaneNotice::kWaitsForKey;
    const Rect damaged = paint(waiting);
    EXPECT_EQ(damaged, marks_.notice_of(1));
    EXPECT_FALSE(damaged.empty());
    EXPECT_EQ(clear_pixels(kCorner), kCorner.w * kCorner.h);
}

TEST_F(NvrecScreenStates, SignsStandInTheLowerRightCornerOneForEachThingThatIs)
{
    EXPECT_TRUE(marks_.signs_of(1).empty());
    int width = 0;
    PaneState state;
    for (bool PaneState::*sign :
         {&PaneState::recording, &PaneState::sound, &PaneState::motion, &PaneState::no_signal}) {
        state.*sign = true;
        paint(state);
        const Rect signs = marks_.signs_of(1);
        EXPECT_GT(signs.w, width);
        EXPECT_TRUE(inside(signs, {1800, 480, 120, 60})) << signs.x << "," << signs.y;
        width = signs.w;
    }
    const Rect signs = marks_.signs_of(1);
    int red = 0;
    for (int y = signs.y; y < signs.bottom(); ++y)
        for (int x = signs.x; x < signs.right(); ++x)
            red += pixel(x, y) == pixel_of(0xF83030);
    EXPECT_GT(red, 100) << "the recording dot";
}

/* As the chips of the board's analog inputs tell it, beside another who wants motion events. */
TEST_F(NvrecScreenStates, ThePaneOfAnAnalogInputShowsItsMotionAndItsLoss)
{
    wall_.add_cameras(kCameras);
    start();
    std::vector<int> events;
    EventInputs plan(
        {{2, false, true, std::chrono::seconds(5)}},
        [&events](int channel, const std::string &, const std::string &) { events.push_back(channel); });
    ASSERT_TRUE(plan.start(wall_));
    auto now = Clock::now() + std::chrono::seconds(2);
    overlay_->take_turn(now);
    EXPECT_TRUE(overlay_->panes()->signs_of(1).empty());
    ASSERT_EQ(vboard_ad_set_motion(1, 5), 0);
    overlay_->take_turn(now += std::chrono::seconds(2));
    const Rect moving = overlay_->panes()->signs_of(1);
    EXPECT_FALSE(moving.empty());
    EXPECT_TRUE(overlay_->panes()->signs_of(2).empty());
    ASSERT_EQ(vboard_ad_set_loss(1, 1), 0);
    overlay_->take_turn(now += std::chrono::seconds(2));
    EXPECT_GT(overlay_->panes()->signs_of(1).w, moving.w) << "no signal beside motion";
    for (const uint32_t channel : {1u, 2u}) {
        vboard_ad_input input = {};
        ASSERT_EQ(vboard_ad_get_input(channel, &input), 0);
        EXPECT_GT(input.area_bits, 0u) << "watched still, after another one began: " << channel;
    }
    plan.take_turn(now);
    EXPECT_EQ(events, std::vector<int>{}) << "nothing moves at the plan's camera";
}

TEST_F(NvrecScreenStates, PanesWithoutACameraHaveAQuietMarkAndRoomForTheClock)
{
    start();
    EXPECT_TRUE(inside(overlay_->clock()->place(), {1400, 0, 520, 80})) << "pictures are everywhere";
    wall_.show_layout(Layout::kGrid3);
    const Rect last = {1280, 720, 640, 360};
    EXPECT_EQ(overlay_->panes()->unused_pane(), last);
    EXPECT_TRUE(inside(overlay_->clock()->place(), last));
    EXPECT_EQ(pixel(last.x + 10, last.y + 300), pixel_of(kUnusedGround));
    EXPECT_NE(pixel(last.x + 320, last.y + 180), pixel_of(kUnusedGround)) << "the mark";
    EXPECT_EQ(pixel(300, 100), 0) << "a camera's pane is left alone";
}

TEST_F(NvrecScreenStates, WhatIsWrongStandsInALineAtTheTopWhileItLasts)
{
    start();
    const auto before = screen();
    wall_.said_alarm = "the disk of /srv/video does not answer";
    overlay_->take_turn(Clock::now());
    const Rect place = overlay_->line()->place();
    ASSERT_FALSE(place.empty());
    EXPECT_LT(place.bottom(), 80);
    EXPECT_TRUE(intersection(place, overlay_->clock()->place()).empty()) << "beside the clock";
    EXPECT_EQ(pixel(place.x + 4, place.y + 4), pixel_of(0xC01820));
    wall_.said_alarm.clear();
    overlay_->take_turn(Clock::now());
    EXPECT_EQ(difference(before, screen()), Rect{});
}

TEST_F(NvrecScreenStates, EndingAsksAndGoingOnIsTheFirstAnswer)
{
    start();
    ASSERT_TRUE(overlay_->ask_whether_to_end());
    ASSERT_TRUE(overlay_->question()->is_open());
    EXPECT_FALSE(overlay_->ask_whether_to_end()) << "who asks again is not asked back";
    EXPECT_LT(overlay_->input_layer(), InputLayer::kZoom) << "its keys come first";
    press({Key::kEnter});
    EXPECT_FALSE(overlay_->question()->is_open());
    EXPECT_TRUE(wall_.ends.empty()) << "a key that is pressed by chance ends nothing";

    overlay_->ask_whether_to_end();
    press({Key::kBack});
    EXPECT_TRUE(wall_.ends.empty());

    overlay_->ask_whether_to_end();
    press({Key::kDown, Key::kEnter});
    EXPECT_EQ(wall_.ends, std::vector{0});

    overlay_->ask_whether_to_end();
    const Rect yes = overlay_->question()->answer_place(1);
    overlay_->on_pointer({yes.x + 20, yes.y + 4, 1, 1, 0});
    EXPECT_EQ(wall_.ends, (std::vector{0, 0}));
}

TEST_F(NvrecScreenStates, WithoutAnOverlayNobodyIsAsked)
{
    options_.mode = OverlayMode::kOff;
    start();
    EXPECT_FALSE(overlay_->ask_whether_to_end());
}

TEST_F(NvrecScreenStates, AnAddressWithoutACodeIsNamedWithoutItsToken)
{
    options_.address = "http://192.0.2.10/?token=hunter7" + std::string(kLongestQrText, 'x');
    options_.show_address = true;
    testing::internal::CaptureStderr();
    start();
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("no QR code of the address: http://192.0.2.10/?token=***"), std::string::npos)
        << said;
    EXPECT_EQ(said.find("hunter7"), std::string::npos) << said;
}

TEST(NvrecScreenTexts, EveryNoticeInBothLanguages)
{
    setenv("TZ", "UTC", 1);
    tzset();
    PaneState state;
    auto say = [&state](Language language) {
        const NoticeText text = notice_text(state, "Yard", kNoon, language);
        return text.title + "|" + text.line;
    };
    EXPECT_EQ(say(Language::kEnglish), "|");

    state.notice = PaneNotice::kNoVideo;
    state.since = kNoon - 60;
    EXPECT_EQ(say(Language::kEnglish), "No video|since 14:12:20");
    EXPECT_EQ(say(Language::kChinese), "无视频信号|自 14:12:20 起");
    state.since = kNoon - 86400;
    EXPECT_EQ(say(Language::kEnglish), "No video|since 2026-09-20 14:13:20") << "another day";

    state.notice = PaneNotice::kMissing;
    EXPECT_EQ(say(Language::kEnglish), "No video|Yard has not come yet");
    EXPECT_EQ(say(Language::kChinese), "无视频信号|Yard尚未接入");
    state.reason = "cannot open: Connection refused";
    EXPECT_EQ(say(Language::kEnglish), "No video|Yard: cannot open: Connection refused");

    state.notice = PaneNotice::kWaitsForKey;
    EXPECT_EQ(say(Language::kEnglish), "|Waiting for the next key frame");
    EXPECT_EQ(say(Language::kChinese), "|等待下一个关键帧");

    state.notice = PaneNotice::kRefused;
    state.too_large_bytes = 812345;
    EXPECT_EQ(say(Language::kEnglish), "Cannot be shown|its key frame has 812 kB; the decoder takes 655 kB");
    EXPECT_EQ(say(Language::kChinese), "无法显示|关键帧 812 kB，超过上限 655 kB");
}

/* A recorder that stands as the test says. */
struct SaidRecording final : RecordingView {
    std::vector<RecordingStatus> recordings() const override { return streams; }
    DiskStatus disk() const override { return said_disk; }
    bool runs(int) const override { return false; }

    std::vector<RecordingStatus> streams;
    DiskStatus said_disk;
};

TEST(NvrecScreenTexts, TheGravestTroubleOfARecordingIsTheOneThatIsSaid)
{
    CameraNames names, chinese;
    chinese.language = Language::kChinese;
    EXPECT_EQ(alarm_text(nullptr, "", names), "");
    EXPECT_EQ(alarm_text(nullptr, "too hot", names), "too hot");

    SaidRecording recorder;
    RecordingStatus stream;
    stream.channel = 2;
    stream.state = RecordingState::kFailing;
    stream.last_error = "Permission denied";
    recorder.streams = {stream};
    EXPECT_EQ(alarm_text(&recorder, "too hot", names), "Camera 3 is not recorded: Permission denied");
    EXPECT_EQ(alarm_text(&recorder, "", chinese), "通道3录像失败：Permission denied");

    RecordingStatus waiting;
    waiting.stream = "main";
    waiting.channel = 1;
    waiting.state = RecordingState::kWaiting;
    recorder.streams = {waiting, stream};
    EXPECT_EQ(alarm_text(&recorder, "", names, {1}), "Camera 3 is not recorded: Permission denied");
    recorder.streams = {waiting};
    EXPECT_EQ(alarm_text(&recorder, "too hot", names, {1}),
              "Camera 2 is not recorded: its main stream does not come");
    EXPECT_EQ(alarm_text(&recorder, "", chinese, {0, 1}), "通道2录像失败：主码流中断");
    EXPECT_EQ(alarm_text(&recorder, "", names, {0}), "") << "its pane says that nothing comes";
    recorder.streams[0].state = RecordingState::kOff;
    EXPECT_EQ(alarm_text(&recorder, "", names, {1}), "") << "it is not to be recorded";

    recorder.said_disk.state = DiskState::kFailing;
    recorder.said_disk.trouble = "Input/output error";
    EXPECT_EQ(alarm_text(&recorder, "", names), "Recording fails: Input/output error");
    recorder.said_disk.state = DiskState::kHangs;
    recorder.said_disk.trouble = "the disk does not answer";
    EXPECT_EQ(alarm_text(&recorder, "", names), "The disk does not answer") << "once";
    EXPECT_EQ(alarm_text(&recorder, "", chinese), "磁盘无响应");
}

} // namespace
