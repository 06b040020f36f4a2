/*
 * mouse_reader.h - a thread that reads the mouse's device node and fills the library's mouse event,
 * g_s32KeyValue, for ext_mouse_get_status.
 *
 * The library keeps one event. Moves replace one another there; anything else waits until the event
 * before it was taken, so that no press and no turn of the wheel is lost.
 */
#pragma once

#include <functional>
#include <mutex>
#include <thread>

#include "host/clock.h"
#include "host/device_node.h"

namespace nvrec
{

class MouseReader
{
public:
    ~MouseReader() { stop(); }

    /**
     * Open the mouse and read it.
     * @param on_event  called for every event that is ready to be taken; the reader's thread
     * @return false = there is no mouse
     */
    bool start(std::function<void()> on_event);

    /** The waiting event was taken. Any thread. */
    void taken();

    /** End the thread and close the mouse. */
    void stop();

private:
    void run();
    bool is_free(bool for_a_move) const;

    DeviceNode mouse_;
    std::function<void()> on_event_;
    std::thread thread_;
    std::mutex lock_; /* guards stop_, and that no one misses changed_; taken before g_mouse_lock */
    Condition changed_;
    bool stop_ = false;
};

} // namespace nvrec
