/* system.c - the media system and its bindings. */
#include <string.h>

#include "effect.h"
#include "mi_sys.h"

static int version_ends(void)
{
    MI_SYS_Version version;
    NEED(MI_SYS_Init() == MI_SUCCESS);
    NEED(MI_SYS_GetVersion(&version) == MI_SUCCESS);
    return memchr(version.text, 0, sizeof version.text) != NULL;
}

static int clock_counts_microseconds(void)
{
    uint64_t before = 0;
    uint64_t after = 0;
    NEED(MI_SYS_Init() == MI_SUCCESS);
    NEED(MI_SYS_GetCurPts(&before) == MI_SUCCESS);
    wait_ms(20);
    NEED(MI_SYS_GetCurPts(&after) == MI_SUCCESS);
    return after - before >= 15000 && after - before < 1000000;
}

static int sync_does_not_set_back(void)
{
    const uint64_t base = 1000000000000;
    uint64_t before = 0;
    uint64_t after = 0;
    NEED(MI_SYS_Init() == MI_SUCCESS);
    NEED(MI_SYS_InitPtsBase(base) == MI_SUCCESS);
    NEED(MI_SYS_GetCurPts(&before) == MI_SUCCESS);
    NEED(MI_SYS_SyncPts(base / 2) == MI_SUCCESS);
    NEED(MI_SYS_GetCurPts(&after) == MI_SUCCESS);
    return after >= before;
}

static int second_source_is_refused(void)
{
    start_display();
    start_decoder(0);
    start_decoder(1);
    NEED(bind(0, 0, 0) == MI_SUCCESS);
    return bind(1, 0, 0) == MI_ERROR(MI_MODULE_SYS, MI_REASON_EXISTS);
}

static int binding_outlives_decoder(void)
{
    start_display();
    open_window(0, 0, 0, 0, 640, 360);
    start_decoder(0);
    NEED(bind(0, 0, 0) == MI_SUCCESS);
    NEED(MI_VDEC_StopChn(0) == MI_SUCCESS);
    NEED(MI_VDEC_DestroyChn(0) == MI_SUCCESS);
    start_decoder(0);
    send_and_settle(0, picture(kWhite, kWhite));
    return shows(100, 100, kWhite);
}

const Effect system_effects[] = {
    {"sys_version_unterminated", version_ends},
    {"sys_clock_in_milliseconds", clock_counts_microseconds},
    {"sys_sync_sets_back", sync_does_not_set_back},
    {"sys_second_source_accepted", second_source_is_refused},
    {"sys_bindings_die_with_decoder", binding_outlives_decoder},
    {NULL, NULL},
};
