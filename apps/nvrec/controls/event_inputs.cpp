/* event_inputs.cpp - see event_inputs.h. */
#include "controls/event_inputs.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "nvrhal.h"
#include "wall/session.h"
#include "wall/terminal.h"

namespace nvrec
{
namespace
{

constexpr auto kEventPeriod = std::chrono::milliseconds(250);
constexpr int kAlarmInputs = 64; /* bits of their mask */

} // namespace

EventInputs::EventInputs(const std::vector<Watched> &watched, Teller on_event, LastingTeller on_lasting)
    : on_event_(std::move(on_event)), on_lasting_(std::move(on_lasting))
{
    set(watched);
}

void EventInputs::set(const std::vector<Watched> &watched)
{
    inputs_.clear();
    for (const Watched &one : watched) {
        if (one.alarm && one.channel < kAlarmInputs) inputs_.push_back({.watched = one, .is_motion = false});
        if (one.motion) inputs_.push_back({.watched = one, .is_motion = true});
    }
    if (wall_) begin_motion();
}

bool EventInputs::start(WallControl &wall)
{
    wall_ = &wall;
    begin_motion();
    return true;
}

/* A board without analog inputs has no chips that look for motion. */
void EventInputs::begin_motion()
{
    bool missing = false;
    for (Input &input : inputs_) {
        input.is_watched = input.is_motion && wall_->session().motion().watch(input.watched.channel);
        missing |= input.is_motion && !input.is_watched;
    }
    if (missing) wall_->terminal().warning("events: no analog input tells of motion on this board");
}

void EventInputs::look(Input &input, bool active, const std::string &text, Clock::time_point now)
{
    const bool goes_on = input.is_motion && input.active_at > now - input.watched.again;
    const bool begins = active && !input.active && !goes_on;
    input.active = active;
    if (!active) return;
    input.active_at = now;
    if (!begins && now - input.told_at < input.watched.again) return;
    input.told_at = now;
    if (begins)
        on_event_(input.watched.channel, input.is_motion ? "motion" : "alarm", text);
    else if (on_lasting_)
        on_lasting_(input.watched.channel);
}

Clock::time_point EventInputs::take_turn(Clock::time_point now)
{
    if (inputs_.empty()) return Clock::time_point::max();
    if (now < look_at_) return look_at_;
    look_at_ = now + kEventPeriod;
    nvrhal_u64 alarms = 0;
    const bool alarms_told = ext_alarm_status_get(&alarms) == 0;
    for (Input &input : inputs_) {
        if (!input.is_motion) {
            look(input, alarms_told && (alarms >> input.watched.channel & 1) != 0,
                 "alarm input " + std::to_string(input.watched.channel), now);
        } else if (input.is_watched) {
            const uint32_t blocks =
                wall_->session().motion().moving_blocks(input.watched.channel).value_or(0);
            look(input, blocks > 0, std::to_string(blocks) + " blocks move", now);
        }
    }
    return look_at_;
}

} // namespace nvrec
