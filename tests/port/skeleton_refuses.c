/* skeleton_refuses.c - the skeleton refuses with a code, and tells each call once on standard error. */
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "board_io.h"
#include "mi_sys.h"
#include "mi_vdec.h"

static int failures;

#define EXPECT(condition)                                                                                    \
    do {                                                                                                     \
        if (condition) break;                                                                                \
        printf("%s:%d: %s\n", __FILE__, __LINE__, #condition);                                               \
        ++failures;                                                                                          \
    } while (0)

/* What was printed on standard error meanwhile. */
static char told[1024];

static void call_all(void)
{
    errno = 0;
    EXPECT(MI_SYS_Init() == MI_ERROR(MI_MODULE_SYS, MI_REASON_UNSUPPORTED));
    EXPECT(MI_VDEC_StartChn(0) == MI_ERROR(MI_MODULE_VDEC, MI_REASON_UNSUPPORTED));
    EXPECT(MI_VDEC_StartChn(1) == MI_ERROR(MI_MODULE_VDEC, MI_REASON_UNSUPPORTED));
    EXPECT(board_open("/dev/fb0", 0) == -1);
    EXPECT(errno == ENOSYS);
    EXPECT(board_map(0, 1) == NULL);
    EXPECT(board_time_us() == 0);
    board_sleep_us(1);
}

int main(void)
{
    FILE *file = tmpfile();
    const int kept = dup(STDERR_FILENO);
    if (file == NULL || kept < 0 || dup2(fileno(file), STDERR_FILENO) < 0) return 1;
    call_all();
    dup2(kept, STDERR_FILENO);
    rewind(file);
    told[fread(told, 1, sizeof told - 1, file)] = '\0';

    EXPECT(strcmp(told, "skeleton: MI_SYS_Init: unsupported\n"
                        "skeleton: MI_VDEC_StartChn: unsupported\n"
                        "skeleton: board_open: unsupported\n"
                        "skeleton: board_map: unsupported\n"
                        "skeleton: board_time_us: unsupported\n"
                        "skeleton: board_sleep_us: unsupported\n") == 0);
    if (failures != 0) printf("told was:\n%s", told);
    return failures != 0;
}
