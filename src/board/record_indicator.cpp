/*
 * The record indicator: the panel's lamp blinks while the recorder records, and is lit otherwise.
 *
 *   steady -> hi_start_record_proc -> blinking -> hi_stop_record_proc -> steady
 *
 * One thread of the library. It is stopped by cancelling it, and can be cancelled only while it
 * sleeps: there it holds no lock and has no request under way. On a platform whose sleep cannot be
 * interrupted it ends when the sleep is over. It is created joinable so that stopping it can wait
 * for its end. Start and stop: any thread, one after the other under record_thread_lock.
 */
#include "board_io.h"
#include "core/log.h"
#include "core/shared_word.h"
#include "input/key_state.h"
#include "keyboard_driver.h"

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "misc.c";
constexpr uint32_t kHalfPeriodUs = 500000;
constexpr uint32_t kLit = 1;

pthread_mutex_t record_thread_lock = PTHREAD_MUTEX_INITIALIZER;
pthread_t record_thread; // 0 = none; guarded by record_thread_lock

int32_t set_record_lamp(int32_t panel, uint32_t lit)
{
    return board_ioctl(panel, KEYBOARD_RECORD_LAMP, &lit);
}

/*
 * A cancelled thread never leaves these frames in the ordinary way, and the address sanitizer would
 * find the guards around their variables still standing when the thread's stack goes.
 */
#define LEFT_BY_CANCELLING __attribute__((no_sanitize_address))

/** Sleep, with the thread's own cancel state: the one place where the blinker may be ended. */
LEFT_BY_CANCELLING void sleep_cancellable(uint32_t microseconds, int cancel_state)
{
    pthread_setcancelstate(cancel_state, nullptr);
    pthread_testcancel();
    board_sleep_us(microseconds);
    pthread_testcancel();
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
}

/** Create the blinker's thread, of system scope. 0, or an error number. */
int create_thread(pthread_t &thread)
{
    pthread_attr_t attr;
    int failure = pthread_attr_init(&attr);
    if (failure != 0) return failure;
    failure = pthread_attr_setscope(&attr, PTHREAD_SCOPE_SYSTEM);
    if (failure == 0) failure = pthread_create(&thread, &attr, hi_record_proc, nullptr);
    pthread_attr_destroy(&attr);
    return failure;
}

int32_t start_locked()
{
    if (record_thread != 0) {
        // The number is that of the local key thread, on purpose: log searches know it so.
        log_error(kSource, "not allow to create thread of layer=, there is still a thread %lu running\n",
                  thread_number(localkeyThread));
        return 0;
    }
    if (create_thread(record_thread) == 0) return 0;
    log_error(kSource, "fail to create thread %lu to show layer\n", thread_number(record_thread));
    record_thread = 0;
    return -1;
}

int32_t stop_locked()
{
    if (record_thread == 0) return 0;
    pthread_cancel(record_thread);
    pthread_join(record_thread, nullptr);
    record_thread = 0;
    return set_record_lamp(load_word(keyFd), kLit) < 0 ? -1 : 0;
}

} // namespace

LEFT_BY_CANCELLING void *hi_record_proc(void *)
{
    int cancel_state = 0;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &cancel_state);
    if (open_front_panel() < 0) {
        log_error_line(kSource, "Open BUTTON_irq dev error!");
        pthread_setcancelstate(cancel_state, nullptr);
        return nullptr;
    }
    for (uint32_t lit = 0;; lit ^= 1) {
        set_record_lamp(load_word(keyFd), lit);
        sleep_cancellable(kHalfPeriodUs, cancel_state);
    }
}

int32_t hi_start_record_proc(void)
{
    pthread_mutex_lock(&record_thread_lock);
    const int32_t result = start_locked();
    pthread_mutex_unlock(&record_thread_lock);
    return result;
}

int32_t hi_stop_record_proc(void)
{
    pthread_mutex_lock(&record_thread_lock);
    const int32_t result = stop_locked();
    pthread_mutex_unlock(&record_thread_lock);
    return result;
}
