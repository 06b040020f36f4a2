/* mouse_reader.cpp - see mouse_reader.h. */
#include "controls/mouse_reader.h"

#include <cstring>
#include <utility>

#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr auto kMouseWaits = std::chrono::milliseconds(100); /* so soon the reader sees that it is to end */

static_assert(sizeof(MouseRecord) == sizeof g_s32KeyValue, "the library hands the event over as it is");

class MouseLock
{
public:
    MouseLock() { pthread_mutex_lock(&g_mouse_lock); }
    ~MouseLock() { pthread_mutex_unlock(&g_mouse_lock); }
    MouseLock(const MouseLock &) = delete;
    MouseLock &operator=(const MouseLock &) = delete;
};

} // namespace

bool MouseReader::start(std::function<void()> on_event)
{
    if (!mouse_.open(NVRHAL_MOUSE_NODE, kMouseWaits)) return false;
    g_mouse_fd = mouse_.descriptor();
    on_event_ = std::move(on_event);
    stop_ = false;
    thread_ = std::thread([this] { run(); });
    return true;
}

/* Whether the slot may be written to. */
bool MouseReader::is_free(bool for_a_move) const
{
    const MouseLock guard;
    if (g_bMouseEvent == 0) return true;
    MouseRecord waiting;
    std::memcpy(&waiting, g_s32KeyValue, sizeof waiting);
    return for_a_move && waiting.type == MOUSE_MOVED;
}

void MouseReader::run()
{
    MouseRecord event;
    std::unique_lock guard(lock_);
    while (!stop_) {
        guard.unlock();
        const int read = mouse_.read(&event, sizeof event);
        guard.lock();
        if (read < 0) return; /* the mouse is gone */
        if (read != sizeof event) continue;
        changed_.wait(guard, [&] { return stop_ || is_free(event.type == MOUSE_MOVED); });
        if (stop_) return;
        {
            const MouseLock slot;
            std::memcpy(g_s32KeyValue, &event, sizeof event);
            __atomic_store_n(&g_bMouseEvent, 1,
                             __ATOMIC_RELAXED); /* the reader of the event looks first without the lock */
        }
        on_event_();
    }
}

void MouseReader::taken()
{
    const std::scoped_lock guard(lock_); /* the reader does not look at the slot between test and wait */
    changed_.notify();
}

void MouseReader::stop()
{
    if (!thread_.joinable()) return;
    {
        const std::scoped_lock guard(lock_);
        stop_ = true;
        changed_.notify();
    }
    thread_.join();
    g_mouse_fd = -1;
    mouse_.close();
}

} // namespace nvrec
