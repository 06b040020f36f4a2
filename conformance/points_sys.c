/* points_sys.c - the media system, its clock, and bindings. */
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

/* ------------------------------------------------------------------------------------ bindings --- */

POINT(bind_succeeds, "sys.bind.succeeds", "MI_SYS_BindChnPort MI_SYS_UnBindChnPort",
      "a decoder is bound to a port of each device, and unbound")
{
    static const int32_t devices[] = {-1, 0, 1, 2};
    const MI_SYS_ChnPort source = decoder_end(CH);
    need_decoder(CH, &quad_h264);
    for (int i = 0; i < 4; ++i) {
        const MI_SYS_ChnPort sink = display_end(devices[i], 5);
        OK(MI_SYS_BindChnPort(&source, &sink, 30, 30));
        OK(MI_SYS_UnBindChnPort(&source, &sink));
    }
}

POINT(bind_any_device, "sys.bind.decoder-device-ignored", "MI_SYS_BindChnPort MI_SYS_UnBindChnPort",
      "the device word of a decoder as source is not looked at: the library writes the display's there")
{
    MI_SYS_ChnPort source = decoder_end(CH);
    const MI_SYS_ChnPort sink = display_end(2, 5);
    need_decoder(CH, &quad_h264);
    source.device = 2;
    OK(MI_SYS_BindChnPort(&source, &sink, 30, 30));
    OK(MI_SYS_UnBindChnPort(&source, &sink));
}

POINT(bind_twice, "sys.bind.twice-exists", "MI_SYS_BindChnPort",
      "a sink that has a source gives EXISTS, for the same and for another source")
{
    const MI_SYS_ChnPort one = decoder_end(CH), other = decoder_end(CH + 1), sink = display_end(0, 5);
    need_decoder(CH, &quad_h264);
    need_decoder(CH + 1, &quad_h264);
    need_bound(&one, &sink);
    REFUSED(MI_SYS_BindChnPort(&one, &sink, 30, 30), MI_MODULE_SYS, MI_REASON_EXISTS);
    REFUSED(MI_SYS_BindChnPort(&other, &sink, 30, 30), MI_MODULE_SYS, MI_REASON_EXISTS);
}

POINT(bind_absent, "sys.bind.absent", "MI_SYS_BindChnPort", "an end that does not exist gives ABSENT")
{
    const MI_SYS_ChnPort none = decoder_end(CH + 1), source = decoder_end(CH), port = display_end(0, 5);
    const MI_SYS_ChnPort no_port = display_end(0, 99), no_device = display_end(9, 0), scaler = scaler_end();
    need_decoder(CH, &quad_h264);
    REFUSED(MI_SYS_BindChnPort(&none, &port, 30, 30), MI_MODULE_SYS, MI_REASON_ABSENT);
    REFUSED(MI_SYS_BindChnPort(&source, &no_port, 30, 30), MI_MODULE_SYS, MI_REASON_ABSENT);
    REFUSED(MI_SYS_BindChnPort(&source, &no_device, 30, 30), MI_MODULE_SYS, MI_REASON_ABSENT);
    REFUSED(MI_SYS_BindChnPort(&source, &scaler, 30, 30), MI_MODULE_SYS, MI_REASON_ABSENT);
}

POINT(bind_pair, "sys.bind.bad-pair", "MI_SYS_BindChnPort",
      "modules that cannot be connected give UNSUPPORTED")
{
    const MI_SYS_ChnPort port = display_end(0, 5), other = display_end(0, 6), source = decoder_end(CH);
    const MI_SYS_ChnPort audio = {MI_MODULE_AO, 0, 0, 0};
    need_decoder(CH, &quad_h264);
    REFUSED(MI_SYS_BindChnPort(&port, &other, 30, 30), MI_MODULE_SYS, MI_REASON_UNSUPPORTED);
    REFUSED(MI_SYS_BindChnPort(&source, &audio, 30, 30), MI_MODULE_SYS, MI_REASON_UNSUPPORTED);
}

POINT(unbind_absent, "sys.unbind.absent", "MI_SYS_UnBindChnPort",
      "two ends that are not bound to each other give ABSENT, and other bindings stay")
{
    const MI_SYS_ChnPort one = decoder_end(CH), other = decoder_end(CH + 1), sink = display_end(0, 5);
    const MI_SYS_ChnPort zeros = {0, 0, 0, 0};
    need_decoder(CH, &quad_h264);
    need_decoder(CH + 1, &quad_h264);
    REFUSED(MI_SYS_UnBindChnPort(&one, &sink), MI_MODULE_SYS, MI_REASON_ABSENT);
    need_bound(&one, &sink);
    REFUSED(MI_SYS_UnBindChnPort(&other, &sink), MI_MODULE_SYS, MI_REASON_ABSENT);
    REFUSED(MI_SYS_UnBindChnPort(&zeros, &sink), MI_MODULE_SYS, MI_REASON_ABSENT);
    REFUSED(MI_SYS_BindChnPort(&other, &sink, 30, 30), MI_MODULE_SYS, MI_REASON_EXISTS);
    OK(MI_SYS_UnBindChnPort(&one, &sink));
    REFUSED(MI_SYS_UnBindChnPort(&one, &sink), MI_MODULE_SYS, MI_REASON_ABSENT);
}

POINT(bind_shows, "sys.bind.feeds", "MI_SYS_BindChnPort", "what is bound is seen, on the sink that was named")
{
    const MI_SYS_ChnPort red = decoder_end(1), blue = decoder_end(2), left = display_end(0, 2);
    const MI_SYS_ChnPort right = display_end(0, 1);
    const Spot spots[] = {{320, 360, RED}, {960, 360, BLUE}};
    need_display(0);
    need_port(0, 2, 0, 0, 640, 720);
    need_port(0, 1, 640, 0, 640, 720);
    need_decoder(1, &red_h264);
    need_decoder(2, &blue_h264);
    OK(MI_SYS_BindChnPort(&red, &left, 30, 30));
    OK(MI_SYS_BindChnPort(&blue, &right, 30, 30));
    need_played(1, &red_h264, 0, 10);
    need_played(2, &blue_h264, 0, 10);
    screen_shows(0, spots, 2, "red on the left, blue on the right");
}

POINT(bind_many, "sys.bind.several-sinks", "MI_SYS_BindChnPort", "one decoder feeds several sinks at a time")
{
    const MI_SYS_ChnPort source = decoder_end(CH), first = display_end(0, 1), second = display_end(0, 6);
    const Spot spots[] = {{320, 360, GREEN}, {960, 360, GREEN}};
    const Spot snap[] = {{W / 2, H / 2, GREEN}};
    need_display(0);
    need_port(0, 1, 0, 0, 640, 720);
    need_port(0, 6, 640, 0, 640, 720);
    need_decoder(CH, &green_h264);
    OK(MI_SYS_BindChnPort(&source, &first, 30, 30));
    OK(MI_SYS_BindChnPort(&source, &second, 30, 30));
    need_snapshots(CH, W, H);
    need_played(CH, &green_h264, 0, 10);
    snapshot_shows(snap, 1, W, H);
    screen_shows(0, spots, 2, "green on the left and on the right");
}

POINT(unbind_stays, "sys.unbind.picture-stays", "MI_SYS_UnBindChnPort",
      "after an unbinding the picture stays on screen, and no further one comes")
{
    const MI_SYS_ChnPort source = decoder_end(CH), sink = display_end(0, 2);
    const Spot red[] = {{640, 360, RED}};
    need_display(0);
    need_port(0, 2, 0, 0, SCREEN_WIDTH, SCREEN_HEIGHT);
    need_playing(0, 2, CH, &red_h264);
    screen_shows(0, red, 1, "the screen is red");
    OK(MI_SYS_UnBindChnPort(&source, &sink));
    need_played(CH, &green_h264, 0, 10);
    screen_keeps(0, red, 1, "the screen stays red");
}

POINT(rebind, "sys.bind.other-source", "MI_SYS_BindChnPort MI_SYS_UnBindChnPort",
      "a sink that is unbound from one decoder and bound to another shows the other")
{
    const MI_SYS_ChnPort red = decoder_end(1), blue = decoder_end(2), sink = display_end(0, 2);
    const Spot spots[] = {{640, 360, BLUE}};
    need_display(0);
    need_port(0, 2, 0, 0, SCREEN_WIDTH, SCREEN_HEIGHT);
    need_playing(0, 2, 1, &red_h264);
    need_decoder(2, &blue_h264);
    OK(MI_SYS_UnBindChnPort(&red, &sink));
    OK(MI_SYS_BindChnPort(&blue, &sink, 30, 30));
    need_played(2, &blue_h264, 0, 10);
    need_played(1, &red_h264, 0, 10);
    wait_consumed(1, 1000);
    screen_shows(0, spots, 1, "the screen is blue");
    screen_keeps(0, spots, 1, "the screen stays blue");
}

POINT(bind_outlives, "sys.bind.outlives-decoder", "MI_SYS_BindChnPort MI_VDEC_DestroyChn MI_VDEC_CreateChn",
      "a binding stays when its decoder is destroyed, and works when the channel is created again")
{
    const MI_SYS_ChnPort source = decoder_end(CH), sink = display_end(0, 2);
    const MI_VDEC_ChnAttr attr = decoder_attr(&quad_h265);
    Spot spots[4];
    quad_spots(spots, 0, 0, SCREEN_WIDTH, SCREEN_HEIGHT);
    need_display(0);
    need_port(0, 2, 0, 0, SCREEN_WIDTH, SCREEN_HEIGHT);
    need_playing(0, 2, CH, &red_h264);
    NEED(MI_VDEC_StopChn(CH));
    NEED(MI_VDEC_DestroyChn(CH));
    NEED(MI_VDEC_CreateChn(CH, &attr));
    NEED(MI_VDEC_StartChn(CH));
    REFUSED(MI_SYS_BindChnPort(&source, &sink, 30, 30), MI_MODULE_SYS, MI_REASON_EXISTS);
    need_played(CH, &quad_h265, 0, 10);
    screen_shows(0, spots, 4, "four fields over the whole screen");
}

POINT(bind_rates, "sys.bind.rates", "MI_SYS_BindChnPort",
      "equal rates pass every picture; a sink of half the rate gets every other one")
{
    enum { SENT = 20 };
    const MI_SYS_ChnPort source = decoder_end(CH), scaler = scaler_end();
    need_decoder(CH, &quad_h264);
    need_scaler_and_encoder(W, H);
    for (uint32_t rate = 30; rate >= 15; rate -= 15) {
        uint32_t got = 0;
        NEED(MI_SYS_BindChnPort(&source, &scaler, 30, rate));
        for (uint32_t i = 0; i < SENT; ++i) {
            MI_VENC_Pack packs[8];
            MI_VENC_Stream stream = {packs, 8, 0, 0};
            need_played(CH, &quad_h264, i % 10, 1);
            wait_consumed(CH, 500);
            if (MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(rate == 30 ? 500 : 40)) != 0)
                continue;
            ++got;
            NEED(MI_VENC_ReleaseStream(ENCODER, &stream));
        }
        const uint32_t wanted = SENT * rate / 30;
        HOLDS(got + 1 >= wanted && got <= wanted + 1, "of %d pictures %u came through a binding of 30 to %u",
              (int)SENT, got, rate);
        NEED(MI_SYS_UnBindChnPort(&source, &scaler));
    }
}

POINT(depth_succeeds, "sys.depth.succeeds", "MI_SYS_SetChnOutputPortDepth",
      "the depth of a decoder's and of a scaler's output port is set")
{
    const MI_SYS_ChnPort decoder = decoder_end(CH), scaler = scaler_end();
    const MI_DIVP_ChnAttr attr = scaler_attr(1920, 1080);
    need_decoder(CH, &quad_h264);
    NEED(MI_DIVP_CreateChn(SCALER, &attr));
    OK(MI_SYS_SetChnOutputPortDepth(&decoder, 0, 3));
    OK(MI_SYS_SetChnOutputPortDepth(&scaler, 0, 3));
    OK(MI_SYS_SetChnOutputPortDepth(&scaler, 0, 0));
    OK(MI_SYS_SetChnOutputPortDepth(&scaler, 0, 64));
}

POINT(depth_refused, "sys.depth.refusals", "MI_SYS_SetChnOutputPortDepth",
      "a channel that does not exist, a module without output ports and a queue of more than 64 are refused")
{
    const MI_SYS_ChnPort decoder = decoder_end(CH), scaler = scaler_end(), port = display_end(0, 0);
    const MI_DIVP_ChnAttr attr = scaler_attr(1920, 1080);
    NEED(MI_SYS_Init());
    HOLDS(MI_SYS_SetChnOutputPortDepth(&decoder, 0, 3) < 0, "%s, expected ABSENT", last_call_text());
    HOLDS(MI_SYS_SetChnOutputPortDepth(&scaler, 0, 3) < 0, "%s, expected ABSENT", last_call_text());
    REFUSED(MI_SYS_SetChnOutputPortDepth(&port, 0, 3), MI_MODULE_SYS, MI_REASON_UNSUPPORTED);
    NEED(MI_DIVP_CreateChn(SCALER, &attr));
    const int32_t deep = MI_SYS_SetChnOutputPortDepth(&scaler, 0, 65);
    HOLDS(deep < 0 && ((uint32_t)deep & 0xFF) == MI_REASON_BAD_VALUE, "%s, expected BAD_VALUE",
          last_call_text());
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

const Point *const bind_points[] = {
    &point_bind_succeeds,  &point_bind_any_device, &point_bind_twice,
    &point_bind_absent,    &point_bind_pair,       &point_unbind_absent,
    &point_bind_shows,     &point_bind_many,       &point_unbind_stays,
    &point_rebind,         &point_bind_outlives,   &point_bind_rates,
    &point_depth_succeeds, &point_depth_refused,   NULL,
};
