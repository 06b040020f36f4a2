/* feeder_open.cpp - see feeder.h: opening an input, and connecting again. */
#include "camera/feeder.h"

#include <algorithm>
#include <utility>

#include "console/text.h"

namespace nvrec
{
namespace
{

constexpr auto kFirstRetry = std::chrono::seconds(1);
constexpr auto kLongestRetry = std::chrono::seconds(16);
constexpr auto kSilence = std::chrono::seconds(10); /* a live input gives up a silent connection after this */

} // namespace

bool Feeder::open()
{
    open_tried_ = true;
    if (!input_.open(options_.open_limit)) {
        if (!stopping()) report(input_.error());
        return false;
    }
    if (!read_first()) return false;
    note_facts();
    input_opened_ = true;
    opened_.store(true);
    return true;
}

/* A camera that sends no key frames is tried again, like one that does not answer. */
bool Feeder::read_first()
{
    const Clock::time_point limit = Clock::now() + options_.key_limit;
    while (!input_.live() || Clock::now() < limit) {
        if (started_) note_reading();
        const Input::Read result = input_.read(&first_unit_);
        if (result == Input::Read::kInterrupted) return false;
        if (result != Input::Read::kUnit) {
            report(result == Input::Read::kEnd ? "it holds no key frame" : input_.error());
            return false;
        }
        if (first_unit_.key) return true;
        if (!input_.live()) continue;
        input_.take_sound(first_unit_.due_us); /* of pictures that nobody sees */
        input_.take_sound_packets(first_unit_.due_us);
    }
    report(text("no key frame came in %.0f s", std::chrono::duration<double>(options_.key_limit).count()));
    return false;
}

/*
 * Connect again, with growing pauses, until the camera answers or the recorder stops. Files are not tried
 * again.
 */
bool Feeder::reconnect(const std::string &why)
{
    if (stopping()) return false;
    if (!input_.live()) {
        report(why);
        broken_.store(true);
        return false;
    }
    auto pause = std::chrono::duration_cast<std::chrono::milliseconds>(kFirstRetry);
    report(why + "; connecting again");
    std::string told; /* one message for each reason: a camera may be away for weeks */
    while (wait_until(Clock::now() + pause)) {
        note_opening();
        if (input_.open(options_.open_limit)) {
            opened_.store(true);
            begin_connection();
            const std::scoped_lock guard(lock_);
            ++counters_.reconnects;
            return true;
        }
        if (stopping()) return false;
        const std::string line = input_.error() + "; trying again";
        if (line != std::exchange(told, line)) report(line);
        pause = std::min<std::chrono::milliseconds>(pause * 2, kLongestRetry);
    }
    return false;
}

/*
 * The input was opened again. Pictures before its first key frame refer to pictures that did not come, and
 * the decoder would make smears of them.
 */
void Feeder::begin_connection()
{
    input_opened_ = true;
    needs_key_ = true;
    note_facts();
    if (!sub_is_shown_.load(std::memory_order_relaxed)) expect_key();
    if (events_.connection_began) events_.connection_began();
}

/* The limit does not hold for the system's resolver, which asks each name server twice. */
void Feeder::note_opening()
{
    constexpr auto kNameLimit = std::chrono::seconds(30);
    set_heartbeat_deadline(Clock::now() + options_.open_limit +
                           (input_.live() ? kNameLimit : std::chrono::seconds(0)));
}

/* A connection gives up by itself when no picture comes. */
void Feeder::note_reading()
{
    set_heartbeat_deadline(input_.live() ? Clock::now() + kSilence : Clock::now());
}

} // namespace nvrec
