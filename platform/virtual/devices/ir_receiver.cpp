/*
 * ir_receiver.cpp - the infrared receiver. A button gives one frame when it goes down and one with
 * another state when it comes up; in between reads time out, which is how readers know that it is
 * held.
 */
#include "ir_driver.h"

#include <atomic>

#include "devices/event_node.h"
#include "devices/key_names.h"
#include "devices/peripheral_nodes.h"
#include "vboard_devices.h"

namespace vboard
{
namespace
{

constexpr int64_t kRepeatPeriod_us = 108000; // a remote control's own
constexpr uint32_t kPressed = 0;
constexpr uint32_t kReleased = 1;

class IrReceiver : public EventNode<IrFrame>
{
public:
    IrReceiver() : EventNode(IR_NODE, kRepeatPeriod_us) {}

    void reset() override
    {
        EventNode::reset();
        is_held_ = false;
    }

    void hold(uint32_t code)
    {
        if (!has_code(remote_buttons(), code)) warn("no button of a remote control sends 0x%08x", code);
        held_code_ = code;
        is_held_ = true;
        give(code, kPressed);
    }

    void release()
    {
        if (is_held_.exchange(false)) give(held_code_, kReleased);
    }

    void give(uint32_t code, uint32_t state)
    {
        trace_event("remote {code=0x%08x state=%u}", code, state);
        post({0, code, state});
    }

private:
    std::atomic<uint32_t> held_code_ = 0;
    std::atomic<bool> is_held_ = false;
};

IrReceiver &receiver()
{
    static auto *node = new IrReceiver;
    return *node;
}

} // namespace

DeviceNode *ir_receiver_node()
{
    return &receiver();
}

} // namespace vboard

using namespace vboard;

extern "C" {

void vboard_ir_press(uint32_t code)
{
    receiver().hold(code);
    receiver().release();
}

int vboard_ir_press_named(const char *name)
{
    const auto code = find_code(remote_buttons(), name);
    if (!code)
        return refuse_plainly("the remote controls have no button \"%s\": %s", name != nullptr ? name : "",
                              suggestion(remote_buttons(), name).c_str());
    vboard_ir_press(*code);
    return 0;
}

void vboard_ir_hold(uint32_t code)
{
    receiver().hold(code);
}

void vboard_ir_release(void)
{
    receiver().release();
}

void vboard_ir_send(uint32_t code, uint32_t state)
{
    receiver().give(code, state);
}

} // extern "C"
