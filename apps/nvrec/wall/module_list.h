/*
 * module_list.h - the modules of a wall, in the order in which they were added: started in that order,
 * stopped in reverse.
 *
 * Keys and mouse events go by another order, that of InputLayer (module.h).
 *
 * Threads: the main one; on_unit() and on_audio() on the cameras'.
 */
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "wall/module.h"

namespace nvrec
{

class ModuleList
{
public:
    void add(std::unique_ptr<Module> module) { modules_.push_back(std::move(module)); }

    /** @return false = one of them does not want to go on; those behind it are not started. */
    bool start(WallControl &wall);

    /** Those that were started. */
    void stop();

    /**
     * Give each module a turn, with the same time for all. @return when the first of them wants its next
     * turn.
     */
    Clock::time_point take_turns(Clock::time_point now);

    void before_layout();
    void on_layout();
    void before_last_pictures();
    void on_camera_changed(int channel);
    void on_camera_replaced(int channel);

    /** Offer it by layer, and in a layer to the module added last. */
    void key(Key key);
    void pointer(const PointerEvent &event);

    void on_unit(int channel, const AccessUnit &unit, const StreamFacts &facts);
    void on_audio(int channel, const SoundBlock &block);
    void on_sound_packet(int channel, const SoundPacket &packet);

    bool busy() const;

    /** The first size that one of them has for a channel; zeros = none. */
    std::pair<uint32_t, uint32_t> picture_size(int channel) const;

    /** @return true = one of them asks. */
    bool ask_whether_to_end();

    /** The first progress line that one of them has; empty = none has. */
    std::string progress(double seconds) const;

    void report();

    /** Members of the object that --json writes. */
    std::vector<std::string> json() const;

private:
    void offer(const std::function<bool(Module &)> &taken);

    std::vector<std::unique_ptr<Module>> modules_;
    size_t started_ = 0; /* of them */
};

} // namespace nvrec
