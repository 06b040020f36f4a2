/*
 * device_state.h - module-wide settings that start-up derives and every subsystem reads.
 *
 * Written during start-up and by the output-device switch (UI thread), read everywhere, without a
 * lock. The exported ones are declared in nvrhal.h.
 */
#pragma once

#include "core/shared_word.h"
#include "nvrhal.h"

namespace nvrhal
{

/** Camera channels N; every per-channel loop runs 0..N-1. */
inline int32_t camera_count()
{
    return load_word(g_vi_chn_num);
}

/** Default video format code, handed to the picture-in-picture layer. */
extern uint32_t global_format_e;

/** Default frame rate, handed to the GUI's display start. */
extern uint32_t globalFrmRate;

/** Video standard code: 1 = 25 frames a second, any other value = 30. */
extern uint32_t global_videofomat;

} // namespace nvrhal
