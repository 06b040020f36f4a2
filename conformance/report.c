/* report.c - the table of points on standard output, and the same as JSON. */
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include "hooks.h"
#include "runner.h"

enum { CALLS_SHOWN = 24 };

static const char *verdict_name(Verdict verdict)
{
    switch (verdict) {
    case VERDICT_HELD: return "held";
    case VERDICT_BROKEN:
    case VERDICT_TOO_LATE: return "broken";
    case VERDICT_NOT_TRIED:
    case VERDICT_BLOCKED:
    case VERDICT_NONE: break;
    }
    return "not tried";
}

/* Number of the first line to show: the newest ones, of a broken point as many as fill half a screen. */
static uint64_t first_line(const Record *record, uint64_t most)
{
    const uint64_t kept = record->lines < RECORD_LINES ? record->lines : RECORD_LINES;
    return record->lines - (kept < most ? kept : most);
}

static void print_calls(const Record *record, uint64_t most)
{
    const uint64_t first = first_line(record, most);
    if (first > 0) printf("        ... %" PRIu64 " lines before\n", first);
    for (uint64_t i = first; i < record->lines; ++i) {
        const RecordLine *line = &record->line[i % RECORD_LINES];
        printf("        %s", line->text);
        if (line->repeats > 1) printf("   x %" PRIu32, line->repeats);
        printf("\n");
    }
}

void report_row(const Outcome *outcome)
{
    const Point *point = outcome->point;
    printf("%-9s  %-44s %s\n", verdict_name(outcome->verdict), point->name, point->text);
    if (outcome->reason != NULL && outcome->reason[0] != '\0' && outcome->verdict != VERDICT_HELD)
        printf("           %s: %s\n", outcome->verdict == VERDICT_BROKEN ? "because" : "why",
               outcome->reason);
    if (outcome->record == NULL) return;
    if (settings.verbose)
        print_calls(outcome->record, RECORD_LINES);
    else if (outcome->verdict == VERDICT_BROKEN)
        print_calls(outcome->record, CALLS_SHOWN);
    fflush(stdout);
}

static size_t count_of(const Outcome *outcomes, size_t count, const char *verdict)
{
    size_t found = 0;
    for (size_t i = 0; i < count; ++i)
        if (strcmp(verdict_name(outcomes[i].verdict), verdict) == 0) ++found;
    return found;
}

void report_sum(const Outcome *outcomes, size_t count, double seconds)
{
    printf("\n%s: %zu points: %zu held, %zu broken, %zu not tried; %.1f s\n", conformance_hooks.name, count,
           count_of(outcomes, count, "held"), count_of(outcomes, count, "broken"),
           count_of(outcomes, count, "not tried"), seconds);
    for (size_t i = 0; i < count; ++i)
        if (outcomes[i].verdict == VERDICT_BROKEN) printf("  broken: %s\n", outcomes[i].point->name);
    if (count_of(outcomes, count, "broken") > 0 && !conformance_hooks.decodes_nothing)
        printf("Pictures were taken for decoded ones: a board that only simulates a decoder says so in its "
               "hooks\n"
               "(decodes_nothing).\n");
}

/* --------------------------------------------------------------------------------------- JSON --- */

static void write_string(FILE *file, const char *text)
{
    fputc('"', file);
    for (; *text != '\0'; ++text) {
        const unsigned char byte = (unsigned char)*text;
        if (byte == '"' || byte == '\\')
            fprintf(file, "\\%c", byte);
        else if (byte < 0x20)
            fprintf(file, "\\u%04x", byte);
        else
            fputc(byte, file);
    }
    fputc('"', file);
}

/* The blank-separated names as a list. */
static void write_names(FILE *file, const char *names)
{
    const char *comma = "";
    fputc('[', file);
    while (*names != '\0') {
        const size_t length = strcspn(names, " ");
        fprintf(file, "%s\"%.*s\"", comma, (int)length, names);
        comma = ", ";
        names += length + strspn(names + length, " ");
    }
    fputc(']', file);
}

static void write_point(FILE *file, const Outcome *outcome)
{
    fprintf(file, "    {\"name\": \"%s\", \"verdict\": \"%s\", \"calls\": ", outcome->point->name,
            verdict_name(outcome->verdict));
    write_names(file, outcome->point->calls);
    fprintf(file, ", \"text\": ");
    write_string(file, outcome->point->text);
    fprintf(file, ", \"reason\": ");
    write_string(file, outcome->verdict != VERDICT_HELD && outcome->reason != NULL ? outcome->reason : "");
    fprintf(file, ", \"seconds\": %.3f, \"record\": [", outcome->seconds);
    const Record *record = outcome->record;
    if (record != NULL && (settings.verbose || outcome->verdict == VERDICT_BROKEN)) {
        const uint64_t first = first_line(record, RECORD_LINES);
        for (uint64_t i = first; i < record->lines; ++i) {
            if (i > first) fprintf(file, ", ");
            write_string(file, record->line[i % RECORD_LINES].text);
        }
    }
    fprintf(file, "]}");
}

int report_json(FILE *file, const Outcome *outcomes, size_t count, double seconds)
{
    fprintf(file, "{\n  \"board\": ");
    write_string(file, conformance_hooks.name);
    fprintf(file, ",\n  \"seconds\": %.3f,\n", seconds);
    fprintf(file, "  \"held\": %zu,\n  \"broken\": %zu,\n  \"not_tried\": %zu,\n  \"points\": [\n",
            count_of(outcomes, count, "held"), count_of(outcomes, count, "broken"),
            count_of(outcomes, count, "not tried"));
    for (size_t i = 0; i < count; ++i) {
        write_point(file, &outcomes[i]);
        fprintf(file, i + 1 < count ? ",\n" : "\n");
    }
    fprintf(file, "  ]\n}\n");
    const int failed = ferror(file);
    return fclose(file) != 0 || failed ? -1 : 0;
}
