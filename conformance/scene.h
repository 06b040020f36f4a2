/*
 * scene.h - what most points set up first, and how they look at the result: a display with ports, a
 * decoder that plays a test stream, a snapshot pipeline.
 *
 * Set-ups end the point as blocked when a call fails, since other points judge those calls.
 */
#ifndef CONFORMANCE_SCENE_H
#define CONFORMANCE_SCENE_H

#include "jpeg.h"
#include "seam.h"
#include "streams.h"
#include "suite.h"

enum {
    SCREEN_WIDTH = 1280, /* of the output timing that the suite uses: 1280 x 720 at 50 Hz */
    SCREEN_HEIGHT = 720,
    SCREEN_TIMING = 8,
    HDMI_TIMING = 4,
    STREAM_BUFFER = 1 << 20, /* bytes */
    STREAM_WIDTH = 352,      /* of the small test streams, pixels */
    STREAM_HEIGHT = 288,
    SEND_MS = 2000,    /* time-out of sends that are no point themselves */
    PICTURE_MS = 2000, /* until a picture that was sent must be seen */
};

typedef enum Colour { BLACK, RED, GREEN, BLUE, YELLOW, CYAN, MAGENTA, WHITE, GREY, COLOURS } Colour;

const char *colour_name(Colour colour);
Colour nearest_colour(const uint8_t rgb[3]);

/* A place on the screen and what is to be seen there. */
typedef struct Spot {
    int x, y;
    Colour colour;
} Spot;

/* ------------------------------------------------------------------------------------ display --- */

/* The media system, device, and layer 0 over the whole screen, as the library brings them up. */
void need_display(int32_t device);

/* A port with its window, taking and showing pictures as they come. Source size as delivered. */
void need_port(int32_t device, uint32_t port, int x, int y, int width, int height);

/*
 * The screen shows these colours, or will within PICTURE_MS. Without a capture hook the person is asked
 * `question`; without a person the point is not tried.
 */
void screen_shows(int32_t device, const Spot *spots, int count, const char *question);

/* It goes on showing them for a while: something must not appear, or not go. */
void screen_keeps(int32_t device, const Spot *spots, int count, const char *question);

/* ------------------------------------------------------------------------------------ decoder --- */

MI_VDEC_ChnAttr decoder_attr(const TestStream *stream);
MI_SYS_ChnPort decoder_end(uint32_t channel);
MI_SYS_ChnPort display_end(int32_t device, uint32_t port);

/* The media system and a decoder channel, created and no more. */
void need_created_decoder(uint32_t channel);

/* The media system and a decoder channel that is created and started. */
void need_decoder(uint32_t channel, const TestStream *stream);

/* Connect, and account for it. */
void need_bound(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink);

/* Frame number `index` as a send of a whole frame. */
MI_VDEC_Stream frame_of(const TestStream *stream, uint32_t index);

/* Send frames; the point cannot go on when one is refused. */
void need_played(uint32_t channel, const TestStream *stream, uint32_t first, uint32_t count);

/* Until the channel says that it has consumed everything, or for at most this long. */
bool wait_consumed(uint32_t channel, unsigned most_ms);

/* A decoder, playing, in a port of a display that is up. */
void need_playing(int32_t device, uint32_t port, uint32_t channel, const TestStream *stream);

/* Frames of large_h264 that keep a decoder busy for at least so long, as measured on this board. */
uint32_t frames_for_ms(uint32_t channel, unsigned milliseconds);

/* A decoder that has a measured amount of work before it: so many large frames are queued. */
uint32_t need_busy(uint32_t channel, unsigned busy_ms);

/* ----------------------------------------------------------------------------------- snapshot --- */

enum { SCALER = 0, ENCODER = 2, SNAP_QUALITY = 80, SNAP_BUFFER = 1 << 20, SNAP_MS = 1500 };

MI_DIVP_ChnAttr scaler_attr(uint32_t max_width, uint32_t max_height);
MI_DIVP_OutputPortAttr scaler_output(uint32_t width, uint32_t height);
MI_VENC_ChnAttr encoder_attr(uint32_t width, uint32_t height);
MI_SYS_ChnPort scaler_end(void);
MI_SYS_ChnPort encoder_end(void); /* asks the encoder for its device number */

/* The media system, and one of them, created and no more. */
void need_scaler(void);
void need_encoder(void);

/* Decoder channel to scaler to encoder, receiving, in the order in which the library builds it. */
void need_snapshots(uint32_t decoder, uint32_t width, uint32_t height);

/* The same with attributes of the caller's, the scaler's pictures of this size, and nothing else set. */
void need_snapshots_with(uint32_t decoder, const MI_DIVP_ChnAttr *scaler, const MI_VENC_ChnAttr *encoder,
                         uint32_t width, uint32_t height);

/* Only scaler and encoder, connected, receiving. */
void need_scaler_and_encoder(uint32_t width, uint32_t height);

/* Get a picture, look at it, release it. Broken when none comes or it is no JPEG of the size. */
void take_snapshot(JpegLook *look, uint32_t width, uint32_t height);

/* Snapshots until one shows these colours, SNAP_MS at most. The decoder is fed by `feed` meanwhile. */
void snapshot_shows(const Spot *spots, int count, uint32_t width, uint32_t height);

/* Where the quarters of the quad streams are seen in a picture of this size. */
void quad_spots(Spot spots[4], int x, int y, int width, int height);

#endif
