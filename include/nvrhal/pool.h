/*
 * pool.h - the frame pools: a ring of encoded frames a channel.
 */
#ifndef NVRHAL_POOL_H
#define NVRHAL_POOL_H

#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/limits.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * A pool keeps, per channel, the newest encoded frames in a ring of bytes and describes them in a
 * ring of index entries. The writer overwrites the oldest and never waits; a reader carries its
 * own position, copies nothing, and goes on at a key frame when the writer comes too close. One
 * writer thread per channel and pool, any number of readers, no lock.
 *
 * What a reader was given stays whole while, since its call looked, the writer has moved on by no
 * more than max_frame_len bytes of ring (bytes left unused at the ring's end count) and has begun
 * fewer than 12 frames.
 */

/** Numbers of the pools. */
enum StreamPoolNumber {
    STREAM_POOL_MAIN = 0,  /* filled by ext_set_primary_video_stream */
    STREAM_POOL_SUB = 1,   /* filled by ext_set_network_video_stream */
    STREAM_POOL_AUDIO = 2, /* filled by ext_set_audio_stream         */
};

#define STREAM_POOL_MAX_CHANNELS 43  /* of a pool, at most                     */
#define STREAM_FRAME_MAX_PIECES  100 /* that a frame is stored from, at most   */

/** Byte target of kx_stream_getBlock that asks for all there is of the lap. */
#define STREAM_BLOCK_WHOLE_LAP 0x20000000u

/** Sizes of one channel's rings. 12 bytes. */
typedef struct StreamRingSizes {
    int32_t max_frame_len; /* 0  largest frame, bytes, and the readers' safe distance; at least 80 */
    int32_t data_size;     /* 4  data ring, bytes; below 1 = 0x370000                              */
    int32_t index_num;     /* 8  entries; below 1 = 45056. Below 13, readers get only key frames   */
} StreamRingSizes;

/** Sizes of one pool. 520 bytes. */
typedef struct StreamPoolConfig {
    int32_t channel_count;                              /* 0  1 to 43                              */
    StreamRingSizes channels[STREAM_POOL_MAX_CHANNELS]; /* 4  the first channel_count are read     */
} StreamPoolConfig;

/** One stored frame. 28 bytes. The library rewrites entries while readers hold pointers to them. */
typedef struct StreamIndexEntry {
    uint8_t frame_type;    /*  0  the producer's, 1 = key frame             */
    uint8_t zero[3];       /*  1  always 0                                  */
    uint32_t timestamp;    /*  4  as given, in the producer's own unit      */
    uint32_t reserved;     /*  8  always 0                                  */
    uint32_t data_start;   /* 12  offset of the first byte in the data ring */
    uint32_t data_end;     /* 16  offset one past the last byte             */
    uint32_t data_circle;  /* 20  data ring lap; -3 = never written         */
    uint32_t index_circle; /* 24  index ring lap                            */
} StreamIndexEntry;

/**
 * A reader's position; the caller's, and used by one thread at a time. kx_stream_getStartPos or
 * kx_stream_getLastPos ties it to one channel of one pool. After a successful read the bytes lie
 * at p_buf_data + data_start, data_end - data_start of them, and p_stream_index[last_index] is the
 * (last) entry. 44 bytes on the 32-bit target.
 */
typedef struct StreamReader {
    uint32_t index;                         /*  0  entry the reader is at                          */
    uint32_t last_index;                    /*  4  entry delivered last, or end of the last block  */
    uint32_t index_circle;                  /*  8  its index ring lap                              */
    uint32_t index_num;                     /* 12  entries in the index ring                       */
    uint32_t block_index;                   /* 16  where an unfinished block stopped scanning      */
    uint32_t block_count;                   /* 20  frames that it has gathered                     */
    const StreamIndexEntry *p_stream_index; /* 24  the index ring                                  */
    uint32_t data_start;                    /* 28  start of what was delivered last, and its end:  */
    uint32_t data_end;                      /* 32  equal = positioned and nothing taken yet        */
    uint32_t data_circle;                   /* 36  its data ring lap                               */
    const uint8_t *p_buf_data;              /* 40  the data ring                                   */
} StreamReader;

/** One frame to store, in pieces that are stored one behind the other. 820 bytes on the target. */
typedef struct StreamProducerFrame {
    int32_t channel;                                 /*   0  below NVRHAL_STORED_CHANNELS           */
    uint32_t frame_type;                             /*   4  1 = key frame; the low 8 bits are kept */
    int32_t piece_count;                             /*   8  0 to 100                               */
    uint32_t reserved;                               /*  12  not read                               */
    uint32_t piece_lengths[STREAM_FRAME_MAX_PIECES]; /*  16  bytes; pieces of length 0 are skipped  */
    const void *pieces[STREAM_FRAME_MAX_PIECES];     /* 416                                         */
    uint32_t timestamp;                              /* 816  stored as given, in any unit           */
} StreamProducerFrame;

/**
 * Allocate a pool's rings; start-up does it for all three. What an earlier call allocated for the same
 * pool stays allocated, for the threads that still use it.
 * @param config  sizes in bytes and entries, see StreamPoolConfig
 * @param pool    enum StreamPoolNumber, 0 to 2; for any other number the rings are allocated and belong
 *                to no pool
 * @return 0, or -1
 * Errors: -1 for null, a channel count outside 1 to 43, or no memory; the pool stays as it was. What a call
 *         without enough memory had allocated by then is freed by kx_stream_destroy_avstream.
 * Thread: one.
 * Ownership: config is copied; the rings are the library's.
 */
NVRHAL_API int32_t kx_stream_init_avstream(const StreamPoolConfig *config, int32_t pool);

/**
 * Free what was allocated last; no thread may use it any more.
 * @return 0
 * Errors: none.
 * Thread: one.
 */
NVRHAL_API int32_t kx_stream_destroy_avstream(void);

/**
 * Store a frame: one copy, no waiting.
 * @param frame  its pieces make 1 byte to max_frame_len bytes together
 * @param pool   enum StreamPoolNumber, 0 to 2
 * @return 0, or -1
 * Errors: -1 = nothing changed: null, a bad channel, pool, piece count or piece, no bytes, more bytes
 *         than max_frame_len or than the ring.
 * Thread: one a channel and pool.
 * Ownership: the bytes are copied during the call.
 */
NVRHAL_API int32_t kx_stream_sendFrameToPool(const StreamProducerFrame *frame, int32_t pool);

/**
 * Position a reader at the newest frame; the next read delivers it.
 * @param channel  0 to 42, one that is configured; from NVRHAL_STORED_CHANNELS on there is never a frame
 * @param reader   out: the position
 * @param pool     enum StreamPoolNumber, 0 to 2
 * @return 0, or -1
 * Errors: -1 for a bad channel or pool, or null.
 * Thread: the reader's.
 * Ownership: reader is the caller's; it points into the rings, which are the library's.
 */
NVRHAL_API int32_t kx_stream_getLastPos(int32_t channel, StreamReader *reader, int32_t pool);

/**
 * Position a reader at the oldest frame that is still safe, key frame or not; the next read delivers
 * it.
 * @param channel  0 to 42, one that is configured; from NVRHAL_STORED_CHANNELS on there is never a frame
 * @param reader   out: the position
 * @param pool     enum StreamPoolNumber, 0 to 2
 * @return 0, or -1
 * Errors: -1 for a bad channel or pool, null, or when no frame stands at a safe distance.
 * Thread: the reader's.
 * Ownership: reader is the caller's; it points into the rings, which are the library's.
 */
NVRHAL_API int32_t kx_stream_getStartPos(int32_t channel, StreamReader *reader, int32_t pool);

/**
 * Deliver the next frame, in order and never twice. A reader that the writer has overrun, or is about
 * to, goes on at the oldest safe key frame instead.
 * @param channel     0 to 42, the one that reader was positioned on; from NVRHAL_STORED_CHANNELS on
 *                    there is never a frame
 * @param skip_limit  0 = every frame; otherwise a backlog of more than so many frames skips to the next
 *                    key frame
 * @param reader      in and out: the position
 * @param pool        enum StreamPoolNumber, 0 to 2
 * @return the frame's bytes, or 0
 * Errors: 0 when there is nothing new or safe, or for a bad argument: the reader stays as it is.
 * Thread: the reader's.
 * Ownership: the bytes are the library's and are overwritten in time: see above how long they stay.
 */
NVRHAL_API int32_t kx_stream_getOneFrame(int32_t channel, int32_t skip_limit, StreamReader *reader,
                                         int32_t pool);

/**
 * Gather consecutive frames of one lap into one range of bytes, at most index_num / 3 + 1 frames. A
 * jump of the time stamps by more than 59, in the producer's unit, ends the block before the jump; the
 * call then waits, without limit, for the key frame at which the next block starts. A reader serves
 * either this function or kx_stream_getOneFrame.
 * @param channel      0 to 42, the one that reader was positioned on; from NVRHAL_STORED_CHANNELS on
 *                     there is never a frame
 * @param byte_target  any number of bytes after which the block ends, or STREAM_BLOCK_WHOLE_LAP
 * @param reader       in and out: the position
 * @param pool         enum StreamPoolNumber, 0 to 2. Pool 2 judges the position by the audio ring and
 *                     gathers from the sub ring.
 * @return 2 = a block; 3 = whole-lap request: up to the newest frame; 4 = a block that ends at a jump;
 *         0 = not yet
 * Errors: 0 for a bad argument.
 * Thread: one for all channels and pools together.
 * Ownership: the bytes are the library's and are overwritten in time: see above how long they stay.
 */
NVRHAL_API int32_t kx_stream_getBlock(int32_t channel, uint32_t byte_target, StreamReader *reader,
                                      int32_t pool);

#ifdef __cplusplus
}
#endif

#endif
