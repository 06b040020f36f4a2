/*
 * input_seek.cpp - see input.h: going to another place of a file. Containers are asked for the key
 * frame; the bare stream of a codec has no index, so it is read through to find it, and once more up to
 * it.
 */
#include "camera/input.h"

namespace nvrec
{

bool Input::rewind()
{
    constexpr const char *kFailure = "cannot go back to the start";
    if (source_.live() || !source_.is_open()) return source_.fail(kFailure);
    if (!(source_.is_bare() ? source_.to_first_byte(kFailure) : source_.to_first_picture(kFailure)))
        return false;
    clock_.begin_again();
    return true;
}

bool Input::seek(int64_t target_us, AccessUnit *unit)
{
    constexpr const char *kFailure = "cannot go to another place";
    if (source_.live() || !source_.is_open()) return source_.fail(kFailure);
    if (source_.is_bare()) return seek_in_bare_stream(target_us, unit);

    /* Key frames are found by the time at which they are shown. */
    if (!source_.to_key_before(clock_.first_pts_us() + target_us, kFailure)) return false;
    clock_.go_to_places();
    const Read result = read_key(unit);
    if (result != Read::kUnit) return result == Read::kEnd && source_.fail("no key frame at that place");
    clock_.set_next_number(clock_.number_at(unit->due_us) + 1);
    return true;
}

bool Input::seek_in_bare_stream(int64_t target_us, AccessUnit *unit)
{
    auto begin = [this] {
        if (!source_.to_first_byte("cannot go to another place")) return false;
        clock_.go_to_places();
        clock_.set_next_number(0);
        return true;
    };
    if (!begin()) return false;
    int64_t key_number = 0;
    while (read(unit) == Read::kUnit && unit->due_us <= target_us) {
        if (unit->key) key_number = clock_.next_number() - 1;
    }
    if (!begin()) return false;
    Read result = read_key(unit);
    while (result == Read::kUnit && clock_.next_number() - 1 < key_number)
        result = read_key(unit);
    return result == Read::kUnit || (result == Read::kEnd && source_.fail("no key frame at that place"));
}

} // namespace nvrec
