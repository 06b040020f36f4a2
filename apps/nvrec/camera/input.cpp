/* input.cpp - see input.h: units as they come. */
#include "camera/input.h"

#include <algorithm>

namespace nvrec
{

bool Input::open(std::chrono::milliseconds limit)
{
    /* A camera that comes back counts from anew; its time goes on with the time it was away. */
    if (source_.live() && last_unit_at_ != Clock::time_point{})
        clock_.begin_after((Clock::now() - last_unit_at_).count());
    else
        clock_.begin();
    if (!source_.open(limit, sound_wanted_)) return false;
    clock_.set_stream(source_.facts().frame_rate, source_.held_back());
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
        clock_.set_stream(source_.facts().frame_rate, source_.held_back()); /* both may become known late */
        const UnitClock::Stamp stamp = clock_.stamp(source_.times());
        unit->due_us = stamp.due_us;
        unit->pts_us = stamp.pts_us;
        last_unit_at_ = Clock::now();
        unit->wall_us =
            std::chrono::duration_cast<std::chrono::microseconds>(wall_time().time_since_epoch()).count();
        source_.release();
    }
    place_sound();
    if (result == Read::kUnit && unit->key) source_.look_into(unit->bytes.data(), unit->bytes.size());
    return result;
}

Input::Read Input::read_key(AccessUnit *unit)
{
    for (;;) {
        const Read result = read(unit);
        if (result != Read::kUnit || unit->key) return result;
    }
}

/* Sound read before the first unit waits for that unit: it is what all times count from. */
void Input::place_sound()
{
    const std::optional<int64_t> offset_us = clock_.offset_us();
    if (!source_.sound() || !offset_us) return;
    for (SoundBlock &block : source_.sound()->take()) {
        block.pts_us += *offset_us;
        if (block.pts_us >= 0) sound_.push_back(block);
    }
}

std::vector<SoundBlock> Input::take_sound(int64_t until_us)
{
    const auto end = std::find_if(sound_.begin(), sound_.end(),
                                  [until_us](const SoundBlock &block) { return block.pts_us > until_us; });
    std::vector<SoundBlock> taken(sound_.begin(), end);
    sound_.erase(sound_.begin(), end);
    return taken;
}

} // namespace nvrec
