/*
 * seam_account.h - what the calls of the media interface have set up at present, as their results tell; and
 * how a recorded call begins and ends. For the files that record them, which define RECORDS_SEAM.
 */
#ifndef CONFORMANCE_SEAM_ACCOUNT_H
#define CONFORMANCE_SEAM_ACCOUNT_H

#include <pthread.h>

#include "record.h"
#include "seam.h"

enum { CHANNELS = 64, BINDINGS = 64, DEVICES = 4, LAYERS = 4 };

/* Guarded by the lock. */
extern pthread_mutex_t account_lock;
struct Account {
    bool decoder[CHANNELS], scaler[CHANNELS], encoder[CHANNELS];
    bool binding_used[BINDINGS];
    MI_SYS_ChnPort source[BINDINGS], sink[BINDINGS];
    bool device_on[DEVICES], port_on[DEVICES][MI_DISP_INPUT_PORTS],
        port_touched[DEVICES][MI_DISP_INPUT_PORTS];
    bool layer_on[LAYERS], layer_bound[LAYERS];
    int32_t layer_device[LAYERS];
    bool hdmi_initialised, hdmi_open, hdmi_started, hdmi_muted;
    bool audio_on[8];
};
extern struct Account account;

/* One flag of an array, where there is such a one. */
void set_flag(bool *flags, uint32_t count, uint32_t index, bool value);

/* The end of a call with its arguments as text. Gives the result. */
LIKE_PRINTF(3, 4)
int32_t done(const CallMark *mark, int32_t result, const char *format, ...);

#define BEGIN(name) const CallMark mark = call_begins(name)
#define DONE(...)   done(&mark, __VA_ARGS__)

#endif
