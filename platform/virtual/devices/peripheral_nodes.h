/* peripheral_nodes.h - the nodes of the board's peripherals, for node_table.cpp. */
#ifndef VBOARD_PERIPHERAL_NODES_H
#define VBOARD_PERIPHERAL_NODES_H

#include "devices/device_node.h"

namespace vboard
{

DeviceNode *watchdog_node();
DeviceNode *clock_node();
DeviceNode *gpio_node();
DeviceNode *front_panel_node();
DeviceNode *ir_receiver_node();
DeviceNode *analog_chip_node();
DeviceNode *mouse_node();

} // namespace vboard

#endif
