/*
 * frame.h - one encoded frame, as most calls take or give it.
 */
#ifndef NVRHAL_FRAME_H
#define NVRHAL_FRAME_H

#include <stdint.h>

#include "nvrhal/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/** What a FrameInfo carries. */
enum FrameMedia {
    FRAME_MEDIA_NONE = 0,
    FRAME_MEDIA_VIDEO = 1,
    FRAME_MEDIA_AUDIO = 2,
    FRAME_MEDIA_JPEG = 17,
};

/** Codecs of video. ext_send_stream and vdec_recreate take any other code for H.264. */
enum FrameCodec {
    NVRHAL_CODEC_H264 = 0,
    NVRHAL_CODEC_H265 = 1,
};

/**
 * One encoded frame. 60 bytes = fifteen 32-bit words on the 32-bit target. Which fields a call reads
 * or fills is said at the call.
 *
 * A block of sound is a header of NVRHAL_SOUND_HEADER_BYTES, which nobody reads, and units of
 * NVRHAL_SOUND_UNIT_BYTES of A-law, which are 40 ms each.
 */
typedef struct FrameInfo {
    uint32_t frame_type;   /*  0  1 = key frame                                                    */
    uint32_t media;        /*  4  enum FrameMedia                                                  */
    uint32_t length;       /*  8  bytes at data                                                    */
    uint32_t width;        /* 12  picture width, pixels                                            */
    uint32_t height;       /* 16  picture height, pixels                                           */
    void *data;            /* 20  the bytes                                                        */
    uint32_t channel;      /* 24  channel, from 0                                                  */
    uint32_t stream_id;    /* 28  sound: channel + 2 N                                             */
    uint32_t display_rate; /* 32  playback buffers: display-rate mode, 2 = double                  */
    uint32_t reserved[2];  /* 36  carried                                                          */
    nvrhal_u64 local_time; /* 44  microseconds since 1970-01-01 00:00 UTC                          */
    nvrhal_u64 pts;        /* 52  presentation time stamp, in the producer's own unit: handed on;  */
                           /*     only kx_stream_getBlock compares those of successive frames     */
} FrameInfo;

#ifdef __cplusplus
}
#endif

#endif
