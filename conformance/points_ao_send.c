/* points_ao_send.c - sound that is sent: the pace of blocks, volume and mute. */
#include <math.h>
#include <pthread.h>
#include <string.h>

#include "hooks.h"
#include "points.h"
#include "record.h"
#include "sound.h"

/* Send blocks until one finds no room, at most two seconds of them. How many went in. */
static uint32_t need_full_queue(void)
{
    const MI_AO_Frame block = block_of(tone(), BLOCK);
    uint32_t taken = 0;
    while (taken < 50) {
        const int32_t result = MI_AO_SendFrame(DEV, CHN, &block, 0);
        if (result == MI_ERROR(MI_MODULE_AO, MI_REASON_BUFFER_FULL)) return taken;
        OK(result);
        ++taken;
    }
    broken("50 blocks, two seconds of sound, went in without waiting: the queue holds them all");
}

static void need_blocks(uint32_t count)
{
    const MI_AO_Frame block = block_of(tone(), BLOCK);
    for (uint32_t i = 0; i < count; ++i)
        OK(MI_AO_SendFrame(DEV, CHN, &block, -1));
}

/* ---------------------------------------------------------------------------------------- pace --- */

POINT(queue_size, "ao.send.queue", "MI_AO_SendFrame",
      "the queue holds 100 ms to 500 ms of sound, and is full then")
{
    need_audio();
    const uint32_t taken = need_full_queue();
    IN_TIME(taken * BLOCK_MS >= 100 - BLOCK_MS && taken * BLOCK_MS <= 500 + BLOCK_MS,
            "%u blocks of 40 ms went in without waiting", taken);
}

/* On a machine that stood still for a while there is room again: then the send succeeds rightly. */
static void refused_for_want_of_room(int32_t result)
{
    if (result == 0) too_late("%s, expected BUFFER_FULL", last_call_text());
    expect_refusal(result, MI_MODULE_AO, MI_REASON_BUFFER_FULL);
}

POINT(full_at_once, "ao.send.full-at-once", "MI_AO_SendFrame",
      "with a time-out of 0 a block without room gives BUFFER_FULL without waiting")
{
    enum { TRIES = 3 };
    const MI_AO_Frame block = block_of(tone(), BLOCK);
    need_audio();
    for (int i = 1;; ++i) {
        need_full_queue();
        refused_for_want_of_room(MI_AO_SendFrame(DEV, CHN, &block, 0));
        if (i == TRIES || took_within(0, 15)) break;
    }
    expect_took(0, 15);
}

POINT(full_times_out, "ao.send.full-times-out", "MI_AO_SendFrame",
      "a block without room gives BUFFER_FULL when its time-out is over, neither before nor much later")
{
    enum { TRIES = 3, WAIT_MS = 50, LONG_BLOCK = 800 /* 100 ms */ };
    static uint8_t bytes[LONG_BLOCK];
    memset(bytes, 0xD5, sizeof bytes);
    const MI_AO_Frame large = block_of(bytes, sizeof bytes);
    need_audio();
    for (int i = 1;; ++i) {
        need_full_queue(); /* less than 40 ms of room, so that 100 ms have room 60 ms later at the earliest */
        refused_for_want_of_room(MI_AO_SendFrame(DEV, CHN, &large, WAIT_MS));
        if (i == TRIES || took_within(WAIT_MS, 30) || last_call_ms() < WAIT_MS - 2) break;
    }
    expect_took(WAIT_MS, 30);
}

POINT(room_at_once, "ao.send.room-at-once", "MI_AO_SendFrame", "a block that has room is taken at once")
{
    enum { TRIES = 3 };
    const MI_AO_Frame block = block_of(tone(), BLOCK);
    need_audio();
    for (int i = 1;; ++i) {
        OK(MI_AO_SendFrame(DEV, CHN, &block, -1));
        if (i == TRIES || took_within(0, 15)) break;
    }
    expect_took(0, 15);
}

/* Milliseconds that `count` blocks take once the queue is full. */
static double pace_of(uint32_t count)
{
    need_full_queue();
    need_blocks(1); /* from here on each block waits for the one that is played */
    const int64_t began_us = now_us();
    need_blocks(count);
    return (double)(now_us() - began_us) / 1000;
}

static void paced(const char *how)
{
    enum { COUNT = 20 };
    const double took = pace_of(COUNT), wanted = COUNT * BLOCK_MS;
    note("%d blocks of 40 ms took %.0f ms", COUNT, took);
    HOLDS(took > wanted * 0.93, "%s: %d blocks of 40 ms took %.0f ms, expected %.0f", how, COUNT, took,
          wanted);
    IN_TIME(took < wanted * 1.07 * settings.patience + 30,
            "%s: %d blocks of 40 ms took %.0f ms, expected %.0f", how, COUNT, took, wanted);
}

POINT(pace, "ao.send.pace", "MI_AO_SendFrame",
      "a sender that waits for ever is held to the pace of the sound: 40 ms for each 320 bytes")
{
    need_audio();
    paced("heard");
}

POINT(pace_muted, "ao.mute.keeps-pace", "MI_AO_SetMute MI_AO_SendFrame",
      "a muted device takes blocks at the same pace")
{
    need_audio();
    NEED(MI_AO_SetMute(DEV, 1));
    paced("muted");
}

POINT(pace_after_pause, "ao.send.after-pause", "MI_AO_SendFrame",
      "when the queue has run empty the next blocks are taken at once again, and the pace is the same")
{
    need_audio();
    need_blocks(2);
    pause_ms(200);
    const MI_AO_Frame block = block_of(tone(), BLOCK);
    OK(MI_AO_SendFrame(DEV, CHN, &block, 0));
    paced("after a pause");
}

typedef struct Player {
    pthread_t thread;
    uint32_t blocks;
    int32_t result;
} Player;

static void *play(void *argument)
{
    Player *player = argument;
    const MI_AO_Frame block = block_of(tone(), BLOCK);
    for (uint32_t i = 0; i < player->blocks; ++i) {
        const int32_t result = MI_AO_SendFrame(DEV, CHN, &block, -1);
        if (result != 0) player->result = result;
    }
    return NULL;
}

POINT(threads, "ao.send.threads", "MI_AO_SendFrame",
      "three threads send at once: every block is taken once, at the pace of them all")
{
    enum { THREADS = 3, BLOCKS = 6 };
    Player players[THREADS];
    need_audio();
    (void)tone();
    need_full_queue();
    need_blocks(1);
    const int64_t began_us = now_us();
    for (int i = 0; i < THREADS; ++i) {
        players[i] = (Player){.blocks = BLOCKS};
        if (pthread_create(&players[i].thread, NULL, play, &players[i]) != 0) blocked("no thread");
    }
    for (int i = 0; i < THREADS; ++i)
        pthread_join(players[i].thread, NULL);
    const double took = (double)(now_us() - began_us) / 1000, wanted = THREADS * BLOCKS * BLOCK_MS;
    for (int i = 0; i < THREADS; ++i)
        HOLDS(players[i].result == 0, "a send was refused: 0x%08x", (unsigned)players[i].result);
    HOLDS(took > wanted * 0.9, "%d blocks of 40 ms of three threads took %.0f ms", THREADS * BLOCKS, took);
    IN_TIME(took < wanted * 1.1 * settings.patience + 40, "%d blocks of 40 ms of three threads took %.0f ms",
            THREADS * BLOCKS, took);
}

POINT(waiting_holds_nobody, "ao.send.waiting-holds-nobody", "MI_AO_SetMute MI_AO_SetVolume MI_AO_SendFrame",
      "while a send waits for room, mute and volume come back at once")
{
    Player player = {.blocks = 4};
    double slowest = 0;
    int32_t results = 0;
    need_audio();
    (void)tone();
    need_full_queue();
    if (pthread_create(&player.thread, NULL, play, &player) != 0) blocked("no thread");
    pause_ms(10);
    for (int i = 0; i < 6; ++i) {
        results |= MI_AO_SetMute(DEV, i % 2);
        if (i == 0 || last_call_ms() > slowest) slowest = last_call_ms();
        results |= MI_AO_SetVolume(DEV, -i);
        if (last_call_ms() > slowest) slowest = last_call_ms();
        pause_ms(10);
    }
    pthread_join(player.thread, NULL);
    HOLDS(results == 0, "mute or volume was refused while a send waited");
    IN_TIME(slowest < patient_ms(20), "mute or volume took %.0f ms while a send waited", slowest);
}

/* ---------------------------------------------------------------------------------------- level --- */

/* Level in dB while the tone plays on; `question` for a person where there is no hook. */
static double level_of_tone(const char *question)
{
    double level = 0;
    if (conformance_hooks.audio_level == NULL) {
        ask_to_do("listen: a tone of 500 Hz plays for half a second after Enter");
        need_blocks(14);
        ask_person("%s", question);
        return NAN;
    }
    need_blocks(14); /* half a second, of which the queue still holds up to its own size */
    if (conformance_hooks.audio_level(DEV, 120, &level) != 0) not_tried("the audio level hook failed");
    note("the level is %.1f dB", level);
    return level;
}

POINT(heard, "ao.send.heard", "MI_AO_SendFrame MI_AO_EnableAdec MI_AO_EnableReSmp",
      "A-law that is sent is heard, as loud as it is")
{
    need_audio();
    const double level = level_of_tone("Was a clear tone heard?");
    IN_TIME(isnan(level) || fabs(level + 9.03) < 1.5, "a tone of -9 dB is heard at %.1f dB", level);
}

POINT(send_copies, "ao.send.copies", "MI_AO_SendFrame",
      "the bytes are copied before the call returns: the caller's may be overwritten at once")
{
    static uint8_t bytes[BLOCK];
    double level = 0;
    if (conformance_hooks.audio_level == NULL) not_tried("needs the audio level hook");
    need_audio();
    for (int i = 0; i < 14; ++i) {
        memcpy(bytes, tone(), BLOCK);
        MI_AO_Frame block = block_of(bytes, BLOCK);
        OK(MI_AO_SendFrame(DEV, CHN, &block, -1));
        memset(bytes, 0xD5, BLOCK); /* silence */
        memset(&block, 0xFF, sizeof block);
    }
    if (conformance_hooks.audio_level(DEV, 120, &level) != 0) not_tried("the audio level hook failed");
    IN_TIME(fabs(level + 9.03) < 1.5, "a tone of -9 dB whose bytes were overwritten is heard at %.1f dB",
            level);
}

POINT(mute, "ao.mute.silences", "MI_AO_SetMute",
      "a muted device is silent, and is heard again when it is let")
{
    need_audio();
    OK(MI_AO_SetMute(DEV, 1));
    double level = level_of_tone("Was it silent?");
    HOLDS(isnan(level) || level < -70, "a muted device is heard at %.1f dB", level);
    OK(MI_AO_SetMute(DEV, 0));
    level = level_of_tone("Was a clear tone heard?");
    IN_TIME(isnan(level) || fabs(level + 9.03) < 1.5, "a device that is no longer muted is heard at %.1f dB",
            level);
}

POINT(volume, "ao.volume.gain", "MI_AO_SetVolume",
      "the volume is a gain in dB, at once for what is still queued")
{
    static const int volumes[] = {-20, 5, 0};
    need_audio();
    for (int i = 0; i < 3; ++i) {
        OK(MI_AO_SetVolume(DEV, volumes[i]));
        const double level = level_of_tone("Was the tone louder than the one before?");
        IN_TIME(isnan(level) || fabs(level + 9.03 - volumes[i]) < 1.5,
                "at %d dB a tone of -9 dB is heard at %.1f dB", volumes[i], level);
    }
}

POINT(volume_refused, "ao.volume.refused-changes-nothing", "MI_AO_SetVolume",
      "a refused volume leaves the old one")
{
    need_audio();
    if (conformance_hooks.audio_level == NULL) not_tried("needs the audio level hook");
    NEED(MI_AO_SetVolume(DEV, -20));
    MI_AO_SetVolume(DEV, 31);
    const double level = level_of_tone("");
    IN_TIME(fabs(level + 29.03) < 1.5, "the volume was -20 dB, and the tone of -9 dB is heard at %.1f dB",
            level);
}

POINT(mute_keeps_volume, "ao.mute.keeps-volume", "MI_AO_SetMute MI_AO_SetVolume",
      "the volume stays over a mute, and may be changed meanwhile")
{
    need_audio();
    if (conformance_hooks.audio_level == NULL) not_tried("needs the audio level hook");
    NEED(MI_AO_SetMute(DEV, 1));
    OK(MI_AO_SetVolume(DEV, -10));
    double level = level_of_tone("");
    HOLDS(level < -70, "the volume of a muted device was set, and it is heard at %.1f dB", level);
    OK(MI_AO_SetMute(DEV, 0));
    level = level_of_tone("");
    IN_TIME(fabs(level + 19.03) < 1.5, "at -10 dB a tone of -9 dB is heard at %.1f dB", level);
}

const Point *const ao_send_points[] = {
    &point_queue_size,
    &point_full_at_once,
    &point_full_times_out,
    &point_room_at_once,
    &point_pace,
    &point_pace_muted,
    &point_pace_after_pause,
    &point_threads,
    &point_waiting_holds_nobody,
    &point_heard,
    &point_send_copies,
    &point_mute,
    &point_volume,
    &point_volume_refused,
    &point_mute_keeps_volume,
    NULL,
};
