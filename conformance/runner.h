/* runner.h - the run of a point, and what became of it. */
#ifndef CONFORMANCE_RUNNER_H
#define CONFORMANCE_RUNNER_H

#include <stdio.h>

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

/* report.c: the table on standard output. */
void report_row(const Outcome *outcome);
void report_sum(const Outcome *outcomes, size_t count, double seconds);
/* The same as JSON in an open file, which is closed. 0, or -1: not everything could be written. */
int report_json(FILE *file, const Outcome *outcomes, size_t count, double seconds);

#endif
