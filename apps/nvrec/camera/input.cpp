/* input.cpp - see input.h: reads units. */
#include "camera/input.h"

namespace nvrec
{

bool Input::open(std::chrono::milliseconds limit)
{
    clock_.begin();
    sound_.clear();
    sound_packets_.clear();
    if (!source_.open(limit, sound_wanted_)) return false;
    if (live()) {
        live_clock_.set_stream(source_.facts().frame_rate, source_.held_back());
        live_clock_.begin(source_.catch_up());
    }
    clock_.set_stream(source_.facts().frame_rate, source_.held_back());
    clock_.set_may_be_joined(source_.may_be_joined());
    return true;
}

Input::Read Input::read(AccessUnit *unit)
{
    if (!source_.is_open()) {
        source_.fail("not open");
        return Read::kFailed;
    }
    if (source_.interrupted()) return Read::kInterrupted;
    const Read result = source_.next();
    if (result == Read::kUnit) {
        unit->bytes.assign(source_.bytes(), source_.bytes() + source_.size());
        unit->key = source_.is_key();
        live() ? stamp_arrived(unit) : stamp_place(unit);
        source_.release();
    }
    place_sound();
    if (result == Read::kUnit && unit->key) source_.look_into(unit->bytes.data(), unit->bytes.size());
    return result;
}

void Input::stamp_arrived(AccessUnit *unit)
{
    const LiveClock::Stamp stamp =
        live_clock_.stamp({source_.times(), source_.arrived_at().time_since_epoch().count()});
    unit->due_us = stamp.due_us;
    unit->pts_us = stamp.pts_us;
    unit->wall_us = time_of_day_.of(stamp.at_us);
    jumped_us_ = stamp.jumped_us;
    sound_place_ = {sound_place_.last_us, stamp.due_us};
}

void Input::stamp_place(AccessUnit *unit)
{
    clock_.set_stream(source_.facts().frame_rate, source_.held_back()); /* both may become known late */
    const UnitClock::Stamp stamp = clock_.stamp(source_.times());
    unit->due_us = stamp.due_us;
    unit->pts_us = stamp.pts_us;
    unit->wall_us = time_of_day_.of(Clock::now().time_since_epoch().count());
}

Input::Read Input::read_key(AccessUnit *unit)
{
    for (;;) {
        const Read result = read(unit);
        if (result != Read::kUnit || unit->key) return result;
    }
}

/* Sound that is read before the first unit waits for that unit, since all times count from it. */
void Input::place_sound()
{
    const std::optional<int64_t> offset_us = live() ? live_clock_.offset_us() : clock_.offset_us();
    if (!source_.sound() || !offset_us) return;
    const SoundPlace *place = live() ? &sound_place_ : nullptr;
    sound_.add(source_.sound()->take(), *offset_us, place);
    sound_packets_.add(source_.take_sound_packets(), *offset_us, place);
}

} // namespace nvrec
