/*
 * bench_load LIBRARY... - what loading a shared object costs: time, and pages that had to be provided.
 *
 * Every load happens in a process of its own, so that the loader does all of its work; the libraries take
 * turns, so that a machine that grows busy is busy for all of them. What they need beyond the C library is
 * loaded with them: give libraries that need the same. Functions are bound when they are called.
 */
#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

enum { ROUNDS = 1000, MOST_LIBRARIES = 8 };

struct load {
    int64_t ns;
    int64_t pages;
};

static int64_t now_ns(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (int64_t)now.tv_sec * 1000000000 + now.tv_nsec;
}

static int64_t pages_so_far(void)
{
    struct rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt;
}

static void load_and_tell(const char *library, int to)
{
    struct load load = {now_ns(), pages_so_far()};
    if (!dlopen(library, RTLD_LAZY)) {
        fprintf(stderr, "bench_load: %s\n", dlerror());
        _exit(1);
    }
    load.ns = now_ns() - load.ns;
    load.pages = pages_so_far() - load.pages;
    _exit(write(to, &load, sizeof load) == sizeof load ? 0 : 1);
}

static int load_once(const char *library, struct load *load)
{
    int ends[2], status;
    if (pipe(ends) != 0) return -1;
    const pid_t child = fork();
    if (child < 0) return -1;
    if (child == 0) load_and_tell(library, ends[1]);
    close(ends[1]);
    const ssize_t got = read(ends[0], load, sizeof *load);
    close(ends[0]);
    if (waitpid(child, &status, 0) != child || status != 0) return -1;
    return got == sizeof *load ? 0 : -1;
}

static int by_time(const void *left, const void *right)
{
    const int64_t a = ((const struct load *)left)->ns, b = ((const struct load *)right)->ns;
    return (a > b) - (a < b);
}

int main(int argc, char **argv)
{
    static struct load loads[MOST_LIBRARIES][ROUNDS];
    if (argc < 2 || argc > MOST_LIBRARIES + 1) {
        fputs("usage: bench_load LIBRARY...\n", stderr);
        return 2;
    }
    for (int round = 0; round < ROUNDS; ++round)
        for (int library = 1; library < argc; ++library)
            if (load_once(argv[library], &loads[library - 1][round]) != 0) return 1;
    printf("median of %d loads, and the tenth part that went quickest\n", ROUNDS);
    for (int library = 1; library < argc; ++library) {
        struct load *sorted = loads[library - 1];
        qsort(sorted, ROUNDS, sizeof *sorted, by_time);
        printf("%-40s %7.1f us %7.1f us %4lld pages\n", argv[library], (double)sorted[ROUNDS / 2].ns / 1000,
               (double)sorted[ROUNDS / 10].ns / 1000, (long long)sorted[ROUNDS / 2].pages);
    }
    return 0;
}
