/*
 * playback.c - see playback.h.
 *
 * The order of the calls matters. In: ext_playback_start keeps the cameras' frames out; only then is a
 * decoder changed for the recording's codec; and the layout comes last, because it binds the decoder,
 * as it is by then, to its pane. Out: the decoder is changed back while live frames are still kept out,
 * since ext_send_stream remembers the codec it gave a channel and would not change it again.
 */
#include "playback.h"

#include <stdlib.h>
#include <string.h>

#include "nvrhal.h"
#include "screen.h"

#define PLAYING_CHANNEL 0

static struct {
    bool on;
    enum FrameCodec camera_codec;
    struct stream_file video;
    uint8_t *sound;
    size_t sound_size;
    atomic_bool stop, paused, ended;
    pthread_t thread;
} player;

/* A decoder that takes a byte stream shows a picture when the next one begins: this delimiter begins it. */
static uint32_t append_delimiter(uint8_t *at, enum FrameCodec codec)
{
    static const uint8_t h264[] = {0, 0, 0, 1, 9, 0xF0}, h265[] = {0, 0, 0, 1, 0x46, 1, 0x50};
    const uint32_t length = codec == NVRHAL_CODEC_H265 ? sizeof h265 : sizeof h264;
    memcpy(at, codec == NVRHAL_CODEC_H265 ? h265 : h264, length);
    return length;
}

/* [deliver] */
static void deliver(const struct stream_frame *frame)
{
    FrameInfo buffer = {0};
    if (ext_playback_get_buf(&buffer) != 0) return; /* length is the room that there is */
    if (frame->length + 16 > buffer.length) return;
    memcpy(buffer.data, frame->bytes, frame->length);
    buffer.length = frame->length;
    buffer.length += append_delimiter((uint8_t *)buffer.data + buffer.length, player.video.codec);
    buffer.media = FRAME_MEDIA_VIDEO;
    buffer.channel = PLAYING_CHANNEL;
    buffer.display_rate = 1;
    ext_playback_set_buf(&buffer);
}
/* [/deliver] */

static void deliver_sound(uint32_t number)
{
    const size_t at = (size_t)number * NVRHAL_SOUND_UNIT_BYTES;
    if (!player.sound || at + NVRHAL_SOUND_UNIT_BYTES > player.sound_size) return;
    FrameInfo buffer = {0};
    if (ext_playback_get_buf(&buffer) != 0) return;
    memset(buffer.data, 0, NVRHAL_SOUND_HEADER_BYTES);
    memcpy((uint8_t *)buffer.data + NVRHAL_SOUND_HEADER_BYTES, player.sound + at, NVRHAL_SOUND_UNIT_BYTES);
    buffer.length = NVRHAL_SOUND_HEADER_BYTES + NVRHAL_SOUND_UNIT_BYTES;
    buffer.media = FRAME_MEDIA_AUDIO;
    ext_playback_set_buf(&buffer); /* waits for room in the audio output */
}

/* Pausing is not delivering. */
static void *run(void *ignored)
{
    (void)ignored;
    struct stream_frame frame;
    int64_t due_us = now_us();
    for (uint32_t number = 0; !atomic_load(&player.stop);) {
        sleep_until_us(due_us);
        due_us += FRAME_PERIOD_US;
        if (atomic_load(&player.paused)) continue;
        if (!stream_file_next(&player.video, &frame)) break;
        deliver(&frame);
        deliver_sound(number++);
    }
    atomic_store(&player.ended, true);
    return NULL;
}

static void close_files(void)
{
    stream_file_close(&player.video);
    free(player.sound);
    player.sound = NULL;
}

/* [leave] */
static void leave(void)
{
    ext_playback_stop(); /* the output is for live sound again */
    if (player.video.codec != player.camera_codec) vdec_recreate(PLAYING_CHANNEL, player.camera_codec);
    ext_playback_exit();
}
/* [/leave] */

bool playback_begin(const char *video_path, const char *sound_path, const struct camera *first_camera)
{
    if (player.on || !stream_file_open(&player.video, video_path)) return false;
    player.sound = read_whole_file(sound_path, &player.sound_size); /* null: a recording without sound */
    player.camera_codec = first_camera->video.codec;
    atomic_store(&player.stop, false);
    atomic_store(&player.paused, false);
    atomic_store(&player.ended, false);
    /* [enter] */
    bool entered = ext_playback_start(1u << PLAYING_CHANNEL, 0) == 0;
    if (player.video.codec != player.camera_codec) vdec_recreate(PLAYING_CHANNEL, player.video.codec);
    entered = entered && screen_show_single(PLAYING_CHANNEL);
    /* [/enter] */
    player.on = entered && pthread_create(&player.thread, NULL, run, NULL) == 0;
    if (!player.on) {
        leave();
        close_files();
    }
    return player.on;
}

bool playback_is_on(void)
{
    return player.on;
}

bool playback_has_ended(void)
{
    return player.on && atomic_load(&player.ended);
}

void playback_pause(bool paused)
{
    atomic_store(&player.paused, paused);
}

bool playback_is_paused(void)
{
    return atomic_load(&player.paused);
}

void playback_end(void)
{
    if (!player.on) return;
    atomic_store(&player.stop, true);
    pthread_join(player.thread, NULL);
    leave();
    close_files();
    player.on = false;
}
