/*
 * Keys for the application: the front panel, and the consumer's end of the key queue.
 *
 *   closed -> ext_keyboard_initial -> open, queue empty -> ext_keyboard_close -> descriptor stale
 *
 * The panel's descriptor is not reset when it is closed: ext_keyboard_value then goes on with the
 * stale number, and ext_keyboard_initial does not open the panel again. Applications close once, at
 * their end. Thread: ext_keyboard_value any, the others the UI thread.
 */
#include "board_io.h"
#include "core/log.h"
#include "core/shared_word.h"
#include "input/key_queue.h"
#include "input/key_state.h"
#include "keyboard_driver.h"

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "misc.c";

enum KeyPoll : uint32_t {
    kKeyTaken = 0,
    kQueueEmpty = 1,
};

/** Tell the panel what a poll found. The result is not looked at. */
void report_poll(int32_t panel, KeyPoll poll)
{
    uint32_t value = poll;
    board_ioctl(panel, KEYBOARD_KEY_POLLED, &value);
}

/** Whether attributes for a detached thread of system scope can be set up. */
bool thread_attributes_are_available()
{
    pthread_attr_t attr;
    if (pthread_attr_init(&attr) != 0) return false;
    const bool set = pthread_attr_setscope(&attr, PTHREAD_SCOPE_SYSTEM) == 0 &&
                     pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED) == 0;
    return pthread_attr_destroy(&attr) == 0 && set;
}

} // namespace

int32_t ext_keyboard_initial(void)
{
    log_entry(kSource);
    if (load_word(keyFd) == -1 && open_front_panel() < 0)
        log_error_line(kSource, "Open BUTTON_irq dev error!");
    clear_key_queue();
    if (hi_start_key_proc() != 0) {
        log_error_line(kSource, "Open hi_stop_record_proc dev error!");
        return -1;
    }
    log_line("Open hi_stop_record_proc dev ok!");
    return 0;
}

int32_t ext_keyboard_close(void)
{
    log_entry(kSource);
    hi_stop_key_proc();
    const int32_t panel = load_word(keyFd);
    if (panel != -1) board_close(panel); // keyFd keeps the number, on purpose
    const int32_t receiver = load_word(remoteFd);
    if (receiver == -1) return -1;
    store_word(remoteFd, -1);
    return board_close(receiver);
}

int32_t ext_keyboard_value(uint32_t event[5])
{
    log_entry(kSource);
    if (event == nullptr) return -1;
    const int32_t panel = open_front_panel();
    if (panel < 0) return -1;
    if (key_queue_is_empty()) {
        report_poll(panel, kQueueEmpty);
        return -1;
    }
    report_poll(panel, kKeyTaken);

    uint32_t source = 0, code = 0;
    if (!dequeue_key(source, code)) return -1;
    event[0] = source;
    event[2] = code;
    event[3] = 0;
    event[4] = 0;
    return 0;
}

int32_t ext_keyboard_zoom_flag(int32_t mode)
{
    store_word(keyboard_zoom_flag_m, mode);
    return log_text("keyboard zoom mode %d\n", mode);
}

int32_t hi_start_key_proc(void)
{
    pthread_mutex_lock(&key_threads_lock);
    const pthread_t local = localkeyThread;
    const bool both_run = local != 0 && remotekeyThread != 0;
    pthread_mutex_unlock(&key_threads_lock);
    if (both_run) {
        log_error(kSource, "not allow to create thread of layer=, there is still a thread %lu running\n",
                  thread_number(local));
        return 0;
    }
    return thread_attributes_are_available() ? 0 : -1; // a thread is prepared and never created
}

void hi_stop_key_proc(void)
{
    pthread_mutex_lock(&key_threads_lock);
    if (localkeyThread != 0) {
        pthread_cancel(localkeyThread);
        pthread_join(localkeyThread, nullptr);
        localkeyThread = 0;
    }
    // The other way round, on purpose: a remote reader that runs is left running, and only the
    // handle of one that does not run is cleared. There is nothing to cancel and join then.
    if (remotekeyThread == 0) remotekeyThread = 0;
    pthread_mutex_unlock(&key_threads_lock);
}
