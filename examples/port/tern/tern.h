/*
 * tern.h - media calls of the Tern chip, as its maker ships them.
 *
 * Tern is made up, for the example of a port. Its interface is shaped as chip makers' interfaces are:
 * units are handles and not numbers, nothing waits, times are ticks of 90 kHz, settings of a screen take
 * effect when they are committed, and what happens is polled for or told by a function that the chip's
 * thread calls. tern/ is a simulation of the chip in plain C, which decodes no picture: it counts frames,
 * keeps buffers, and takes its time.
 *
 * Every call may be made from any thread. Functions that the chip calls must not call the chip.
 */
#ifndef TERN_H
#define TERN_H

#include <stddef.h>
#include <stdint.h>

typedef enum TernStatus {
    TERN_OK = 0,
    TERN_NO_POWER = 101, /* the chip sleeps                            */
    TERN_BAD_ARGUMENT,   /* a value that the chip cannot have          */
    TERN_NO_UNIT,        /* all units of that kind are in use          */
    TERN_FULL,           /* no room now                                */
    TERN_NO_MEMORY,
    TERN_NO_SIGNAL, /* there is nothing at the plug               */
} TernStatus;

enum {
    TERN_TICKS_PER_SECOND = 90000,
    TERN_DECODERS = 24,
    TERN_SCREENS = 4, /* 0 main, 1 further, 2 secondary, 3 service */
    TERN_PLANES = 4,  /* 0 lowest                                    */
    TERN_TILES = 16,  /* of each plane                               */
    TERN_CROP_WHOLE = 65536,
    TERN_EDID_BYTES = 128,
    TERN_GAIN_ONE = 4096,
};

/* --- the chip ---------------------------------------------------------------------------------- */

/* Wake the chip up. Once more is accepted. */
TernStatus tern_wake(void);
const char *tern_firmware(void);

/* Ticks since the chip woke up. */
uint64_t tern_ticks(void);

/* --- decoders ---------------------------------------------------------------------------------- */

typedef struct TernDecoder TernDecoder;

typedef enum TernFormat { TERN_AVC = 1, TERN_HEVC = 2, TERN_MJPEG = 3 } TernFormat;

typedef struct TernDecoderSetup {
    TernFormat format;
    size_t fifo_bytes;               /* 1 to 64 MiB                                           */
    int by_frame;                    /* 1 = a push is a whole frame, 0 = any cut of the stream    */
    void (*progress)(void *context); /* told whenever something was consumed; may be null         */
    void *context;
} TernDecoderSetup;

typedef struct TernDecoderLevel {
    size_t fifo_bytes;   /* not consumed, those in work included */
    unsigned fifo_units; /* pushes not consumed                  */
    unsigned pictures;   /* done, and not shown by anybody yet   */
    uint64_t decoded;    /* pictures since it was opened         */
} TernDecoderLevel;

/* A decoder is opened halted, and closed in any state; tiles that it feeds are cut off then. */
TernStatus tern_decoder_open(const TernDecoderSetup *setup, TernDecoder **decoder);
void tern_decoder_close(TernDecoder *decoder);

/* Halted, it keeps its fifo. Returns when the frame in work is done. */
void tern_decoder_run(TernDecoder *decoder, int run);

/* Throw the fifo away, and wait for the next key frame. */
void tern_decoder_drop(TernDecoder *decoder);

/* Copies the bytes; TERN_FULL when they do not fit now. Never waits. The stamp goes with the picture. */
TernStatus tern_decoder_push(TernDecoder *decoder, const void *bytes, size_t size, uint64_t stamp);
void tern_decoder_level(TernDecoder *decoder, TernDecoderLevel *level);

/* Pictures leave at this size at most; 0 = the stream's. */
void tern_decoder_shrink(TernDecoder *decoder, unsigned width, unsigned height);

/* --- grabbing pictures as JPEG ----------------------------------------------------------------- */

typedef struct TernGrab {
    unsigned crop_x, crop_y, crop_width, crop_height; /* of the picture, 65536ths            */
    unsigned width, height;                           /* even, 2 to 4096                     */
    unsigned percent;                                 /* quality, 1 to 100                   */
    unsigned restart_rows; /* rows of blocks between restart markers, 0 = none              */
    uint8_t *buffer;       /* the chip's until the grab is taken back                         */
    size_t room;
    /* A picture is in the buffer, until this returns; length 0 = it had no room. */
    void (*done)(void *context, size_t length, uint64_t stamp);
    void *context;
} TernGrab;

/* Every picture of the decoder from now on is cut, scaled, encoded, and told. Two grabs for each decoder. */
TernStatus tern_grab(TernDecoder *decoder, const TernGrab *grab);

/* Take the grab back that has this context: `done` is not called any more when this has returned. */
void tern_grab_cancel(TernDecoder *decoder, const void *context);

/* --- screens, planes, tiles -------------------------------------------------------------------------- */

typedef struct TernMode {
    unsigned width, height, hertz;
} TernMode;

enum TernConnector { TERN_CONNECTOR_HDMI = 1, TERN_CONNECTOR_VGA = 2 };

typedef struct TernTile {
    int visible;
    unsigned x, y, width, height;                     /* on the plane, pixels, even      */
    unsigned crop_x, crop_y, crop_width, crop_height; /* of the picture, 65536ths        */
    TernDecoder *feed;                                /* null = nobody                   */
} TernTile;

/* The mode of a screen that is off. */
TernStatus tern_screen_mode(int screen, const TernMode *mode, unsigned connectors);
TernStatus tern_screen_backdrop(int screen, uint8_t red, uint8_t green, uint8_t blue);
TernStatus tern_screen_on(int screen, int on);

/* A plane of this size, on a rectangle of a screen; screen -1 takes it off. */
typedef struct TernPlane {
    int screen;
    int visible;
    unsigned width, height;             /* of the plane's own pixels */
    unsigned x, y, on_width, on_height; /* on the screen             */
} TernPlane;

TernStatus tern_plane_set(int plane, const TernPlane *settings);
TernStatus tern_tile_set(int plane, int tile, const TernTile *settings);

/* Forget the picture that waits; `shown` = also the one that is seen. */
TernStatus tern_tile_forget(int plane, int tile, int shown);

/* Planes and tiles take effect together, with the next refresh after this. */
TernStatus tern_commit(void);

/* --- HDMI --------------------------------------------------------------------------------------------- */

TernStatus tern_hdmi_power(int on);
TernStatus tern_hdmi_mode(const TernMode *mode, int picture, int sound);
TernStatus tern_hdmi_send(int on);
TernStatus tern_hdmi_blank(int on);

/* 1 = a monitor is at the plug. Nothing tells of a change: look now and then. */
int tern_hdmi_sense(void);

/* How often the plug was moved so far: it may have been moved twice between two looks. */
unsigned tern_hdmi_moves(void);
TernStatus tern_hdmi_edid(uint8_t edid[TERN_EDID_BYTES]);

/* --- sound --------------------------------------------------------------------------------------------- */

/* A ring of stereo samples that is played at `rate` Hz, silence when it is empty. */
TernStatus tern_pcm_open(unsigned rate, unsigned ring_samples);

/* Samples of left and right; how many fit and were taken. Never waits. */
unsigned tern_pcm_write(const int16_t *stereo, unsigned samples);
unsigned tern_pcm_space(void);

/* TERN_GAIN_ONE = as it is; up to 32 times that. */
TernStatus tern_pcm_gain(unsigned gain);

#endif
