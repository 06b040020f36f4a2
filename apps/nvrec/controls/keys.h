/*
 * keys.h - the remote control, the front panel and the mouse, brought to the wall.
 *
 *   IR receiver --> hi_remotekey_proc --> key_que --> ext_keyboard_value --+
 *                                                                          +--> WallControl::key
 *   front panel --> KeyWatch's queue --------------------------------------+
 *   mouse --------> MouseReader --> mouse event --> ext_mouse_get_status ----> WallControl::pointer
 *
 * The library hands over the remote's keys alone; the panel's are the application's to read. Both come to
 * the wall in the order in which they were pressed, however late it takes them.
 *
 * Threads: the library's remote-key reader, the watch and the mouse reader run on threads of their
 * own and wake the wall; keys and events are taken on the main thread.
 */
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

#include <pthread.h>

#include "controls/key_names.h"
#include "controls/mouse_reader.h"
#include "host/clock.h"
#include "host/device_node.h"
#include "wall/module.h"

namespace nvrec
{

/**
 * Looks at the library's key queue fifty times a second, since the library tells nobody of a key, and
 * reads the panel as often.
 */
class KeyWatch
{
public:
    ~KeyWatch() { stop(); }

    /** @return false = there is no panel; the library's queue is watched all the same. */
    bool start(WallControl &wall);
    void stop();

    /**
     * The panel's next key, unless keys of the remote that came before it are still in the library's
     * queue. Any thread.
     * @param remote_at  key_que.read_index; nothing = no key of the remote is to be had
     */
    std::optional<uint32_t> take_panel_key(std::optional<uint32_t> remote_at);

private:
    /* A press of the panel, behind the remote's keys that stood before this index of the library's queue. */
    struct PanelPress {
        uint32_t code;
        uint32_t remote_end; /* key_que.write_index when it came */
    };

    void run(WallControl &wall);
    bool read_panel();

    DeviceNode panel_;
    std::thread thread_;
    std::mutex lock_; /* guards stop_ */
    Condition changed_;
    bool stop_ = false;

    std::mutex presses_lock_; /* guards what follows; taken with lock_ held */
    std::deque<PanelPress> presses_;
};

class Keys final : public Module
{
public:
    enum class Way { kRemote, kPanel };

    ~Keys() override { stop(); }

    bool start(WallControl &wall) override;
    Clock::time_point take_turn(Clock::time_point now) override;
    void stop() override;

    /**
     * Press a button of the board and wait until the recorder has seen it. Any thread but the main.
     * @return false = it did not come
     */
    bool press(const Button &button, Way way, std::chrono::milliseconds limit);

private:
    static constexpr size_t kKeyCodes = 128;

    static void *read_remote(void *self);
    void take_keys();
    void take_pointer();
    void hand_over(uint32_t key_code);

    WallControl *wall_ = nullptr;
    std::optional<pthread_t> remote_reader_;
    KeyWatch watch_;
    MouseReader mouse_;
    uint32_t buttons_down_ = 0; /* of the mouse, after the last event */

    std::mutex lock_; /* guards what follows */
    Condition came_;
    std::array<uint64_t, kKeyCodes> seen_ = {}; /* how often each code was handed to the wall */
    bool stopped_ = true;
};

} // namespace nvrec
