/* event_inputs.cpp - see event_inputs.h. */
#include "controls/event_inputs.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "console/terminal.h"
#include "nvrhal.h"
#include "wall/session.h"

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
    const std::vector<Input> before = std::exchange(inputs_, {});
    auto add = [&](const Watched &one, bool is_motion) {
        Input input = {.watched = one, .is_motion = is_motion};
        const auto same = std::ranges::find_if(before, [&](const Input &other) {
            return other.watched.channel == one.channel && other.is_motion == is_motion;
        });
        if (same != before.end()) input = *same; /* what lasts there is no second event */
        input.watched = one;
        inputs_.push_back(input);
    };
    for (const Watched &one : watched) {
        if (one.alarm && one.channel < kAlarmInputs) add(one, false);
        if (one.motion) add(one, true);
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
    std::string missing;
    for (Input &input : inputs_) {
        input.is_watched = input.is_motion && wall_->session().motion().watch(input.watched.channel);
        if (!input.is_motion || input.is_watched || std::exchange(input.is_said, true)) continue;
        missing += (missing.empty() ? "" : ", ") + std::to_string(input.watched.channel);
    }
    if (!missing.empty())
        wall_->terminal().warning("events: no analog input tells of motion on this board for channel " +
                                  missing);
}

void EventInputs::look(Input &input, bool active, const std::string &text, Clock::time_point now)
{
    const bool goes_on = input.is_motion && input.active_at > now - input.watched.again;
    const bool rises = active && !input.active;
    const bool begins = rises && !goes_on;
    input.active = active;
    if (!active) return;
    input.active_at = now;
    if (!rises && now - input.told_at < input.watched.again) return;
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
