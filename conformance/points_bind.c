/* points_bind.c - bindings, and how many pictures wait behind an end. */
#include "points.h"
#include "record.h"
#include "scene.h"

enum { CH = 1, W = STREAM_WIDTH, H = STREAM_HEIGHT };

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

const Point *const bind_points[] = {
    &point_bind_succeeds,  &point_bind_any_device, &point_bind_twice,
    &point_bind_absent,    &point_bind_pair,       &point_unbind_absent,
    &point_bind_shows,     &point_bind_many,       &point_unbind_stays,
    &point_rebind,         &point_bind_outlives,   &point_bind_rates,
    &point_depth_succeeds, &point_depth_refused,   NULL,
};
