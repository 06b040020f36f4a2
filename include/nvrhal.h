/*
 * nvrhal.h - the media and hardware abstraction library of a network video recorder.
 *
 * An application starts the device (ext_device_init), lays panes out, sends frames, stores and
 * fetches streams, takes snapshots, plays sound, draws its GUI, reads keys, drives the board, and
 * detaches the display at the end (ext_device_quit). Each concern has a header in nvrhal/, which
 * compiles alone; this one includes them all.
 *
 * Conventions
 *   Results: 0 = success and -1 = failure unless a function says otherwise; some pass a negative
 *   code of the media platform through.
 *   Channels count from 0. N is the number of camera channels, DeviceParams::vi_chn_num, 1 to 16.
 *   "Output pixels" are pixels of the display's current timing.
 *   Threads: "any thread" = callable from every thread at any time after ext_device_init;
 *   "UI thread" = callable from one thread at a time, together with all others so marked;
 *   "channel thread" = calls for one channel come from one thread, channels may run in parallel.
 *   Memory: records are the caller's and are only used during the call unless stated otherwise.
 *   The library prints what it does, and the platform calls whose failure matters, to standard
 *   output.
 */
#ifndef NVRHAL_H
#define NVRHAL_H

#include "nvrhal/accepted.h"
#include "nvrhal/analog.h"
#include "nvrhal/api.h"
#include "nvrhal/audio.h"
#include "nvrhal/board.h"
#include "nvrhal/decoder.h"
#include "nvrhal/device.h"
#include "nvrhal/display.h"
#include "nvrhal/frame.h"
#include "nvrhal/gui.h"
#include "nvrhal/image.h"
#include "nvrhal/input_nodes.h"
#include "nvrhal/key_codes.h"
#include "nvrhal/keys.h"
#include "nvrhal/layout.h"
#include "nvrhal/limits.h"
#include "nvrhal/live.h"
#include "nvrhal/picture.h"
#include "nvrhal/playback.h"
#include "nvrhal/pool.h"
#include "nvrhal/snapshot.h"
#include "nvrhal/stream.h"
#include "nvrhal/text.h"

#endif
