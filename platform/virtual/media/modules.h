/* modules.h - what the control face does to whole modules. */
#ifndef VBOARD_MODULES_H
#define VBOARD_MODULES_H

namespace vboard
{

/* Back to the state after power-on. In the order of vboard_reset. */
void hdmi_reset();
void vdec_reset();
void scaler_reset();
void venc_reset();
void display_reset();
void graph_reset();
void ao_reset();
void sys_reset();
void nodes_reset();

/* 1 once MI_SYS_Init has been called. */
bool sys_is_up();

/* 1 while the transmitter sends a picture that a plugged monitor can see. */
bool hdmi_is_live();

void hdmi_plug(bool plugged);
bool hdmi_is_plugged();
int hdmi_wait_events(int timeout_ms);

} // namespace vboard

#endif
