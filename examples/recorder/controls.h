/* controls.h - keys of the remote control and of the front panel, and the mouse. */
#ifndef CONTROLS_H
#define CONTROLS_H

#include <stdbool.h>
#include <stdint.h>

#include "nvrhal.h"

#define NO_KEY 0

/* Open the devices and start their readers; what is missing is only reported. UI thread. */
void controls_start(void);
void controls_stop(void);

/* The next key, one of enum KeyCode, or NO_KEY. UI thread. */
uint32_t controls_next_key(void);

/* The next mouse event, if there is one. UI thread. */
bool controls_next_mouse_event(MouseRecord *event);

#endif
