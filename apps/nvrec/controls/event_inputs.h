/*
 * event_inputs.h - events at a camera that the board tells: its alarm input, and motion that the chip of its
 * analog input sees. Channel n has alarm input n.
 *
 * An event is reported once, when it begins. While it lasts that is reported separately, so that the
 * recording for it goes on. Motion comes and goes from one moment to the next, so motion that pauses for less
 * than Watched::again counts as one event.
 *
 * Threads: main.
 */
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "wall/module.h"

namespace nvrec
{

class EventInputs final : public Module
{
public:
    struct Watched {
        int channel = 0;
        bool alarm = false;
        bool motion = false;
        Clock::duration again = std::chrono::seconds(1); /* so often it is told that it lasts */
    };
    using Teller = std::function<void(int channel, const std::string &kind, const std::string &text)>;
    using LastingTeller = std::function<void(int channel)>;

    EventInputs(const std::vector<Watched> &watched, Teller on_event, LastingTeller on_lasting = {});

    /** Watch these from now on. */
    void set(const std::vector<Watched> &watched);

    bool start(WallControl &wall) override;
    Clock::time_point take_turn(Clock::time_point now) override;

private:
    struct Input {
        Watched watched;
        bool is_motion = false;  /* or else an alarm input */
        bool is_watched = false; /* for motion, by a chip */
        bool is_said = false;    /* that no chip does */
        bool active = false;
        Clock::time_point told_at = {};                         /* that it began, or lasts */
        Clock::time_point active_at = Clock::time_point::min(); /* the last time */
    };

    void look(Input &input, bool active, const std::string &text, Clock::time_point now);
    void begin_motion();

    std::vector<Input> inputs_;
    const Teller on_event_;
    const LastingTeller on_lasting_;
    WallControl *wall_ = nullptr;
    Clock::time_point look_at_;
};

} // namespace nvrec
