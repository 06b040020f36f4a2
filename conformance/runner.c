/*
 * runner.c - runs a point. In a process of its own a point that crashes or hangs takes nothing with it;
 * in a common process a hang ends the run.
 */
#define _GNU_SOURCE /* clocks, barriers and mappings, also with -std=c11 */
#include "runner.h"

#include <errno.h>
#include <poll.h>
#include <setjmp.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "hooks.h"
#include "seam.h"

enum { POINT_LIMIT_MS = 12000, RUNS = 3 };

Settings settings = {.patience = 1};

static jmp_buf point_end;
static bool hooks_begun;

int64_t now_us(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (int64_t)now.tv_sec * 1000000 + now.tv_nsec / 1000;
}

void pause_ms(unsigned milliseconds)
{
    struct timespec left = {milliseconds / 1000, (long)(milliseconds % 1000) * 1000000};
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

unsigned patient_ms(unsigned milliseconds)
{
    return (unsigned)(milliseconds * settings.patience);
}

NO_RETURN static void end_point(Verdict verdict, const char *format, va_list values)
{
    vsnprintf(the_record->reason, sizeof the_record->reason, format, values);
    the_record->verdict = verdict;
    longjmp(point_end, 1);
}

void broken(const char *format, ...)
{
    va_list values;
    va_start(values, format);
    end_point(VERDICT_BROKEN, format, values);
}

void too_late(const char *format, ...)
{
    va_list values;
    va_start(values, format);
    end_point(VERDICT_TOO_LATE, format, values);
}

void not_tried(const char *format, ...)
{
    va_list values;
    va_start(values, format);
    end_point(VERDICT_NOT_TRIED, format, values);
}

void blocked(const char *format, ...)
{
    va_list values;
    va_start(values, format);
    end_point(VERDICT_BLOCKED, format, values);
}

void expect_success(int32_t result)
{
    if (result != 0) broken("%s, expected success", last_call_text());
}

void need_success(int32_t result)
{
    if (result != 0) blocked("could not be set up: %s", last_call_text());
}

void expect_refusal(int32_t result, uint32_t module, uint32_t reason)
{
    const int32_t wanted = MI_ERROR(module, reason);
    char text[48];
    if (result != wanted) broken("%s, expected %s", last_call_text(), result_text(wanted, text, sizeof text));
}

void expect_some_refusal(int32_t result, uint32_t module)
{
    const uint32_t code = (uint32_t)result;
    if (result >= 0) broken("%s, expected a refusal", last_call_text());
    if ((code & 0xFFFFFF00u) != (0xA0000000u | module << 16) || (code & 0xFFu) == 0)
        broken("%s, which is no result code of this module", last_call_text());
}

bool took_within(double least_ms, double most_ms)
{
    return last_call_ms() >= least_ms - 2 && last_call_ms() <= least_ms + most_ms * settings.patience;
}

void expect_took(double least_ms, double most_ms)
{
    const double took = last_call_ms();
    if (took < least_ms - 2)
        broken("%s came back after %.1f ms, before its %.0f ms were over", last_call_text(), took, least_ms);
    if (took > least_ms + most_ms * settings.patience)
        too_late("%s took %.1f ms, expected %.0f to %.0f", last_call_text(), took, least_ms,
                 least_ms + most_ms * settings.patience);
}

/* ------------------------------------------------------------------------- the person in front --- */

static bool read_line(char *line, int size)
{
    fflush(stdout);
    if (fgets(line, size, stdin) != NULL) return true;
    not_tried("nobody answered");
}

void ask_person(const char *format, ...)
{
    va_list values;
    char question[REASON_BYTES], answer[64];
    va_start(values, format);
    vsnprintf(question, sizeof question, format, values);
    va_end(values);
    if (!settings.ask) not_tried("needs a hook, or a person (--ask): %s", question);
    for (;;) {
        printf("\n  ? %s [y/n, Enter = do not try] ", question);
        read_line(answer, sizeof answer);
        if (answer[0] == 'y' || answer[0] == 'Y') return;
        if (answer[0] == 'n' || answer[0] == 'N') broken("the person says no: %s", question);
        if (answer[0] == '\n') not_tried("the person could not tell: %s", question);
    }
}

void ask_to_do(const char *format, ...)
{
    va_list values;
    char request[REASON_BYTES], answer[64];
    va_start(values, format);
    vsnprintf(request, sizeof request, format, values);
    va_end(values);
    if (!settings.ask) not_tried("needs a hook, or a person (--ask): %s", request);
    printf("\n  > %s, then press Enter (s = do not try) ", request);
    read_line(answer, sizeof answer);
    if (answer[0] == 's' || answer[0] == 'S') not_tried("not done: %s", request);
}

/* ------------------------------------------------------------------------------ running a point --- */

static void run_here(const Point *point)
{
    if ((point->flags & NO_CALLS) == 0 && !hooks_begun) {
        if (conformance_hooks.begin != NULL) conformance_hooks.begin();
        hooks_begun = true;
    }
    if (setjmp(point_end) == 0) {
        point->run();
        if (the_record->verdict == VERDICT_NONE) the_record->verdict = VERDICT_HELD;
    }
}

static const char *call_that_hangs(const Record *record)
{
    for (int thread = 0; thread < RECORD_THREADS; ++thread)
        if (record->in_call[thread] != NULL) return record->in_call[thread];
    return NULL;
}

/* The exit of a child is seen as the end of a pipe that it holds open. */
static void run_apart(const Point *point, unsigned limit_ms)
{
    int lifeline[2];
    if (pipe(lifeline) != 0) {
        the_record->verdict = VERDICT_BLOCKED;
        snprintf(the_record->reason, sizeof the_record->reason, "no pipe: %s", strerror(errno));
        return;
    }
    fflush(NULL);
    const pid_t child = fork();
    if (child == 0) {
        close(lifeline[0]);
        run_here(point);
        const Verdict verdict = the_record->verdict;
        seam_undo_media();
        seam_undo_board();
        the_record->verdict = verdict;
        fflush(NULL);
        _exit(0);
    }
    close(lifeline[1]);
    if (child < 0) {
        the_record->verdict = VERDICT_BLOCKED;
        snprintf(the_record->reason, sizeof the_record->reason, "no process: %s", strerror(errno));
        close(lifeline[0]);
        return;
    }
    struct pollfd end = {lifeline[0], POLLIN, 0};
    const bool ended = poll(&end, 1, settings.ask ? -1 : (int)limit_ms) != 0;
    close(lifeline[0]);
    if (!ended) kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    const char *in_call = call_that_hangs(the_record);
    if (!ended && the_record->verdict == VERDICT_NONE) {
        the_record->verdict = VERDICT_BROKEN;
        snprintf(the_record->reason, sizeof the_record->reason, "%s%s did not come back within %.0f s",
                 in_call != NULL ? in_call : "the point", in_call != NULL ? "()" : "", limit_ms / 1000.0);
    } else if (!ended && the_record->verdict == VERDICT_HELD) {
        the_record->verdict = VERDICT_BROKEN;
        snprintf(the_record->reason, sizeof the_record->reason,
                 "what the point set up could not be undone: %s%s did not come back",
                 in_call != NULL ? in_call : "a call", in_call != NULL ? "()" : "");
    } else if (ended && (!WIFEXITED(status) || WEXITSTATUS(status) != 0) &&
               (the_record->verdict == VERDICT_NONE || the_record->verdict == VERDICT_HELD)) {
        the_record->verdict = VERDICT_BROKEN;
        if (WIFSIGNALED(status))
            snprintf(the_record->reason, sizeof the_record->reason,
                     "the process died of signal %d (%s) in %s", WTERMSIG(status),
                     strsignal(WTERMSIG(status)), in_call != NULL ? in_call : "the point");
        else
            snprintf(the_record->reason, sizeof the_record->reason, "the process ended with status %d in %s",
                     WEXITSTATUS(status), in_call != NULL ? in_call : "the point");
    }
}

/* In a common process nobody can take a hanging call back: say which, and end. */
static void give_up(int signal_number)
{
    (void)signal_number;
    static const char text[] = "\nthe point does not come back; the run ends here. In the call: ";
    const char *in_call = call_that_hangs(the_record);
    if (write(STDERR_FILENO, text, sizeof text - 1) < 0) _exit(1);
    if (in_call != NULL && write(STDERR_FILENO, in_call, strlen(in_call)) < 0) _exit(1);
    if (write(STDERR_FILENO, "\n", 1) < 0) _exit(1);
    _exit(1);
}

static void run_together(const Point *point, unsigned limit_ms)
{
    if ((point->flags & FRESH) != 0) {
        the_record->verdict = VERDICT_NOT_TRIED;
        snprintf(the_record->reason, sizeof the_record->reason, "needs a process of its own");
        return;
    }
    signal(SIGALRM, give_up);
    if (!settings.ask) alarm(limit_ms / 1000 + 1);
    run_here(point);
    const Verdict verdict = the_record->verdict;
    seam_undo_media();
    seam_undo_board();
    alarm(0);
    the_record->verdict = verdict;
}

void run_point(const Point *point, Outcome *outcome)
{
    const unsigned limit_ms =
        patient_ms(POINT_LIMIT_MS) + (point == &soak_point ? settings.soak_s * 1000 : 0);
    const int64_t began_us = now_us();
    for (int run = 1;; ++run) {
        record_clear(the_record);
        if ((point->flags & NO_CALLS) != 0)
            run_here(point);
        else if (settings.one_process)
            run_together(point, limit_ms);
        else
            run_apart(point, limit_ms);
        if (the_record->verdict != VERDICT_TOO_LATE || run == RUNS) break;
    }
    if (the_record->verdict == VERDICT_TOO_LATE) the_record->verdict = VERDICT_BROKEN;
    outcome->point = point;
    outcome->verdict = the_record->verdict;
    outcome->reason = strdup(the_record->reason);
    outcome->seconds = (double)(now_us() - began_us) / 1e6;
    outcome->record = malloc(sizeof *outcome->record);
    if (outcome->record != NULL) memcpy(outcome->record, the_record, sizeof *outcome->record);
}
