/*
 * Diagnostics of the JPEG encoder: its stream as a file, and a thread that stands where an encoder
 * reader would run.
 */
#include <pthread.h>
#include <sched.h>

#include <cstdio>
#include <ctime>

#include "board_io.h"
#include "core/log.h"
#include "mi_venc.h"
#include "nvrhal.h"
#include "snap/snap_pipeline.h"

using namespace nvrhal;

namespace
{

constexpr uint32_t kDumpedBytes = 100;
constexpr uint32_t kDumpedPerLine = 10;
constexpr size_t kNameBytes = 96; // six decimal ints at their longest
constexpr int64_t kSecondUs = 1000000;
constexpr int kYearBase = 1900; // of the C library's broken-down time

constexpr int kReaderPriority = 75;
constexpr uint32_t kReaderStartUs = 2000000;

/** What the reader thread is given. */
struct ReaderParam {
    uint32_t running;
    uint32_t value;
};

void *encoder_reader(void *)
{
    return nullptr; // there is nothing to read: snapshots fetch their picture themselves
}

/** "./2024_00_31-09_05_07.jpg": local time, the month counted from 0 on purpose. */
void name_by_time(char (&name)[kNameBytes])
{
    const time_t now = static_cast<time_t>(board_time_us() / kSecondUs);
    struct tm local = {};
    localtime_r(&now, &local);
    std::snprintf(name, sizeof name, "./%d_%02d_%02d-%02d_%02d_%02d.%s", local.tm_year + kYearBase,
                  local.tm_mon, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec, "jpg");
}

void dump_head(const uint8_t *bytes, uint32_t size)
{
    for (uint32_t i = 0; i < size && i < kDumpedBytes; ++i) {
        log_text("pu8Addr_data[%x] ", bytes[i]);
        if (i % kDumpedPerLine == kDumpedPerLine - 1) log_text("\n");
    }
}

/** Read-write; an existing file keeps what the new bytes do not cover. */
FILE *open_or_create(const char *name)
{
    FILE *file = std::fopen(name, "r+b");
    return file != nullptr ? file : std::fopen(name, "w+b");
}

} // namespace

int32_t test_save_jpeg_to_file(const MI_VENC_Stream *stream)
{
    log_entry(kSnapSource);
    if (stream == nullptr) return 0;

    char name[kNameBytes];
    name_by_time(name);
    FILE *file = open_or_create(name);
    if (file == nullptr) {
        log_text("create file %s error\n", name);
        return 0;
    }
    log_text("open %s success\n", name);

    const uint32_t count = stream->packs != nullptr ? stream->pack_count : 0;
    for (uint32_t i = 0; i < count; ++i) {
        const MI_VENC_Pack &pack = stream->packs[i];
        if (pack.address == nullptr || pack.offset_bytes >= pack.length_bytes) continue;
        const uint8_t *payload = pack.address + pack.offset_bytes;
        const uint32_t size = pack.length_bytes - pack.offset_bytes;
        std::fwrite(payload, 1, size, file); // on a full disk the file ends early
        dump_head(payload, size);
    }
    std::fclose(file);
    return 0;
}

int32_t venc_start_getstream(uint32_t value)
{
    log_entry(kSnapSource);
    pthread_attr_t attr;
    if (pthread_attr_init(&attr) != 0) return -1;
    sched_param priority = {}; // some C libraries have further fields
    priority.sched_priority = kReaderPriority;
    pthread_attr_setinheritsched(&attr, PTHREAD_EXPLICIT_SCHED);
    pthread_attr_setschedpolicy(&attr, SCHED_RR);
    pthread_attr_setschedparam(&attr, &priority);
    log_text("----------priority max=%d,min=%d-------------- !\n", sched_get_priority_max(SCHED_RR),
             sched_get_priority_min(SCHED_RR));

    ReaderParam param = {.running = 1, .value = value};
    pthread_t thread;
    const int created = pthread_create(&thread, &attr, encoder_reader, &param);
    pthread_attr_destroy(&attr);
    if (created != 0) return -1; // real-time scheduling needs the privilege
    board_sleep_us(kReaderStartUs);
    pthread_join(thread, nullptr); // its parameter lies on this stack
    return 0;
}
