/* gpio.cpp - the output lines and the log of their changes. */
#include "gpio_driver.h"

#include <array>
#include <mutex>
#include <vector>

#include "devices/peripheral_nodes.h"
#include "devices/request_node.h"
#include "media/clock.h"
#include "vboard_devices.h"

namespace vboard
{
namespace
{

constexpr size_t kMostChanges = 4096;
constexpr int kNoOutput = -1;

class Gpio : public RequestNode
{
public:
    Gpio() : RequestNode(GPIO_NODE) { levels_.fill(kNoOutput); }

    void reset() override
    {
        const std::lock_guard guard(mutex_);
        levels_.fill(kNoOutput);
        changes_.clear();
        count_ = 0;
    }

    int level(uint32_t line)
    {
        const std::lock_guard guard(mutex_);
        return line < VBOARD_GPIO_LINES ? levels_[line] : kNoOutput;
    }

    uint32_t count()
    {
        const std::lock_guard guard(mutex_);
        return count_;
    }

    bool change(uint32_t index, vboard_gpio_change &change)
    {
        const std::lock_guard guard(mutex_);
        if (index >= changes_.size()) return false;
        change = changes_[index];
        return true;
    }

protected:
    int request(unsigned long code, void *argument) override
    {
        const auto *line = static_cast<const GpioLine *>(argument);
        const uint32_t request = static_cast<uint32_t>(code);
        if (request != GPIO_CONFIGURE_OUTPUT && request != GPIO_DRIVE) return refuse_request(code);
        if (line == nullptr || line->line >= VBOARD_GPIO_LINES)
            return refuse_argument("there are lines 0 to 127");
        const std::lock_guard guard(mutex_);
        const bool configures = request == GPIO_CONFIGURE_OUTPUT;
        if (!configures && levels_[line->line] == kNoOutput)
            return refuse_argument("the line was not made an output");
        levels_[line->line] = line->value != 0;
        ++count_;
        if (changes_.size() < kMostChanges)
            changes_.push_back({clock_now_us(), line->line, line->value != 0, configures});
        return 0;
    }

private:
    std::mutex mutex_; // guards all below
    std::array<int, VBOARD_GPIO_LINES> levels_;
    std::vector<vboard_gpio_change> changes_;
    uint32_t count_ = 0;
};

Gpio &gpio()
{
    static auto *node = new Gpio;
    return *node;
}

} // namespace

DeviceNode *gpio_node()
{
    return &gpio();
}

} // namespace vboard

using namespace vboard;

extern "C" {

int vboard_gpio_level(uint32_t line)
{
    return gpio().level(line);
}

uint32_t vboard_gpio_change_count(void)
{
    return gpio().count();
}

int vboard_gpio_get_change(uint32_t index, vboard_gpio_change *change)
{
    if (change == nullptr) return refuse_plainly("no record to fill");
    return gpio().change(index, *change) ? 0 : refuse_plainly("no change %u is kept", index);
}

} // extern "C"
