/*
 * record.h - the record of seam calls that a point made, kept where the runner still finds it after the
 * point's process has died.
 */
#ifndef CONFORMANCE_RECORD_H
#define CONFORMANCE_RECORD_H

#include <stdbool.h>
#include <stdint.h>

#include "suite.h"

enum { RECORD_LINES = 160, LINE_BYTES = 240, RECORD_THREADS = 24, REASON_BYTES = 400, RECORD_NAMES = 128 };

typedef enum Verdict {
    VERDICT_NONE = 0, /* the point did not come to an end */
    VERDICT_HELD,
    VERDICT_BROKEN,
    VERDICT_TOO_LATE, /* broken, unless a further run is in time */
    VERDICT_NOT_TRIED,
    VERDICT_BLOCKED,
} Verdict;

/* A line of the record, or several of the same text in a row. */
typedef struct RecordLine {
    char text[LINE_BYTES];
    uint32_t repeats;
} RecordLine;

typedef struct Record {
    Verdict verdict;
    char reason[REASON_BYTES];
    uint64_t calls; /* made so far                                   */
    uint64_t lines; /* written so far; the newest RECORD_LINES remain */
    RecordLine line[RECORD_LINES];
    const char *in_call[RECORD_THREADS]; /* seam call that the thread is in, or null       */
} Record;

/* Shared between the runner and the processes of the points. Null results: no memory. */
Record *record_create(void);
void record_clear(Record *record);
extern Record *the_record;

/*
 * How quick the quickest call of a name was that succeeded, over all points of the run. Negative: there was
 * none.
 */
double quickest_call_ms(const char *name);

/* Around every seam call. */
typedef struct CallMark {
    const char *name;
    int64_t began_us;
} CallMark;

CallMark call_begins(const char *name);
LIKE_PRINTF(4, 5)
void call_ends(const CallMark *mark, bool succeeded, const char *result, const char *format, ...);

/* A line that is no call: what was seen, or which part of the point begins. */
LIKE_PRINTF(1, 2) void note(const char *format, ...);

/* Whether this thread's calls that succeed get a line: not in a long series of the same. */
void record_successes(bool record);

/* Text of the latest call of this thread, for the sentence that says what is wrong with it. */
const char *last_call_text(void);

/* "0", "BAD_VALUE of VDEC (0xa0080003)" ... in a buffer of the caller. */
const char *result_text(int32_t result, char *buffer, size_t size);

#endif
