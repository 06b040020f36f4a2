/* peripherals.h - record lamp, buzzer, alarms, watchdog and the battery-backed clock. UI thread. */
#ifndef PERIPHERALS_H
#define PERIPHERALS_H

#include "camera.h"

void peripherals_start(void);

/* To be called a few times a second: feeds the watchdog, and watches the cameras. */
void peripherals_turn(const struct camera *cameras, int count);

void peripherals_stop(void);

#endif
