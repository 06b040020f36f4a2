/*
 * Output lines: their set-up, and the buzzer.
 *
 * The set-up is one list in one order: the Wi-Fi module is powered before it is reset. It leaves
 * the buzzer line high. UI thread; the buzzer: any.
 */
#include "board_io.h"
#include "core/abi.h"
#include "core/log.h"
#include "core/shared_word.h"
#include "gpio_driver.h"
#include "nvrhal.h"

#include <fcntl.h>

using namespace nvrhal;

ABI_SIZE(GpioLine, 8);
ABI_AT(GpioLine, value, 4);

namespace
{

constexpr char kSource[] = "misc.c";

enum OutputLine : uint32_t {
    kWifiPowerLine = BOARD_LINE_WIFI_POWER,
    kWifiResetLine = BOARD_LINE_WIFI_RESET,
    kBuzzerLine = BOARD_LINE_BUZZER,
    kRecordLine = BOARD_LINE_RECORD,
    kDiskLedLine = BOARD_LINE_DISK_LED,
};

constexpr uint32_t kModuleLoadUs = 1000; // until the driver's node is there

// Written by start-up; read by the buzzer. Below 1 = not open: a descriptor of 0 does not count.
int32_t gpioFd;

struct LineSetup {
    unsigned long request;
    OutputLine line;
    uint32_t value;
    const char *failure;
};

constexpr LineSetup kLineSetups[] = {
    {GPIO_CONFIGURE_OUTPUT, kWifiPowerLine, 1, "WIFI_POWER_CTR out1 init failed!"},
    {GPIO_DRIVE, kWifiPowerLine, 0, "start wifi failed!"},
    {GPIO_CONFIGURE_OUTPUT, kBuzzerLine, 1, "BUZZER_CTR  init failed!"},
    {GPIO_CONFIGURE_OUTPUT, kWifiResetLine, 1, "WIFI_RESET_CTR init failed!"},
    {GPIO_CONFIGURE_OUTPUT, kWifiResetLine, 0, "WIFI_RESET_CTR init failed!"},
    {GPIO_CONFIGURE_OUTPUT, kDiskLedLine, 1, "HDD_LED_CTR init failed!"},
    {GPIO_CONFIGURE_OUTPUT, kRecordLine, 1, "REC_CTR init failed!"},
};

bool request_failed(unsigned long request, OutputLine line, uint32_t value)
{
    GpioLine record = {line, value};
    return board_ioctl(load_word(gpioFd), request, &record) < 0;
}

} // namespace

int32_t local_gpio_init(void)
{
    board_run_command(GPIO_LOAD_COMMAND); // fails when the driver is loaded already, and that is fine
    board_sleep_us(kModuleLoadUs);
    if (load_word(gpioFd) < 1) {
        store_word(gpioFd, board_open(GPIO_NODE, O_RDWR));
        if (load_word(gpioFd) < 1) {
            log_error_line(kSource, "gpio07 open failed!");
            return -1;
        }
    }
    for (const LineSetup &setup : kLineSetups) {
        if (!request_failed(setup.request, setup.line, setup.value)) continue;
        log_error_line(kSource, setup.failure);
        return -1; // the lines before it stay as they were set up
    }
    return 0;
}

int32_t ext_buzzer_set(uint32_t on)
{
    if (!request_failed(GPIO_DRIVE, kBuzzerLine, on)) return 0;
    log_error(kSource, "%s %d gpio set failed!\n", kSource, __LINE__);
    return -1;
}
