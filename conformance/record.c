/* record.c - the record of seam calls. See record.h. */
#define _GNU_SOURCE /* clocks, barriers and mappings, also with -std=c11 */
#include "record.h"

#include <pthread.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>

Record *the_record;

static pthread_mutex_t record_lock = PTHREAD_MUTEX_INITIALIZER;
static atomic_uint threads_seen;
static _Thread_local int thread_slot = -1;
static _Thread_local char latest_text[LINE_BYTES];
static _Thread_local int64_t latest_us;
static _Thread_local bool is_brief;

/* The quickest successful call of each name; shared by the processes of all points, one at a time. */
static struct Quickest {
    char name[48];
    int64_t us;
} * quickest;

static void *shared(size_t size)
{
    void *memory = mmap(NULL, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? NULL : memory;
}

Record *record_create(void)
{
    quickest = shared(RECORD_NAMES * sizeof *quickest);
    return quickest != NULL ? shared(sizeof(Record)) : NULL;
}

static struct Quickest *find_quickest(const char *name)
{
    for (int i = 0; i < RECORD_NAMES; ++i)
        if (quickest[i].name[0] == '\0' || strcmp(quickest[i].name, name) == 0) return &quickest[i];
    return NULL;
}

/* Under the record's lock. */
static void keep_quickest(const char *name, int64_t us)
{
    struct Quickest *entry = find_quickest(name);
    if (entry == NULL || (entry->name[0] != '\0' && entry->us <= us)) return;
    entry->us = us;
    snprintf(entry->name, sizeof entry->name, "%s", name);
}

double quickest_call_ms(const char *name)
{
    const struct Quickest *entry = find_quickest(name);
    return entry != NULL && entry->name[0] != '\0' ? (double)entry->us / 1000 : -1;
}

void record_clear(Record *record)
{
    memset(record, 0, sizeof *record);
}

static int slot(void)
{
    if (thread_slot < 0) thread_slot = (int)(atomic_fetch_add(&threads_seen, 1) % RECORD_THREADS);
    return thread_slot;
}

static void append(const char *text)
{
    pthread_mutex_lock(&record_lock);
    Record *record = the_record;
    RecordLine *last = record->lines > 0 ? &record->line[(record->lines - 1) % RECORD_LINES] : NULL;
    if (last != NULL && strcmp(last->text, text) == 0) {
        ++last->repeats;
    } else {
        RecordLine *line = &record->line[record->lines % RECORD_LINES];
        snprintf(line->text, sizeof line->text, "%s", text);
        line->repeats = 1;
        ++record->lines;
    }
    pthread_mutex_unlock(&record_lock);
}

CallMark call_begins(const char *name)
{
    the_record->in_call[slot()] = name;
    return (CallMark){name, now_us()};
}

void call_ends(const CallMark *mark, bool succeeded, const char *result, const char *format, ...)
{
    latest_us = now_us() - mark->began_us;
    the_record->in_call[slot()] = NULL;
    char arguments[LINE_BYTES];
    va_list values;
    va_start(values, format);
    vsnprintf(arguments, sizeof arguments, format, values);
    va_end(values);
    char took[32] = "";
    if (latest_us >= 5000) snprintf(took, sizeof took, "   after %.1f ms", (double)latest_us / 1000);
    snprintf(latest_text, sizeof latest_text, "%s(%.150s) = %s%s", mark->name, arguments, result, took);
    pthread_mutex_lock(&record_lock);
    ++the_record->calls;
    if (succeeded) keep_quickest(mark->name, latest_us);
    pthread_mutex_unlock(&record_lock);
    if (!is_brief || strcmp(result, "0") != 0) append(latest_text);
}

void record_successes(bool record)
{
    is_brief = !record;
}

void note(const char *format, ...)
{
    char text[LINE_BYTES];
    va_list values;
    va_start(values, format);
    const int length = snprintf(text, sizeof text, "-- ");
    vsnprintf(text + length, sizeof text - (size_t)length, format, values);
    va_end(values);
    append(text);
}

const char *last_call_text(void)
{
    return latest_text;
}

double last_call_ms(void)
{
    return (double)latest_us / 1000;
}

static const char *module_name(uint32_t module)
{
    switch (module) {
    case MI_MODULE_SYS: return "SYS";
    case MI_MODULE_VENC: return "VENC";
    case MI_MODULE_AO: return "AO";
    case MI_MODULE_VDEC: return "VDEC";
    case MI_MODULE_HDMI: return "HDMI";
    case MI_MODULE_DIVP: return "DIVP";
    case MI_MODULE_DISP: return "DISP";
    default: return NULL;
    }
}

static const char *reason_name(uint32_t reason)
{
    switch (reason) {
    case MI_REASON_BAD_DEVICE: return "BAD_DEVICE";
    case MI_REASON_BAD_CHANNEL: return "BAD_CHANNEL";
    case MI_REASON_BAD_VALUE: return "BAD_VALUE";
    case MI_REASON_EXISTS: return "EXISTS";
    case MI_REASON_ABSENT: return "ABSENT";
    case MI_REASON_NULL_POINTER: return "NULL_POINTER";
    case MI_REASON_NOT_READY: return "NOT_READY";
    case MI_REASON_UNSUPPORTED: return "UNSUPPORTED";
    case MI_REASON_NOT_PERMITTED: return "NOT_PERMITTED";
    case MI_REASON_NO_MEMORY: return "NO_MEMORY";
    case MI_REASON_NO_BUFFER: return "NO_BUFFER";
    case MI_REASON_BUFFER_FULL: return "BUFFER_FULL";
    case MI_REASON_TIMEOUT: return "TIMEOUT";
    case MI_REASON_FAULT: return "FAULT";
    default: return NULL;
    }
}

const char *result_text(int32_t result, char *buffer, size_t size)
{
    const uint32_t code = (uint32_t)result;
    const char *module = module_name(code >> 16 & 0xFF);
    const char *reason = reason_name(code & 0xFF);
    if (result >= 0)
        snprintf(buffer, size, "%d", result);
    else if ((code & 0xFF00FF00u) == 0xA0000000u && module != NULL && reason != NULL)
        snprintf(buffer, size, "%s of %s (0x%08x)", reason, module, code);
    else
        snprintf(buffer, size, "0x%08x", code);
    return buffer;
}
