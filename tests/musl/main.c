/*
 * main.c - the library's main operations over the recording platform in C, against golden files.
 *
 *   operations GOLDEN-DIRECTORY    each operation in a process of its own; exit status 0 = all are the same
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "nvrhal.h"
#include "operations.h"
#include "recording.h"

static char *log_text;
static size_t log_size;

static void keep(const char *text, size_t length, void *user)
{
    (void)user;
    char *longer = realloc(log_text, log_size + length + 1);
    if (!longer) abort();
    log_text = longer;
    memcpy(log_text + log_size, text, length + 1); /* the text ends in a zero byte */
    log_size += length;
}

static void note(const char *what, const char *value)
{
    record_call(what, "%s", value);
}

static void forget(void)
{
    recording_forget();
    log_size = 0;
    keep("", 0, NULL);
}

static const struct recording_below below = {forget, recording_node_is_absent, recording_fail, note};

/* The file's text without its last line end, or null. */
static char *read_golden(const char *directory, const char *name, const char *suffix)
{
    char path[512];
    snprintf(path, sizeof path, "%s/%s%s.txt", directory, name, suffix);
    FILE *file = fopen(path, "rb");
    if (!file) return NULL;
    enum { MOST_BYTES = 1 << 20 };
    char *text = malloc(MOST_BYTES);
    if (!text) abort();
    size_t size = fread(text, 1, MOST_BYTES - 1, file);
    fclose(file);
    if (size > 0 && text[size - 1] == '\n') --size;
    text[size] = '\0';
    return text;
}

static int line_length(const char *text)
{
    return (int)strcspn(text, "\n");
}

static int is_golden(const char *directory, const char *name, const char *suffix, const char *seen)
{
    char *golden = read_golden(directory, name, suffix);
    if (!golden) return fprintf(stderr, "%s%s: no golden file\n", name, suffix), 0;
    const int same = strcmp(golden, seen) == 0;
    size_t at = 0, line = 0;
    for (size_t i = 0; !same && golden[i] && golden[i] == seen[i]; ++i)
        if (golden[i] == '\n') at = i + 1, ++line;
    if (!same)
        fprintf(stderr, "%s%s, line %zu\n  golden: %.*s\n  seen:   %.*s\n", name, suffix, line + 1,
                line_length(golden + at), golden + at, line_length(seen + at), seen + at);
    free(golden);
    return same;
}

static int run(const struct operation *operation, const char *directory)
{
    nvrhal_set_log(keep, NULL);
    keep("", 0, NULL);
    operation->run(&below);
    nvrhal_set_log(NULL, NULL);
    char *calls = recorded_calls(operation->prefixes);
    int same = is_golden(directory, operation->name, "", calls);
    if (operation->has_log) {
        hide_numbers(log_text);
        if (log_size > 0 && log_text[strlen(log_text) - 1] == '\n') log_text[strlen(log_text) - 1] = '\0';
        same &= is_golden(directory, operation->name, "_log", log_text);
    }
    free(calls);
    return same;
}

int main(int argc, char **argv)
{
    size_t different = 0;
    if (argc != 2) return fputs("usage: operations GOLDEN-DIRECTORY\n", stderr), 2;
    for (size_t i = 0; i < operation_count; ++i) {
        int status = -1;
        fflush(stdout);
        const pid_t child = fork();
        if (child == 0) _exit(run(&operations[i], argv[1]) ? 0 : 1);
        if (child > 0) waitpid(child, &status, 0);
        printf("%-24s %s\n", operations[i].name, status == 0 ? "as the golden files" : "DIFFERENT");
        different += status != 0;
    }
    printf("%zu operations, %zu different\n", operation_count, different);
    return different == 0 ? 0 : 1;
}
