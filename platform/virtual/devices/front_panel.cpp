/* front_panel.cpp - the panel: its record lamp, what it is told about polls, and its keys. */
#include "keyboard_driver.h"

#include <mutex>

#include "devices/event_node.h"
#include "devices/key_names.h"
#include "devices/peripheral_nodes.h"
#include "vboard_devices.h"

namespace vboard
{
namespace
{

constexpr int64_t kPanelPatience_us = 0; // a read gives what there is

class FrontPanel : public EventNode<uint32_t>
{
public:
    FrontPanel() : EventNode(KEYBOARD_NODE, kPanelPatience_us) {}

    void reset() override
    {
        EventNode::reset();
        const std::lock_guard guard(mutex_);
        stat_ = {};
    }

    vboard_panel_stat stat()
    {
        const std::lock_guard guard(mutex_);
        return stat_;
    }

    int request(unsigned long code, void *argument) override
    {
        if (code != KEYBOARD_RECORD_LAMP && code != KEYBOARD_KEY_POLLED)
            return EventNode::request(code, argument);
        const auto *value = static_cast<const uint32_t *>(argument);
        if (value == nullptr || *value > 1) {
            refuse_plainly("the panel is told 0 or 1");
            errno = EINVAL;
            return -1;
        }
        const std::lock_guard guard(mutex_);
        if (code == KEYBOARD_KEY_POLLED) {
            ++(*value == 0 ? stat_.keys_taken : stat_.empty_polls);
            return 0;
        }
        if (stat_.record_lamp != *value) ++stat_.lamp_changes;
        stat_.record_lamp = *value;
        return 0;
    }

private:
    std::mutex mutex_; // guards all below
    vboard_panel_stat stat_ = {};
};

FrontPanel &panel()
{
    static auto *node = new FrontPanel;
    return *node;
}

} // namespace

DeviceNode *front_panel_node()
{
    return &panel();
}

} // namespace vboard

using namespace vboard;

extern "C" {

int vboard_panel_get_stat(vboard_panel_stat *stat)
{
    if (stat == nullptr) return refuse_plainly("no record to fill");
    *stat = panel().stat();
    return 0;
}

void vboard_panel_press(uint32_t code)
{
    if (!has_code(panel_keys(), code)) warn("the panel has no key of code %u", code);
    trace_event("panel {code=%u}", code);
    panel().post(code);
}

int vboard_panel_press_named(const char *name)
{
    const auto code = find_code(panel_keys(), name);
    if (!code)
        return refuse_plainly("the panel has no key \"%s\": %s", name != nullptr ? name : "",
                              suggestion(panel_keys(), name).c_str());
    vboard_panel_press(*code);
    return 0;
}

} // extern "C"
