/*
 * host.h - what the recorder has from the machine that it runs on, beyond the library: a window,
 * pictures of the monitor, a place for the sound to be heard, keys pressed by a program, and what a
 * report tells of the board.
 *
 * This room is the one place of nvrec that knows what stands under the library. Everything else sees
 * nvrhal.h. There are two implementations of clock.h, device_node.h and this header, one of which is
 * linked:
 *
 *   host_vboard*.cpp   over the board in software, which has all of it
 *   host_none*.cpp     over a real board: what does not exist there is refused with a reason
 *
 * A text that is returned is a reason: empty when the call did what it says.
 *
 * Threads: any, except the window, which belongs to the main thread.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/clock.h"

namespace nvrec::host
{

/* ------------------------------------------------------------------------------- the screen --- */

/** Whether someone may sit in front of a window here, so that it is worth opening unasked. */
bool has_desktop();

/** Whether the picture is on a monitor of its own, which someone may look at without a window. */
bool has_own_monitor();

/** A key of the PC that presses a button of the remote control while the window has the keys. */
struct WindowKey {
    const char *pc_key;      /* as SDL calls it                       */
    std::string_view button; /* as platform/include/ir_buttons.h does */
};
void set_window_keys(const std::vector<WindowKey> &keys);

/** Open the window that shows what the monitor shows, in any size, scaled smoothly. */
std::string open_window(const char *title);

/** Draw, and take the window's events. @return false = the user has closed it */
bool refresh_window();
void close_window();

/** Write what the monitor shows to a PNG file. */
std::string save_monitor_picture(const std::string &path);

/** What the monitor shows, R, G and B of every pixel, rows without gaps. */
struct MonitorPicture {
    int width = 0, height = 0;
    std::vector<uint8_t> rgb;
};
std::string take_monitor_picture(MonitorPicture *picture);

/* -------------------------------------------------------------------------------- the sound --- */

/** Write what the loudspeaker plays to a WAV file, or let it be heard. */
std::string open_sound_file(const std::string &path);
std::string open_loudspeaker();

/** Wait until all that the output was given has been played, but no longer than this. */
void wait_for_sound(std::chrono::milliseconds limit);
void close_sound();

/* ----------------------------------------------------------------------------- injected keys --- */

/** Press a button of the remote control, by its name in ir_buttons.h, or a key of the front panel. */
std::string press_remote_button(std::string_view name);
std::string press_panel_key(uint32_t key_code);

/* ------------------------------------------------------------------- decoders, for reports --- */

/** What a decoder has taken and not consumed yet. */
struct DecoderBacklog {
    uint64_t frames = 0;
    uint64_t bytes = 0;
};

/** What became of the frames that a decoder channel was sent, since the board's start. */
struct DecoderCounters {
    uint64_t decoded = 0;
    uint64_t shown = 0;
    uint64_t dropped = 0; /* decoded, and never on a screen         */
    uint64_t damaged = 0; /* withheld by the decoder                */
    uint64_t resets = 0;
    uint64_t sent = 0; /* frames that it took */

    /** Frames that it took and never gave a picture of: resets and flushes threw them away. */
    uint64_t discarded(const DecoderBacklog &backlog) const;

    DecoderCounters &operator+=(const DecoderCounters &more);
    DecoderCounters operator-(const DecoderCounters &earlier) const;
};

/** A channel's counters; nothing where decoders do not tell. */
std::optional<DecoderCounters> decoder_counters(int channel);

/** Its backlog now; nothing where decoders do not tell. */
std::optional<DecoderBacklog> decoder_backlog(int channel);

/**
 * Wait until a decoder has consumed what it was sent and its pictures are on their way to the
 * screen, but no longer than this. Where decoders do not tell, a picture's time goes by.
 */
void wait_for_decoder(int channel, std::chrono::milliseconds limit);

/* ------------------------------------------------------------------------- the board's state --- */

/** What the board's own devices stand at, for the table of "nvrec board". */
struct BoardState {
    struct Panel {
        bool record_lamp_lit;
        uint64_t lamp_changes, keys_taken, empty_polls;
    };
    struct Watchdog {
        bool enabled, expired;
        double expired_ago_s; /* when expired */
        double left_s;        /* when enabled */
        uint32_t timeout_s;
        uint64_t feeds;
        bool reset_the_board; /* it ended the run before this one */
    };
    struct ChipInput {
        bool lost;
        uint32_t moving_blocks;
    };
    struct Chips {
        uint32_t norm;
        bool detects_motion;
        uint32_t rate_code, playback, volume, format, bitwidth, mute;
        std::vector<ChipInput> inputs;
    };
    struct Monitor {
        bool plugged_in, has_signal;
    };
    Panel panel;
    Watchdog watchdog;
    Chips chips;
    Monitor monitor;
    uint64_t refused_calls;
};

/** The state; nothing where it cannot be read from beside the library. */
std::optional<BoardState> board_state();

/** Level of an output line, 1 or 0; nothing when it is no output yet, or cannot be read back. */
std::optional<int> output_line_level(uint32_t line);

/** Whether the watchdog has run out, and the recorder still runs to say so. */
bool watchdog_has_expired();

} // namespace nvrec::host
