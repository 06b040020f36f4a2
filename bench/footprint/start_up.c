/*
 * start_up.c - what a start with eight cameras takes: memory that the process really has, and calls of the
 * platform. The platform below only counts (tests/musl has it), and there is no framebuffer.
 *
 * Memory is what mincore tells of the private, writable mappings: data, heap and stacks, in the emulator too.
 */
#include <inttypes.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include "nvrhal.h"
#include "recording.h"

enum { CAMERAS = 8, PAGES_AT_ONCE = 4096 };

static unsigned platform_calls;

int32_t record_call(const char *name, const char *format, ...)
{
    (void)name;
    (void)format;
    ++platform_calls;
    return 0;
}

static size_t resident_in(uintptr_t begin, uintptr_t end, size_t page)
{
    static unsigned char pages[PAGES_AT_ONCE];
    size_t resident = 0;
    while (begin < end) {
        const size_t most = PAGES_AT_ONCE * page, left = end - begin, size = left < most ? left : most;
        if (mincore((void *)begin, size, pages) != 0) return resident;
        for (size_t i = 0; i < size / page; ++i)
            resident += pages[i] & 1;
        begin += size;
    }
    return resident;
}

static size_t resident_kib(void)
{
    static char line[512];
    const size_t page = (size_t)sysconf(_SC_PAGESIZE);
    size_t resident = 0;
    FILE *maps = fopen("/proc/self/maps", "r");
    while (maps && fgets(line, sizeof line, maps)) {
        uintptr_t begin, end;
        char access[5];
        if (sscanf(line, "%" SCNxPTR "-%" SCNxPTR " %4s", &begin, &end, access) != 3) continue;
        if (access[1] == 'w' && access[3] == 'p') resident += resident_in(begin, end, page);
    }
    if (maps) fclose(maps);
    return resident * page / 1024;
}

static void say_nothing(const char *text, size_t length, void *user)
{
    (void)text;
    (void)length;
    (void)user;
}

int main(void)
{
    DeviceParams params;
    memset(&params, 0, sizeof params);
    params.vi_chn_num = CAMERAS;
    params.gui_width = 1920;
    params.gui_height = 1080;
    nvrhal_set_log(say_nothing, NULL);
    recording_node_is_absent("/dev/fb0");
    resident_kib(); /* so that its own buffers are there */
    const size_t before = resident_kib();
    const int32_t result = ext_device_init(&params);
    const size_t after = resident_kib();
    if (result != 0) return fputs("start_up: the library did not start\n", stderr), 1;
    printf("start-up with %d cameras: %zu KiB more resident, %zu KiB before, %u platform calls\n", CAMERAS,
           after - before, before, platform_calls);
    return 0;
}
