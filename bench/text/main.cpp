/*
 * The text conversions beside what a PC offers for the same work. One run, fixed inputs; behind
 * each time stands its ratio to the library's.
 *
 *   bench_text [encodings] [scripts]     no argument = all
 */
#include "contest.h"

#include <cstring>
#include <unistd.h>

#include "build_kind.h"

int main(int count, char **arguments)
{
    require_optimised_build();
    // The library prints what it converts. That is discarded; the report goes to the original output.
    FILE *report = fdopen(dup(STDOUT_FILENO), "w");
    if (!report || !std::freopen("/dev/null", "w", stdout)) return 1;

    const auto wanted = [&](const char *name) {
        if (count < 2) return true;
        for (int i = 1; i < count; ++i)
            if (std::strcmp(arguments[i], name) == 0) return true;
        return false;
    };
    bool same = true;
    if (wanted("encodings")) same = bench_text::compare_encodings(report) && same;
    if (wanted("scripts")) same = bench_text::compare_scripts(report) && same;
    return std::fclose(report) == 0 && same ? 0 : 1;
}
