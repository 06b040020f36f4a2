/* event_inputs.cpp - see event_inputs.h. */
#include "controls/event_inputs.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "nvrhal.h"
#include "wall/terminal.h"

namespace nvrec
{
namespace
{

constexpr auto kEventPeriod = std::chrono::milliseconds(250);
constexpr int kMotionInputsPerChip = 4;
constexpr int kAlarmInputs = 64; /* bits of their mask */

/* What the library's question about motion looks like: offsets 0, 1, 4. */
struct MotionQuery {
    uint8_t chip;
    uint8_t input;
    uint8_t unused[2];
    uint32_t blocks; /* out: those that move */
};
static_assert(sizeof(MotionQuery) == 8);

/* And what it takes as the part of a picture that is watched. */
struct MotionArea {
    uint8_t chip;
    uint8_t input;
    uint8_t blocks[640]; /* a bit a block */
};
static_assert(sizeof(MotionArea) == 642);

bool watch_whole_picture(int channel)
{
    MotionArea area = {};
    area.chip = static_cast<uint8_t>(channel / kMotionInputsPerChip);
    area.input = static_cast<uint8_t>(channel % kMotionInputsPerChip);
    std::ranges::fill(area.blocks, uint8_t{0xff});
    return SetMotionArea(reinterpret_cast<const AdMotionArea *>(&area)) == 0;
}

std::optional<uint32_t> moving_blocks(int channel)
{
    MotionQuery query = {};
    query.chip = static_cast<uint8_t>(channel / kMotionInputsPerChip);
    query.input = static_cast<uint8_t>(channel % kMotionInputsPerChip);
    if (GetMotionArea(reinterpret_cast<AdMotionQuery *>(&query)) != 0) return std::nullopt;
    return query.blocks;
}

} // namespace

EventInputs::EventInputs(std::vector<Watched> watched, Teller on_event) : on_event_(std::move(on_event))
{
    set(std::move(watched));
}

void EventInputs::set(std::vector<Watched> watched)
{
    inputs_.clear();
    for (const Watched &one : watched) {
        if (one.alarm && one.channel < kAlarmInputs) inputs_.push_back({one, false, false, {}});
        if (one.motion) inputs_.push_back({one, true, false, {}});
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
    if (std::ranges::none_of(inputs_, &Input::is_motion)) return;
    if (!motion_begun_) motion_begun_ = InitMotion() == 0; /* watches nothing yet */
    for (const Input &input : inputs_) {
        if (motion_begun_ && input.is_motion) watch_whole_picture(input.watched.channel);
    }
    if (!motion_begun_) wall_->terminal().warning("events: no analog input tells of motion on this board");
}

void EventInputs::look(Input &input, bool active, const std::string &text, Clock::time_point now)
{
    const bool begins = active && !input.active;
    input.active = active;
    if (!active || (!begins && now - input.told_at < input.watched.again)) return;
    input.told_at = now;
    on_event_(input.watched.channel, input.is_motion ? "motion" : "alarm", text);
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
        } else if (motion_begun_) {
            const uint32_t blocks = moving_blocks(input.watched.channel).value_or(0);
            look(input, blocks > 0, std::to_string(blocks) + " blocks move", now);
        }
    }
    return look_at_;
}

} // namespace nvrec
