/*
 * main.c - nvrhal-conformance: does this board hold what the library relies on?
 *
 * Exit status: 0 every point that was tried held, 1 at least one is broken, 2 wrong usage, 3 the suite
 * itself could not run.
 */
#include <fnmatch.h>
#include <getopt.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "hooks.h"
#include "runner.h"

enum ExitStatus { EXIT_HELD = 0, EXIT_BROKEN = 1, EXIT_USAGE = 2, EXIT_COULD_NOT_RUN = 3 };

static const char usage_text[] =
    "usage: nvrhal-conformance [options]\n"
    "  --list            print the points with their contracts, run none\n"
    "  --only GLOB       run the points whose names match, e.g. 'vdec.*'\n"
    "  --verbose         print the calls of every point, not only of broken ones\n"
    "  --json FILE       write the table as JSON too\n"
    "  --ask             put questions to the person in front of the board where no hook answers\n"
    "  --patience F      the board is F times slower than a quiet one (default 1)\n"
    "  --one-process     all points in one process, for a board that cannot be started repeatedly\n"
    "  --soak SECONDS    after the points, all traffic at once for so long\n"
    "Exit status: 0 all held, 1 something is broken, 2 wrong usage, 3 could not run.\n";

static int wrong_usage(const char *what, const char *value)
{
    fprintf(stderr, "nvrhal-conformance: %s%s\n%s", what, value, usage_text);
    return EXIT_USAGE;
}

static bool is_wanted(const Point *point)
{
    return settings.only == NULL || fnmatch(settings.only, point->name, 0) == 0;
}

/* The points that --only leaves, in order. The caller frees the list. */
static const Point **wanted_points(size_t *count)
{
    size_t most = 1;
    for (size_t area = 0; all_areas[area] != NULL; ++area)
        for (size_t i = 0; all_areas[area][i] != NULL; ++i)
            ++most;
    const Point **points = calloc(most, sizeof *points);
    if (points == NULL) return NULL;
    *count = 0;
    for (size_t area = 0; all_areas[area] != NULL; ++area)
        for (size_t i = 0; all_areas[area][i] != NULL; ++i)
            if (is_wanted(all_areas[area][i])) points[(*count)++] = all_areas[area][i];
    if (settings.soak_s > 0) points[(*count)++] = &soak_point;
    return points;
}

/* A point that could not be set up proves nothing, unless no other point names what is broken. */
static bool judge(Outcome *outcomes, size_t count)
{
    bool any = false;
    for (size_t i = 0; i < count; ++i)
        any |= outcomes[i].verdict == VERDICT_BROKEN;
    for (size_t i = 0; i < count && !any; ++i)
        if (outcomes[i].verdict == VERDICT_BLOCKED) outcomes[i].verdict = VERDICT_BROKEN;
    for (size_t i = 0; i < count; ++i)
        any |= outcomes[i].verdict == VERDICT_BROKEN;
    return any;
}

/* Whether all that was printed has reached standard output. */
static bool table_was_written(void)
{
    if (fflush(stdout) == 0 && !ferror(stdout)) return true;
    fprintf(stderr, "nvrhal-conformance: the table could not be written\n");
    return false;
}

static int print_list(const Point *const *points, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        printf("%-44s %s\n", points[i]->name, points[i]->text);
    return table_was_written() ? EXIT_HELD : EXIT_COULD_NOT_RUN;
}

static int run(const Point *const *points, size_t count)
{
    /* Opened at once: a soak of a night must not end at a path that is wrong. */
    FILE *json = settings.json != NULL ? fopen(settings.json, "w") : NULL;
    if (settings.json != NULL && json == NULL) {
        perror(settings.json);
        return EXIT_COULD_NOT_RUN;
    }
    Outcome *outcomes = calloc(count, sizeof *outcomes);
    the_record = record_create();
    if (outcomes == NULL || the_record == NULL) {
        fprintf(stderr, "nvrhal-conformance: no memory\n");
        return EXIT_COULD_NOT_RUN;
    }
    const int64_t began_us = now_us();
    for (size_t i = 0; i < count; ++i) {
        run_point(points[i], &outcomes[i]);
        report_row(&outcomes[i]);
    }
    const double seconds = (double)(now_us() - began_us) / 1e6;
    const bool any_broken = judge(outcomes, count);
    report_sum(outcomes, count, seconds);
    const bool written = json == NULL || report_json(json, outcomes, count, seconds) == 0;
    if (!written) perror(settings.json);
    for (size_t i = 0; i < count; ++i) {
        free(outcomes[i].reason);
        free(outcomes[i].record);
    }
    free(outcomes);
    if (!written || !table_was_written()) return EXIT_COULD_NOT_RUN;
    return any_broken ? EXIT_BROKEN : EXIT_HELD;
}

int main(int argc, char **argv)
{
    static const struct option options[] = {
        {"list", no_argument, NULL, 'l'},        {"only", required_argument, NULL, 'o'},
        {"verbose", no_argument, NULL, 'v'},     {"json", required_argument, NULL, 'j'},
        {"ask", no_argument, NULL, 'a'},         {"patience", required_argument, NULL, 'p'},
        {"one-process", no_argument, NULL, '1'}, {"soak", required_argument, NULL, 's'},
        {"help", no_argument, NULL, 'h'},        {NULL, 0, NULL, 0},
    };
    bool list = false;
    char *end = NULL;
    opterr = 0;
    for (int option; (option = getopt_long(argc, argv, "", options, NULL)) != -1;) {
        switch (option) {
        case 'l': list = true; break;
        case 'o': settings.only = optarg; break;
        case 'v': settings.verbose = true; break;
        case 'j': settings.json = optarg; break;
        case 'a': settings.ask = true; break;
        case '1': settings.one_process = true; break;
        case 'p':
            settings.patience = strtod(optarg, &end);
            if (end == optarg || *end != '\0' || !(settings.patience >= 1 && settings.patience <= 1000))
                return wrong_usage("--patience is a factor from 1 to 1000, not ", optarg);
            break;
        case 's': {
            const long seconds = strtol(optarg, &end, 10);
            if (end == optarg || *end != '\0' || seconds < 1 || seconds > 1000000)
                return wrong_usage("--soak is a number of seconds, not ", optarg);
            settings.soak_s = (unsigned)seconds;
            break;
        }
        case 'h': fputs(usage_text, stdout); return EXIT_HELD;
        default: return wrong_usage("unknown option or missing value: ", argv[optind - 1]);
        }
    }
    if (optind < argc) return wrong_usage("unexpected: ", argv[optind]);
    size_t count = 0;
    const Point **points = wanted_points(&count);
    if (points == NULL) return EXIT_COULD_NOT_RUN;
    if (count == 0) {
        free(points);
        return wrong_usage("no point matches ", settings.only);
    }
    const int status = list ? print_list(points, count) : run(points, count);
    free(points);
    return status;
}
