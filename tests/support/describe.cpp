/* Records to text. A field that only carries zeros shows when it does not. */
#include "describe.h"

#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace recording
{

namespace
{

[[gnu::format(printf, 1, 2)]] std::string format(const char *pattern, ...)
{
    char text[512];
    va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(text, sizeof text, pattern, arguments);
    va_end(arguments);
    return text;
}

std::string size_and_place(const MI_Rect &rect)
{
    return format("%u,%u %ux%u", rect.x, rect.y, rect.width, rect.height);
}

/* " name value", or nothing for 0. */
std::string unless_zero(const char *name, uint64_t value)
{
    return value == 0 ? "" : format(" %s %" PRIu64, name, value);
}

std::string module_name(uint32_t module)
{
    switch (module) {
    case MI_MODULE_SYS: return "sys";
    case MI_MODULE_VENC: return "venc";
    case MI_MODULE_AO: return "ao";
    case MI_MODULE_VDEC: return "vdec";
    case MI_MODULE_HDMI: return "hdmi";
    case MI_MODULE_DIVP: return "divp";
    case MI_MODULE_DISP: return "disp";
    default: return std::to_string(module);
    }
}

std::string decoder_codec_name(uint32_t codec)
{
    switch (codec) {
    case MI_VDEC_CODEC_H264: return "h264";
    case MI_VDEC_CODEC_H265: return "h265";
    case MI_VDEC_CODEC_JPEG: return "jpeg";
    default: return format("codec %u", codec);
    }
}

} // namespace

std::string describe(const MI_Rect &rect)
{
    return format("{%s}", size_and_place(rect).c_str());
}

std::string describe(const MI_SYS_ChnPort &port)
{
    // Signed: a device of -1 reads better than 4294967295.
    return format("{%s,%d,%u,%u}", module_name(port.module).c_str(), static_cast<int32_t>(port.device),
                  port.channel, port.port);
}

std::string describe(const MI_VDEC_ChnAttr &attr)
{
    return format("{%s buffer %u priority %u max %ux%u mode %u references %u buffers %u}",
                  decoder_codec_name(attr.codec).c_str(), attr.stream_buffer_bytes, attr.priority,
                  attr.max_width, attr.max_height, attr.video_mode, attr.reference_frames,
                  attr.decode_buffers);
}

std::string describe(const MI_VDEC_Stream &stream)
{
    return format("{%u bytes pts %" PRIu64 " eof %u eos %u}", stream.length_bytes,
                  static_cast<uint64_t>(stream.pts), stream.end_of_frame, stream.end_of_stream);
}

std::string describe(const MI_VDEC_OutputPortAttr &attr)
{
    return format("{%ux%u}", attr.width, attr.height);
}

std::string describe(const MI_DISP_PubAttr &attr)
{
    return format("{background 0x%x interface %u timing %u rate %u}", attr.background, attr.interface_type,
                  attr.timing, attr.frame_rate);
}

std::string describe(const MI_DISP_VideoLayerAttr &attr)
{
    return "{window " + size_and_place(attr.window) +
           format(" size %ux%u format %u", attr.width, attr.height, attr.pixel_format) +
           unless_zero("reserved", attr.reserved) + "}";
}

std::string describe(const MI_DISP_InputPortAttr &attr)
{
    return "{window " + size_and_place(attr.window) +
           format(" source %ux%u}", attr.source_width, attr.source_height);
}

std::string describe(const MI_HDMI_InitParam &param)
{
    return format("{callback %s user %s}", param.callback ? "set" : "null",
                  param.user_param ? "set" : "null");
}

std::string describe(const MI_HDMI_Attr &attr)
{
    return format("{connected %u video %u timing %u mode %u colour %u deep %u audio %u multichannel %u rate "
                  "%u depth %u "
                  "coding %u infoframes %u,%u,%u}",
                  attr.connected, attr.video_enabled, attr.video_timing, attr.output_mode, attr.colour_type,
                  attr.deep_colour, attr.audio_enabled, attr.audio_multichannel, attr.audio_sample_rate,
                  attr.audio_bit_depth, attr.audio_coding, attr.avi_infoframe, attr.audio_infoframe,
                  attr.spd_infoframe);
}

std::string describe(const MI_AO_PubAttr &attr)
{
    return format("{rate %u width %u work %u sound %u frames %u samples %u channels %u codec channels %u}",
                  attr.sample_rate, attr.bit_width, attr.work_mode, attr.sound_mode, attr.frame_count,
                  attr.samples_per_frame, attr.channels, attr.codec_channels);
}

std::string describe(const MI_AO_AdecAttr &attr)
{
    return format("{codec %u rate %u sound %u}", attr.codec, attr.sample_rate, attr.sound_mode);
}

std::string describe(const MI_AO_Frame &frame)
{
    std::string text = format("{%u bytes", frame.length_bytes) + unless_zero("width", frame.bit_width) +
                       unless_zero("sound", frame.sound_mode) + unless_zero("pts", frame.pts) +
                       unless_zero("sequence", frame.sequence);
    for (int i = 1; i < 16; ++i)
        if (frame.data[i] != nullptr) text += format(" data[%d] set", i);
    for (int i = 0; i < 16; ++i)
        if (frame.pool_id[i] != 0) text += format(" pool[%d] %u", i, frame.pool_id[i]);
    for (int i = 0; i < 4; ++i)
        if (frame.reserved[i] != 0) text += format(" reserved[%d] %u", i, frame.reserved[i]);
    return text + "}";
}

std::string describe(const MI_DIVP_ChnAttr &attr)
{
    return format("{max %ux%u noise %u deinterlace %u rotation %u crop ", attr.max_width, attr.max_height,
                  attr.noise_reduction, attr.deinterlace, attr.rotation) +
           size_and_place(attr.crop) + format(" mirror %u flip %u}", attr.mirror, attr.flip);
}

std::string describe(const MI_DIVP_OutputPortAttr &attr)
{
    return format("{%ux%u format %u compression %u}", attr.width, attr.height, attr.pixel_format,
                  attr.compression);
}

std::string describe(const MI_VENC_ChnAttr &attr)
{
    return format("{codec %u max %ux%u buffer %u size %ux%u by_frame %u restart %u}", attr.codec,
                  attr.max_width, attr.max_height, attr.stream_buffer_bytes, attr.width, attr.height,
                  attr.by_frame, attr.restart_rows);
}

std::string describe(const MI_VENC_JpegParam &param)
{
    return format("{quality %u", param.quality) + unless_zero("reserved", param.reserved) + "}";
}

} // namespace recording
