/*
 * The hardware watchdog, and the thread that feeds it.
 *
 *   closed -> local_wdg_open -> disabled -> local_wdg_init -> enabled, 100 s, fed once
 *   enabled <-> disabled: ext_wdg_set, which also tells the feeding thread to end
 *
 * Nothing closes the device. The driver cannot be asked whether it is enabled: wdtEnable holds the last
 * switch that it took, and counts as enabled before the first one. A device that refuses to be
 * disabled at start-up is therefore fed from then on instead of being enabled.
 * A refused switch is reported in the log and not to the caller. Feeding: any thread, without a
 * lock; the driver takes feeds as they come.
 */
#include "board_io.h"
#include "core/log.h"
#include "core/shared_word.h"
#include "nvrhal.h"
#include "watchdog_driver.h"

#include <fcntl.h>

using namespace nvrhal;

static_assert(WDIOC_KEEPALIVE == 0x80045705 && WDIOC_SETOPTIONS == 0x80045704);
static_assert(WDIOC_SETTIMEOUT == 0xC0045706 && WDIOS_DISABLECARD == 1 && WDIOS_ENABLECARD == 2);

// Written by the application; read by the feeding thread.
uint8_t Wdt_Fing;

namespace
{

constexpr char kSource[] = "misc.c";
constexpr int32_t kTimeoutS = 100;
constexpr uint32_t kFeedPeriodUs = 3000000;
constexpr uint32_t kFarewellUs = 100;

// Written by start-up and switches, read by feeds: whole words, any thread.
int32_t wdtFd = -1;     // -1 = closed
int32_t wdtEnable = -1; // other than 0 = counts as enabled

/** Switch the device; the option itself is the argument. The driver's result. */
int32_t switch_device(int32_t on)
{
    const uintptr_t option = on != 0 ? WDIOS_ENABLECARD : WDIOS_DISABLECARD;
    return board_ioctl(load_word(wdtFd), WDIOC_SETOPTIONS, reinterpret_cast<void *>(option));
}

/** Feed at once and then every period, until Wdt_Fing is cleared or a feed fails. */
void *feed_watchdog(void *)
{
    while (local_wdg_feed() == 0) {
        board_sleep_us(kFeedPeriodUs);
        if (load_word(Wdt_Fing) != 0) continue;
        board_sleep_us(kFarewellUs);
        break;
    }
    return nullptr;
}

/** Create a detached thread of system scope. 0 or -1. */
int32_t start_detached(void *(*body)(void *))
{
    pthread_attr_t attr;
    if (pthread_attr_init(&attr) != 0) return -1;
    pthread_t thread;
    const bool started = pthread_attr_setscope(&attr, PTHREAD_SCOPE_SYSTEM) == 0 &&
                         pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED) == 0 &&
                         pthread_create(&thread, &attr, body, nullptr) == 0;
    pthread_attr_destroy(&attr);
    return started ? 0 : -1;
}

} // namespace

uint32_t local_wdg_init(void)
{
    constexpr uint32_t kFailed = static_cast<uint32_t>(-1);
    if (local_wdg_open() != 0) return kFailed;
    if (local_wdg_set(1) != 0) return kFailed;
    if (local_wdg_set_timeout(kTimeoutS) != 0) return kFailed;
    if (local_wdg_feed() != 0) return kFailed;
    log_text("%s,%d,--------------------------init watchdog success!\n", kSource, __LINE__);
    return 0;
}

int32_t local_wdg_open(void)
{
    if (load_word(wdtFd) < 0) {
        const int32_t opened = board_open(WATCHDOG_NODE, O_RDWR);
        if (opened < 0) {
            log_error_line(kSource, "open WDG Failed!");
            return -1;
        }
        store_word(wdtFd, opened);
    }
    // It may be running already, from a boot loader or a process that died.
    if (local_wdg_set(0) != 0) log_error_line(kSource, "When Open Watchdog,Disable Watchdog Failed!");
    return 0;
}

int32_t local_wdg_set(int32_t on)
{
    if (load_word(wdtFd) == -1) return -1;
    if (on != 0 && load_word(wdtEnable) != 0) {
        local_wdg_feed();
        return 0;
    }
    if (switch_device(on) < 0) {
        log_error(kSource, "watchdog enable/disable (%d) fail!\n", on);
        if (load_word(wdtEnable) != 0) local_wdg_feed(); // it counts as enabled: it must not expire
        return 0;
    }
    store_word(wdtEnable, on);
    return 0;
}

int32_t local_wdg_set_timeout(int32_t seconds)
{
    if (load_word(wdtFd) == -1) return -1;
    if (load_word(wdtEnable) == 0) {
        log_error_line(kSource, "watchdog not enabled!");
        return -1;
    }
    const int32_t result = board_ioctl(load_word(wdtFd), WDIOC_SETTIMEOUT, &seconds);
    if (result >= 0) return result;
    log_error_line(kSource, "watchdog set timeout Failed!!");
    return -1;
}

int32_t local_wdg_feed(void)
{
    if (load_word(wdtEnable) == 0) {
        log_error_line(kSource, "watchdog not enabled!");
        return -1;
    }
    if (load_word(wdtFd) == -1) return -1;
    return board_ioctl(load_word(wdtFd), WDIOC_KEEPALIVE, nullptr) < 0 ? -1 : 0;
}

int32_t wdt_feed_pt(void)
{
    return start_detached(feed_watchdog);
}

void Set_Wdt_Fing(uint32_t value)
{
    store_word(Wdt_Fing, value & 0xFF);
}

uint32_t ext_wdg_set(int32_t on)
{
    Set_Wdt_Fing(0);
    local_wdg_set(on);
    return 1;
}
