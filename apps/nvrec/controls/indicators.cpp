/* indicators.cpp - see indicators.h. */
#include "controls/indicators.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "console/terminal.h"
#include "nvrhal.h"

namespace nvrec
{
namespace
{

using namespace std::chrono_literals;

constexpr auto kIndicatorPeriod = 1s;
constexpr auto kBuzz = 10s;        /* for a loss, however long it lasts */
constexpr uint32_t kMaskBits = 32; /* channels with a loss bit */

/* As the library's clock takes it: full year, months from 1. */
std::array<int32_t, 9> system_time()
{
    const std::time_t now = std::chrono::system_clock::to_time_t(wall_time());
    std::tm utc = {};
    gmtime_r(&now, &utc);
    return {utc.tm_sec,  utc.tm_min,     utc.tm_hour,
            utc.tm_mday, utc.tm_mon + 1, utc.tm_year + 1900,
            utc.tm_wday, utc.tm_yday,    0};
}

} // namespace

bool Indicators::start(WallControl &wall)
{
    wall_ = &wall;
    ext_buzzer_set(0); /* start-up leaves its line high */
    read_clock();
    return true;
}

void Indicators::read_clock()
{
    std::array<int32_t, 9> tm = {};
    if (ext_rtc_time_system(tm.data(), 0) == 0) {
        std::printf("nvrec: the clock reads %04d-%02d-%02d %02d:%02d:%02d UTC\n", tm[5], tm[4], tm[3], tm[2],
                    tm[1], tm[0]);
        return;
    }
    tm = system_time();
    const bool set = ext_rtc_time_system(tm.data(), 1) == 0;
    wall_->terminal().error(set ? "clock: it had lost its time (is the battery empty?); set from the system's"
                                : "clock: it can be neither read nor set");
}

void Indicators::look_for_loss(Clock::time_point now)
{
    uint32_t mask[2] = {};
    const bool failed = ext_get_video_loss_status(mask) != 0;
    if (failed && !front_end_failed_) wall_->terminal().error("the analog front end does not answer");
    front_end_failed_ = failed;

    for (const auto &camera : wall_->cameras()) {
        const auto channel = static_cast<size_t>(camera->channel());
        if (channel >= kMostChannels || !camera->has_camera()) continue;
        const bool no_signal = channel < kMaskBits && (mask[0] >> channel & 1) != 0;
        const CameraStatus status = camera->status();
        const bool lost =
            no_signal || status.state == CameraState::kSilent || status.state == CameraState::kRefused;
        note_loss(lost, &lost_[channel], camera->label() + ": its video is ", now);
        note_loss(status.main_is_lost(now), &main_lost_[channel], camera->label() + ": its main stream is ",
                  now);
    }
    const auto any = [](const auto &losses) { return std::ranges::find(losses, true) != losses.end(); };
    if (!any(lost_) && !any(main_lost_)) buzz_until_ = {};
}

/* The next one's video was never lost. */
void Indicators::on_camera_replaced(int channel)
{
    const auto index = static_cast<size_t>(channel);
    if (index < kMostChannels) lost_[index] = main_lost_[index] = false;
}

void Indicators::note_loss(bool lost, bool *known, const std::string &what, Clock::time_point now)
{
    if (lost == *known) return;
    *known = lost;
    wall_->terminal().warning(what + (lost ? "lost" : "back"));
    if (lost) buzz_until_ = now + kBuzz;
}

void Indicators::drive_lamp()
{
    if (wall_->recording() == lamp_blinks_) return;
    lamp_blinks_ = wall_->recording();
    const int32_t result = lamp_blinks_ ? hi_start_record_proc() : hi_stop_record_proc();
    if (result != 0) wall_->terminal().error("the record lamp does not obey");
}

void Indicators::drive_buzzer(Clock::time_point now)
{
    const bool sounds = now < buzz_until_;
    if (sounds == buzzer_sounds_) return;
    buzzer_sounds_ = sounds;
    ext_buzzer_set(sounds ? 1 : 0);
}

Clock::time_point Indicators::take_turn(Clock::time_point now)
{
    drive_lamp();
    if (now >= look_at_) {
        look_for_loss(now);
        look_at_ = now + kIndicatorPeriod;
    }
    drive_buzzer(now);
    return look_at_; /* the buzzer ends with the look after its time */
}

void Indicators::stop()
{
    if (lamp_blinks_) hi_stop_record_proc();
    if (buzzer_sounds_) ext_buzzer_set(0);
    lamp_blinks_ = buzzer_sounds_ = false;
}

} // namespace nvrec
