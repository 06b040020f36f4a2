/*
 * suite.h - what a contract point is made of.
 *
 * A point is a function with a stable name, a sentence that states the contract, and the seam calls that
 * it judges. It ends by returning (held), or by one of the functions below that never return. The main
 * thread of a point is the only one that may call those.
 *
 * Every point starts from the state after power-on as far as that can be had: the runner gives it a
 * process of its own, or (--one-process) undoes what the point before has set up.
 */
#ifndef CONFORMANCE_SUITE_H
#define CONFORMANCE_SUITE_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "mi_common.h"

enum PointFlags {
    FRESH = 1,    /* holds in a process that has not called the seams before, so not with --one-process */
    NO_CALLS = 2, /* makes no calls itself, and needs no process                                        */
};

typedef struct Point {
    const char *name;  /* area.call.contract                  */
    const char *calls; /* seam calls it judges, with blanks   */
    const char *text;  /* the contract as a sentence          */
    void (*run)(void);
    unsigned flags;
} Point;

/* Define a point; it is then listed in the table at the end of its file. */
#define POINT_WITH(flags, id, name, calls, text)                                                             \
    static void id(void);                                                                                    \
    static const Point point_##id = {name, calls, text, id, flags};                                          \
    static void id(void)
#define POINT(id, name, calls, text) POINT_WITH(0, id, name, calls, text)

/* ------------------------------------------------------------------------- how a point ends --- */

#if defined(__GNUC__)
#define NO_RETURN                 __attribute__((noreturn))
#define LIKE_PRINTF(text, values) __attribute__((format(printf, text, values)))
#else
#define NO_RETURN
#define LIKE_PRINTF(text, values)
#endif

/* The contract is broken. */
NO_RETURN LIKE_PRINTF(1, 2) void broken(const char *format, ...);

/*
 * Something came too late. That a machine under load does, too: the point is run again, and is broken when
 * it is too late every time.
 */
NO_RETURN LIKE_PRINTF(1, 2) void too_late(const char *format, ...);

/* Nothing can be said, because a hook or a person is missing. */
NO_RETURN LIKE_PRINTF(1, 2) void not_tried(const char *format, ...);

/* A call that only prepares the point failed. Counts as broken when no other point says why. */
NO_RETURN LIKE_PRINTF(1, 2) void blocked(const char *format, ...);

/* Broken unless the condition holds. */
#define HOLDS(condition, ...)                                                                                \
    do {                                                                                                     \
        if (!(condition)) broken(__VA_ARGS__);                                                               \
    } while (0)

/* Too late unless the condition holds. */
#define IN_TIME(condition, ...)                                                                              \
    do {                                                                                                     \
        if (!(condition)) too_late(__VA_ARGS__);                                                             \
    } while (0)

/* Broken unless the call succeeds. */
#define OK(call) expect_success(call)
void expect_success(int32_t result);

/* Broken unless the call gives MI_ERROR(module, reason). */
#define REFUSED(call, module, reason) expect_refusal(call, module, reason)
void expect_refusal(int32_t result, uint32_t module, uint32_t reason);

/* Broken unless the call gives a code of the module with any reason. */
#define REFUSED_SOMEHOW(call, module) expect_some_refusal(call, module)
void expect_some_refusal(int32_t result, uint32_t module);

/* The point cannot go on unless the call succeeds. */
#define NEED(call) need_success(call)
void need_success(int32_t result);

/* ---------------------------------------------------------------------------------- clocks --- */

/* Microseconds of a clock that only goes forward; the board's own calls play no part in it. */
int64_t now_us(void);
void pause_ms(unsigned milliseconds);

/* How long this thread's latest seam call took. */
double last_call_ms(void);

/* Time that a slow board is given: the milliseconds times --patience. */
unsigned patient_ms(unsigned milliseconds);

/*
 * Broken unless the latest call took at least `least_ms` (less what a timer may be early) and at most
 * `most_ms` more. A machine under load makes calls late: repeat the call before believing that.
 */
void expect_took(double least_ms, double most_ms);
bool took_within(double least_ms, double most_ms);

/* ------------------------------------------------------------------------ settings of the run --- */

typedef struct Settings {
    bool ask;         /* questions may be put to the person in front of the board */
    bool one_process; /* all points in one process                                */
    bool verbose;
    double patience;
    unsigned soak_s;
    const char *only; /* glob of point names, null = all                          */
    const char *json; /* file                                                     */
} Settings;

extern Settings settings;

/*
 * Put a question to the person: the point holds if the answer is yes. Without --ask the point is not
 * tried.
 */
LIKE_PRINTF(1, 2) void ask_person(const char *format, ...);

/* Ask the person to do something, and wait for Enter. Without --ask the point is not tried. */
LIKE_PRINTF(1, 2) void ask_to_do(const char *format, ...);

/* The points, area by area; each table ends with a null. */
extern const Point *const *const all_areas[];

#endif
