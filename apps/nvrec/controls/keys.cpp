/* keys.cpp - see keys.h. */
#include "controls/keys.h"

#include "console/terminal.h"
#include "host/host.h"
#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr auto kWatchPeriod = std::chrono::milliseconds(20);
constexpr int kMostKeysATurn = 2 * NVRHAL_KEY_SLOTS; /* a stuck key must not stop the wall          */
constexpr size_t kMostPresses = 16;                  /* of the panel; further ones wait in its node */

uint32_t keys_written()
{
    return __atomic_load_n(&key_que.write_index, __ATOMIC_RELAXED);
}

uint32_t keys_read()
{
    return __atomic_load_n(&key_que.read_index, __ATOMIC_RELAXED);
}

} // namespace

bool KeyWatch::start(WallControl &wall)
{
    const bool has_panel = panel_.open(NVRHAL_PANEL_NODE, {});
    stop_ = false;
    presses_.clear();
    thread_ = std::thread([this, &wall] { run(wall); });
    return has_panel;
}

/* @return true = keys came. */
bool KeyWatch::read_panel()
{
    const std::scoped_lock guard(presses_lock_);
    const size_t before = presses_.size();
    while (panel_.is_open() && presses_.size() < kMostPresses) {
        PanelKey key;
        const int read = panel_.read(&key, sizeof key);
        if (read < 0) panel_.close(); /* unplugged: it is not asked again */
        if (read != sizeof key) break;
        presses_.push_back({key.code, keys_written()});
    }
    return presses_.size() > before;
}

/* Reader and writer of the library's queue wrap at different slots: only equal indexes tell something. */
std::optional<uint32_t> KeyWatch::take_panel_key(std::optional<uint32_t> remote_at)
{
    const std::scoped_lock guard(presses_lock_);
    if (presses_.empty() || (remote_at && *remote_at != presses_.front().remote_end)) return std::nullopt;
    const uint32_t code = presses_.front().code;
    presses_.pop_front();
    return code;
}

/*
 * Wakes the wall once for what came since it last did: the wall takes everything there is, and a queue
 * that cannot be emptied does not keep it awake for ever.
 */
void KeyWatch::run(WallControl &wall)
{
    uint32_t woken_for = 0; /* the library's queue begins empty */
    std::unique_lock guard(lock_);
    while (!changed_.wait_for(guard, kWatchPeriod, [this] { return stop_; })) {
        const bool pressed = read_panel();
        const uint32_t written = keys_written();
        if (!pressed && written == woken_for) continue;
        woken_for = written;
        wall.wake();
    }
}

void KeyWatch::stop()
{
    if (!thread_.joinable()) return;
    {
        const std::scoped_lock guard(lock_);
        stop_ = true;
        changed_.notify();
    }
    thread_.join();
    panel_.close();
}

/* A recorder without keys still records: whatever is missing is only said. */
bool Keys::start(WallControl &wall)
{
    wall_ = &wall;
    {
        const std::scoped_lock guard(lock_); // the control socket may ask already
        stopped_ = false;
    }
    if (ext_keyboard_initial() != 0) wall.terminal().error("keys: the library could not set them up");
    pthread_t reader;
    if (pthread_create(&reader, nullptr, read_remote, this) == 0) {
        remote_reader_ = reader;
    } else {
        wall.terminal().error("keys: no thread for the remote control");
    }
    if (!watch_.start(wall))
        wall.terminal().error("keys: there is no front panel, and without it no key is taken");
    if (!mouse_.start([&wall] { wall.wake(); })) wall.terminal().error("keys: there is no mouse");
    return true;
}

/* Ends by being cancelled, or at once when there is no receiver. */
void *Keys::read_remote(void *self)
{
    hi_remotekey_proc();
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    static_cast<Keys *>(self)->wall_->terminal().error("keys: there is no receiver of the remote control");
    return nullptr;
}

Clock::time_point Keys::take_turn(Clock::time_point)
{
    take_keys();
    take_pointer();
    return Clock::time_point::max();
}

void Keys::take_keys()
{
    bool remote_gives = true;
    uint32_t event[5] = {};
    for (int i = 0; i < kMostKeysATurn; ++i) {
        const uint32_t remote_at = keys_read();
        const bool remote_waits = remote_gives && remote_at != keys_written();
        if (const auto code = watch_.take_panel_key(remote_waits ? std::optional(remote_at) : std::nullopt)) {
            hand_over(*code);
        } else if (!remote_waits) {
            return;
        } else if (ext_keyboard_value(event) == 0) {
            hand_over(event[2]);
        } else {
            remote_gives = false;
        }
    }
}

/* A code may be no button's: the queue's slots that nobody writes hold 0, and panels have keys of their own.
 */
void Keys::hand_over(uint32_t key_code)
{
    const Button *button = button_sending(key_code);
    if (!button) return;
    wall_->key(button->key);
    const std::scoped_lock guard(lock_);
    ++seen_.at(key_code);
    came_.notify();
}

void Keys::take_pointer()
{
    while (__atomic_load_n(&g_bMouseEvent, __ATOMIC_RELAXED) != 0) {
        uint32_t words[5];
        static_assert(sizeof words == sizeof(MouseRecord));
        if (ext_mouse_get_status(words) != 0) return;
        mouse_.taken();
        const MouseRecord event = __builtin_bit_cast(MouseRecord, words);
        PointerEvent pointer;
        pointer.x = event.x;
        pointer.y = event.y;
        pointer.buttons = event.buttons;
        pointer.pressed = event.buttons & ~buttons_down_;
        pointer.wheel = event.type == MOUSE_WHEEL_TURNED ? event.wheel : 0;
        buttons_down_ = event.buttons;
        wall_->pointer(pointer);
    }
}

bool Keys::press(const Button &button, Way way, std::chrono::milliseconds limit)
{
    std::unique_lock guard(lock_);
    if (stopped_) return false;
    const uint64_t before = seen_.at(button.key_code);
    const std::string problem =
        way == Way::kPanel ? host::press_panel_key(button.key_code) : host::press_remote_button(button.name);
    if (!problem.empty()) return false;
    came_.wait_for(guard, limit, [&] { return stopped_ || seen_.at(button.key_code) != before; });
    return seen_.at(button.key_code) != before;
}

void Keys::stop()
{
    if (!wall_) return;
    {
        const std::scoped_lock guard(lock_);
        stopped_ = true;
        came_.notify();
    }
    mouse_.stop();
    watch_.stop();
    if (remote_reader_) {
        pthread_cancel(*remote_reader_);
        pthread_join(*remote_reader_, nullptr);
        remote_reader_.reset();
    }
    ext_keyboard_close(); /* only now: the reader would go on with a closed receiver */
    wall_ = nullptr;
}

} // namespace nvrec
