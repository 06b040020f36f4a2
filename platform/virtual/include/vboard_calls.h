/*
 * vboard_calls.h - the control face of the platform calls: which there are, which are made to fail, and
 * every one of them as it ends.
 *
 * Beside vboard.h, which sets faults and writes plain traces, and under the same rules: 0 or a count on
 * success, -1 when refused with one line on standard error; any thread. What is followed here is
 * followed until it is ended: vboard_reset leaves followers in place.
 */
#ifndef VBOARD_CALLS_H
#define VBOARD_CALLS_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** A platform call that has ended. The texts are those of the trace, and valid during the call. */
typedef struct vboard_call {
    int64_t time_us;       /* board clock at its end                                             */
    int64_t duration_us;   /* real time that it took                                             */
    uint32_t thread;       /* which thread made it: 1 = the first that made one while such calls
                              were told or traced with their times                               */
    uint32_t failed;       /* 1 = its result is a failure                                        */
    const char *name;      /* "MI_VDEC_StartChn", "board_open"                                   */
    const char *arguments; /* separated by spaces, records in braces; "" = none                  */
    const char *result;    /* a number, "address" or "null", and a reason where it has one       */
} vboard_call;

/**
 * Called at the end of every platform call, on the thread that made it and is held up meanwhile; one
 * at a time. It must not make platform calls, nor end its own following.
 */
typedef void (*vboard_call_follower)(const vboard_call *call, void *user);

/**
 * Follow the platform calls. One follower; a null one ends it, and returns when no call of it is
 * running any more. While nobody follows it costs nothing.
 *
 * @return 0, or -1 (followed already)
 */
int vboard_calls_follow(vboard_call_follower follower, void *user);

/**
 * Called with the line of every refusal, printed or not ("MI_VDEC_StartChn: decoder channel 99 (no such
 * channel)"), on the thread that was refused. The board may hold locks of its own meanwhile: it must not
 * call the board.
 */
typedef void (*vboard_refusal_follower)(const char *line, void *user);

/** Follow the refusals; as vboard_calls_follow. 0, or -1 (followed already). */
int vboard_refusals_follow(vboard_refusal_follower follower, void *user);

/**
 * As vboard_trace_start, with thread and duration behind every call: " ; thread 2, 31 us", as
 * vboard_call has them. vboard_trace_stop ends it.
 *
 * @return 0, or -1 (the file cannot be written)
 */
int vboard_trace_start_timed(const char *path);

/**
 * The names of all calls that vboard_fault_set takes, in no order.
 *
 * @param names  receives up to `room` names, which stay valid; null with room 0
 * @param room   how many there is room for
 * @return how many there are
 */
size_t vboard_call_names(const char **names, size_t room);

/** A fault in force, as vboard_fault_set took it. */
typedef struct vboard_fault {
    const char *call;    /* stays valid                                    */
    uint32_t nth, count; /* as set                                         */
    int32_t code;        /* likewise                                       */
    uint64_t seen;       /* calls of that name since it was set            */
    uint64_t fired;      /* of these, made to fail                         */
} vboard_fault;

/**
 * The faults in force, those that have made all their calls fail included.
 *
 * @param faults  receives up to `room` records; null with room 0
 * @param room    how many there is room for
 * @return how many there are
 */
size_t vboard_faults(vboard_fault *faults, size_t room);

#ifdef __cplusplus
}
#endif

#endif
