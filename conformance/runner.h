/* runner.h - the run of a point, and what became of it. */
#ifndef CONFORMANCE_RUNNER_H
#define CONFORMANCE_RUNNER_H

#include "record.h"
#include "suite.h"

/* What became of a point; `record` is a copy. */
typedef struct Outcome {
    const Point *point;
    Verdict verdict;
    char *reason;
    Record *record; /* the calls; null when they are not kept */
    double seconds;
} Outcome;

/* Run a point to its end: in a process of its own, or in this one. */
void run_point(const Point *point, Outcome *outcome);

/* The soak: all kinds of traffic at once for a while. Its outcome is that of a point. */
extern const Point soak_point;

/* report.c: the table on standard output, and the file. 0, or -1 when it cannot be written. */
void report_row(const Outcome *outcome);
void report_sum(const Outcome *outcomes, size_t count, double seconds);
int report_json(const char *path, const Outcome *outcomes, size_t count, double seconds);

#endif
