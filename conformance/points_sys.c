/* points_sys.c - the media system and its clock. */
#include <string.h>

#include "points.h"
#include "record.h"
#include "scene.h"

enum { CH = 1, W = STREAM_WIDTH, H = STREAM_HEIGHT };

static const uint64_t library_base = 0xF1237890F1237890ull, library_sync = 0xE1237890E1237890ull;

POINT_WITH(FRESH, init_first, "sys.init.comes-first",
           "MI_SYS_GetVersion MI_SYS_GetCurPts MI_SYS_InitPtsBase MI_SYS_SyncPts MI_VDEC_CreateChn "
           "MI_DIVP_CreateChn MI_VENC_CreateChn MI_SYS_BindChnPort",
           "before the media system is started its clock, and whatever creates or binds, give NOT_READY")
{
    MI_SYS_Version version;
    uint64_t pts;
    const MI_VDEC_ChnAttr decoder = decoder_attr(&quad_h264);
    const MI_DIVP_ChnAttr scaler = scaler_attr(1920, 1080);
    const MI_VENC_ChnAttr encoder = encoder_attr(W, H);
    REFUSED(MI_SYS_GetVersion(&version), MI_MODULE_SYS, MI_REASON_NOT_READY);
    REFUSED(MI_SYS_GetCurPts(&pts), MI_MODULE_SYS, MI_REASON_NOT_READY);
    REFUSED(MI_SYS_InitPtsBase(1), MI_MODULE_SYS, MI_REASON_NOT_READY);
    REFUSED(MI_SYS_SyncPts(1), MI_MODULE_SYS, MI_REASON_NOT_READY);
    REFUSED(MI_VDEC_CreateChn(0, &decoder), MI_MODULE_VDEC, MI_REASON_NOT_READY);
    REFUSED(MI_DIVP_CreateChn(0, &scaler), MI_MODULE_DIVP, MI_REASON_NOT_READY);
    REFUSED(MI_VENC_CreateChn(0, &encoder), MI_MODULE_VENC, MI_REASON_NOT_READY);
    const MI_SYS_ChnPort source = decoder_end(0), sink = display_end(0, 0);
    REFUSED_SOMEHOW(MI_SYS_BindChnPort(&source, &sink, 30, 30), MI_MODULE_SYS);
}

POINT(init_succeeds, "sys.init.succeeds", "MI_SYS_Init",
      "the media system starts; starting it again is accepted")
{
    OK(MI_SYS_Init());
    OK(MI_SYS_Init());
}

POINT(init_again, "sys.init.again-changes-nothing", "MI_SYS_Init",
      "starting it again leaves channels, their queues and bindings as they are")
{
    const MI_SYS_ChnPort source = decoder_end(CH), sink = display_end(0, 0);
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    need_decoder(CH, &quad_h264);
    need_bound(&source, &sink);
    OK(MI_SYS_Init());
    OK(MI_VDEC_SendStream(CH, &frame, SEND_MS));
    REFUSED(MI_SYS_BindChnPort(&source, &sink, 30, 30), MI_MODULE_SYS, MI_REASON_EXISTS);
}

POINT(version_text, "sys.version.text", "MI_SYS_GetVersion",
      "the version is a text that ends within its 128 bytes")
{
    MI_SYS_Version version;
    memset(&version, 0xEE, sizeof version);
    NEED(MI_SYS_Init());
    OK(MI_SYS_GetVersion(&version));
    const char *end = memchr(version.text, '\0', sizeof version.text);
    HOLDS(end != NULL, "the text has no end within its record");
    HOLDS(end != version.text, "the text is empty");
    for (const char *at = version.text; at < end; ++at)
        HOLDS((unsigned char)*at >= 0x20, "byte 0x%02x is in the text", (unsigned char)*at);
}

POINT(sys_null, "sys.null",
      "MI_SYS_GetVersion MI_SYS_GetCurPts MI_SYS_BindChnPort MI_SYS_UnBindChnPort "
      "MI_SYS_SetChnOutputPortDepth",
      "a missing record gives NULL_POINTER")
{
    const MI_SYS_ChnPort source = decoder_end(CH), sink = display_end(0, 0);
    need_decoder(CH, &quad_h264);
    REFUSED(MI_SYS_GetVersion(NULL), MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    REFUSED(MI_SYS_GetCurPts(NULL), MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    REFUSED(MI_SYS_BindChnPort(NULL, &sink, 30, 30), MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    REFUSED(MI_SYS_BindChnPort(&source, NULL, 30, 30), MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    REFUSED(MI_SYS_UnBindChnPort(NULL, &sink), MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    REFUSED(MI_SYS_UnBindChnPort(&source, NULL), MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    REFUSED(MI_SYS_SetChnOutputPortDepth(NULL, 1, 1), MI_MODULE_SYS, MI_REASON_NULL_POINTER);
}

/* --------------------------------------------------------------------------------------- clock --- */

POINT(pts_runs, "sys.pts.runs", "MI_SYS_GetCurPts",
      "the media clock goes forward with real time, in microseconds")
{
    uint64_t before = 0, after = 0;
    NEED(MI_SYS_Init());
    OK(MI_SYS_GetCurPts(&before));
    const int64_t began_us = now_us();
    pause_ms(100);
    OK(MI_SYS_GetCurPts(&after));
    const int64_t real_us = now_us() - began_us, media_us = (int64_t)(after - before);
    IN_TIME(media_us >= 95000 && media_us <= real_us + 20000, "%.1f ms passed, on the media clock %.1f ms",
            (double)real_us / 1000, (double)media_us / 1000);
}

POINT(pts_monotonic, "sys.pts.never-back", "MI_SYS_GetCurPts", "a thousand readings never go back")
{
    uint64_t before = 0, now = 0;
    NEED(MI_SYS_Init());
    NEED(MI_SYS_GetCurPts(&before));
    record_successes(false);
    for (int i = 0; i < 1000; ++i) {
        OK(MI_SYS_GetCurPts(&now));
        HOLDS((int64_t)(now - before) >= 0, "after %llu came %llu", (unsigned long long)before,
              (unsigned long long)now);
        before = now;
    }
    record_successes(true);
}

static void clock_reads(uint64_t wanted)
{
    uint64_t now = 0;
    OK(MI_SYS_GetCurPts(&now));
    HOLDS(now - wanted < (uint64_t)patient_ms(1000) * 1000, "the clock was set to %llu and reads %llu",
          (unsigned long long)wanted, (unsigned long long)now);
}

POINT(pts_base, "sys.pts-base.sets", "MI_SYS_InitPtsBase MI_SYS_GetCurPts",
      "the media clock reads the base that was set, and goes on from there; forwards and back")
{
    NEED(MI_SYS_Init());
    OK(MI_SYS_InitPtsBase(library_base));
    clock_reads(library_base);
    OK(MI_SYS_InitPtsBase(5000000));
    clock_reads(5000000);
}

POINT(pts_sync, "sys.pts-sync.forward", "MI_SYS_SyncPts MI_SYS_GetCurPts",
      "a later time moves the clock forward to it")
{
    NEED(MI_SYS_Init());
    NEED(MI_SYS_InitPtsBase(5000000));
    OK(MI_SYS_SyncPts(90000000));
    clock_reads(90000000);
}

POINT(pts_sync_back, "sys.pts-sync.never-back", "MI_SYS_SyncPts MI_SYS_GetCurPts",
      "a time that lies behind is accepted and changes nothing: so the library starts")
{
    NEED(MI_SYS_Init());
    NEED(MI_SYS_InitPtsBase(library_base));
    OK(MI_SYS_SyncPts(library_sync));
    clock_reads(library_base);
}

const Point *const sys_points[] = {
    &point_init_first,
    &point_init_succeeds,
    &point_init_again,
    &point_version_text,
    &point_sys_null,
    &point_pts_runs,
    &point_pts_monotonic,
    &point_pts_base,
    &point_pts_sync,
    &point_pts_sync_back,
    NULL,
};
