/*
 * indicators.h - drives the record lamp, the buzzer and the clock.
 *
 * The lamp is dark until something records, blinks while it does and is lit afterwards. The buzzer sounds ten
 * seconds for a camera whose video is lost: one that ran and sends nothing for three seconds, or whose analog
 * input has no signal. The clock is read once, and set from the system's clock when it has lost its time.
 *
 * Threads: the main one; on_unit() on the cameras'.
 */
#pragma once

#include <array>
#include <atomic>

#include "nvrhal/limits.h"
#include "wall/module.h"

namespace nvrec
{

class Indicators final : public Module
{
public:
    bool start(WallControl &wall) override;
    Clock::time_point take_turn(Clock::time_point now) override;
    void on_camera_replaced(int channel) override;
    void stop() override;

private:
    static constexpr size_t kMostChannels = NVRHAL_MAX_CAMERAS;

    void read_clock();
    void drive_lamp();
    void look_for_loss(Clock::time_point now);
    void note_loss(bool lost, bool *known, const std::string &what, Clock::time_point now);
    void drive_buzzer(Clock::time_point now);

    WallControl *wall_ = nullptr;
    std::array<bool, kMostChannels> lost_ = {};
    std::array<bool, kMostChannels> main_lost_ = {}; /* and its sub stream is seen */
    bool front_end_failed_ = false;
    bool lamp_blinks_ = false;
    bool buzzer_sounds_ = false;
    Clock::time_point look_at_;
    Clock::time_point buzz_until_;
};

} // namespace nvrec
