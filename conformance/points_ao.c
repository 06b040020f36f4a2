/* points_ao.c - audio output: settings and refusals. */
#include "points.h"
#include "sound.h"

POINT(bring_up, "ao.life.brings-up",
      "MI_AO_SetPubAttr MI_AO_Enable MI_AO_EnableChn MI_AO_SetAdecAttr MI_AO_EnableAdec MI_AO_EnableReSmp",
      "the library's six steps succeed in its order, and again")
{
    NEED(MI_SYS_Init());
    for (int i = 0; i < 2; ++i) {
        OK(MI_AO_SetPubAttr(DEV, &usual_pub));
        OK(MI_AO_Enable(DEV));
        OK(MI_AO_EnableChn(DEV, CHN));
        OK(MI_AO_SetAdecAttr(DEV, CHN, &usual_adec));
        OK(MI_AO_EnableAdec(DEV, CHN));
        OK(MI_AO_EnableReSmp(DEV, CHN, INPUT_RATE));
    }
}

POINT(pub_bad, "ao.pub-attr.bad-values", "MI_AO_SetPubAttr",
      "a sample rate, bit width or number of channels that cannot be had is refused")
{
    MI_AO_PubAttr attr = usual_pub;
    NEED(MI_SYS_Init());
    attr.sample_rate = 12345;
    REFUSED_SOMEHOW(MI_AO_SetPubAttr(DEV, &attr), MI_MODULE_AO);
    attr = usual_pub;
    attr.bit_width = 77;
    REFUSED_SOMEHOW(MI_AO_SetPubAttr(DEV, &attr), MI_MODULE_AO);
    attr = usual_pub;
    attr.channels = 99;
    REFUSED_SOMEHOW(MI_AO_SetPubAttr(DEV, &attr), MI_MODULE_AO);
    attr = usual_pub;
    attr.samples_per_frame = 0;
    REFUSED_SOMEHOW(MI_AO_SetPubAttr(DEV, &attr), MI_MODULE_AO);
}

POINT(pub_running, "ao.pub-attr.running", "MI_AO_SetPubAttr",
      "an enabled device takes its own attributes once more, other ones give NOT_PERMITTED")
{
    MI_AO_PubAttr attr = usual_pub;
    need_device();
    OK(MI_AO_SetPubAttr(DEV, &usual_pub));
    attr.sample_rate = 8000;
    REFUSED(MI_AO_SetPubAttr(DEV, &attr), MI_MODULE_AO, MI_REASON_NOT_PERMITTED);
}

POINT_WITH(FRESH, not_enabled, "ao.refusals.not-enabled",
           "MI_AO_Enable MI_AO_EnableChn MI_AO_SetAdecAttr MI_AO_EnableAdec MI_AO_EnableReSmp MI_AO_SetMute "
           "MI_AO_SetVolume MI_AO_SendFrame",
           "each step before the one that it needs gives NOT_READY")
{
    const MI_AO_Frame block = block_of(tone(), BLOCK);
    NEED(MI_SYS_Init());
    REFUSED(MI_AO_Enable(DEV), MI_MODULE_AO, MI_REASON_NOT_READY);
    NEED(MI_AO_SetPubAttr(DEV, &usual_pub));
    REFUSED(MI_AO_EnableChn(DEV, CHN), MI_MODULE_AO, MI_REASON_NOT_READY);
    REFUSED(MI_AO_SetMute(DEV, 0), MI_MODULE_AO, MI_REASON_NOT_READY);
    REFUSED(MI_AO_SetVolume(DEV, 0), MI_MODULE_AO, MI_REASON_NOT_READY);
    NEED(MI_AO_Enable(DEV));
    REFUSED(MI_AO_SetAdecAttr(DEV, CHN, &usual_adec), MI_MODULE_AO, MI_REASON_NOT_READY);
    REFUSED(MI_AO_EnableReSmp(DEV, CHN, INPUT_RATE), MI_MODULE_AO, MI_REASON_NOT_READY);
    REFUSED(MI_AO_SendFrame(DEV, CHN, &block, 0), MI_MODULE_AO, MI_REASON_NOT_READY);
    NEED(MI_AO_EnableChn(DEV, CHN));
    REFUSED(MI_AO_EnableAdec(DEV, CHN), MI_MODULE_AO, MI_REASON_NOT_READY);
}

POINT(bad_device, "ao.refusals.bad-device",
      "MI_AO_SetPubAttr MI_AO_Enable MI_AO_EnableChn MI_AO_SetAdecAttr MI_AO_EnableAdec MI_AO_EnableReSmp "
      "MI_AO_SetMute MI_AO_SetVolume MI_AO_SendFrame",
      "each call to no device gives BAD_DEVICE")
{
    const MI_AO_Frame block = block_of(tone(), BLOCK);
    need_audio();
    REFUSED(MI_AO_SetPubAttr(NO_DEVICE, &usual_pub), MI_MODULE_AO, MI_REASON_BAD_DEVICE);
    REFUSED(MI_AO_Enable(NO_DEVICE), MI_MODULE_AO, MI_REASON_BAD_DEVICE);
    REFUSED(MI_AO_EnableChn(NO_DEVICE, CHN), MI_MODULE_AO, MI_REASON_BAD_DEVICE);
    REFUSED(MI_AO_SetAdecAttr(NO_DEVICE, CHN, &usual_adec), MI_MODULE_AO, MI_REASON_BAD_DEVICE);
    REFUSED(MI_AO_EnableAdec(NO_DEVICE, CHN), MI_MODULE_AO, MI_REASON_BAD_DEVICE);
    REFUSED(MI_AO_EnableReSmp(NO_DEVICE, CHN, INPUT_RATE), MI_MODULE_AO, MI_REASON_BAD_DEVICE);
    REFUSED(MI_AO_SetMute(NO_DEVICE, 0), MI_MODULE_AO, MI_REASON_BAD_DEVICE);
    REFUSED(MI_AO_SetVolume(NO_DEVICE, 0), MI_MODULE_AO, MI_REASON_BAD_DEVICE);
    REFUSED(MI_AO_SendFrame(NO_DEVICE, CHN, &block, 0), MI_MODULE_AO, MI_REASON_BAD_DEVICE);
}

POINT(bad_channel, "ao.refusals.bad-channel",
      "MI_AO_EnableChn MI_AO_SetAdecAttr MI_AO_EnableAdec MI_AO_EnableReSmp MI_AO_SendFrame",
      "each call to no channel gives BAD_CHANNEL")
{
    const MI_AO_Frame block = block_of(tone(), BLOCK);
    need_audio();
    REFUSED(MI_AO_EnableChn(DEV, NO_CHANNEL), MI_MODULE_AO, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_AO_SetAdecAttr(DEV, NO_CHANNEL, &usual_adec), MI_MODULE_AO, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_AO_EnableAdec(DEV, NO_CHANNEL), MI_MODULE_AO, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_AO_EnableReSmp(DEV, NO_CHANNEL, INPUT_RATE), MI_MODULE_AO, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_AO_SendFrame(DEV, NO_CHANNEL, &block, 0), MI_MODULE_AO, MI_REASON_BAD_CHANNEL);
}

POINT(ao_null, "ao.refusals.null", "MI_AO_SetPubAttr MI_AO_SetAdecAttr MI_AO_SendFrame",
      "a missing record, or no bytes, gives NULL_POINTER")
{
    const MI_AO_Frame nothing = block_of(NULL, BLOCK);
    need_audio();
    REFUSED(MI_AO_SetPubAttr(DEV, NULL), MI_MODULE_AO, MI_REASON_NULL_POINTER);
    REFUSED(MI_AO_SetAdecAttr(DEV, CHN, NULL), MI_MODULE_AO, MI_REASON_NULL_POINTER);
    REFUSED(MI_AO_SendFrame(DEV, CHN, NULL, 0), MI_MODULE_AO, MI_REASON_NULL_POINTER);
    REFUSED(MI_AO_SendFrame(DEV, CHN, &nothing, 0), MI_MODULE_AO, MI_REASON_NULL_POINTER);
}

POINT(adec_bad, "ao.adec-attr.bad-values", "MI_AO_SetAdecAttr",
      "an unknown codec or sound mode gives UNSUPPORTED, a rate that cannot be had BAD_VALUE")
{
    MI_AO_AdecAttr attr = usual_adec;
    need_audio();
    attr.codec = 77;
    REFUSED(MI_AO_SetAdecAttr(DEV, CHN, &attr), MI_MODULE_AO, MI_REASON_UNSUPPORTED);
    attr = usual_adec;
    attr.sound_mode = 77;
    REFUSED(MI_AO_SetAdecAttr(DEV, CHN, &attr), MI_MODULE_AO, MI_REASON_UNSUPPORTED);
    attr = usual_adec;
    attr.sample_rate = 12345;
    REFUSED(MI_AO_SetAdecAttr(DEV, CHN, &attr), MI_MODULE_AO, MI_REASON_BAD_VALUE);
}

POINT(resample_bad, "ao.resample.bad-rate", "MI_AO_EnableReSmp",
      "a rate that cannot be had gives BAD_VALUE, the same rate once more is accepted")
{
    need_audio();
    REFUSED(MI_AO_EnableReSmp(DEV, CHN, 12345), MI_MODULE_AO, MI_REASON_BAD_VALUE);
    REFUSED(MI_AO_EnableReSmp(DEV, CHN, 0), MI_MODULE_AO, MI_REASON_BAD_VALUE);
    OK(MI_AO_EnableReSmp(DEV, CHN, INPUT_RATE));
}

POINT(volume_range, "ao.volume.range", "MI_AO_SetVolume",
      "-60 to 30 dB are accepted, what lies beyond gives BAD_VALUE")
{
    need_audio();
    OK(MI_AO_SetVolume(DEV, -60));
    OK(MI_AO_SetVolume(DEV, 30));
    OK(MI_AO_SetVolume(DEV, 0));
    REFUSED(MI_AO_SetVolume(DEV, -61), MI_MODULE_AO, MI_REASON_BAD_VALUE);
    REFUSED(MI_AO_SetVolume(DEV, 31), MI_MODULE_AO, MI_REASON_BAD_VALUE);
}

POINT(
    send_bad, "ao.send.bad-values", "MI_AO_SendFrame",
    "no bytes, or more than the whole queue, give BAD_VALUE; an unknown bit width or sound mode UNSUPPORTED")
{
    static uint8_t large[200000];
    MI_AO_Frame block = block_of(tone(), 0);
    need_audio();
    REFUSED(MI_AO_SendFrame(DEV, CHN, &block, 0), MI_MODULE_AO, MI_REASON_BAD_VALUE);
    block = block_of(large, sizeof large);
    REFUSED(MI_AO_SendFrame(DEV, CHN, &block, 1000), MI_MODULE_AO, MI_REASON_BAD_VALUE);
    expect_took(0, 150);
    block = block_of(tone(), BLOCK);
    block.bit_width = 77;
    REFUSED(MI_AO_SendFrame(DEV, CHN, &block, 0), MI_MODULE_AO, MI_REASON_UNSUPPORTED);
    block = block_of(tone(), BLOCK);
    block.sound_mode = 77;
    REFUSED(MI_AO_SendFrame(DEV, CHN, &block, 0), MI_MODULE_AO, MI_REASON_UNSUPPORTED);
}

const Point *const ao_points[] = {
    &point_bring_up,     &point_pub_bad,      &point_pub_running, &point_not_enabled,
    &point_bad_device,   &point_bad_channel,  &point_ao_null,     &point_adec_bad,
    &point_resample_bad, &point_volume_range, &point_send_bad,    NULL,
};
