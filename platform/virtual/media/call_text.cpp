/* call_text.cpp - arguments and results of platform calls as text. */
#include "media/call_text.h"

#include <array>
#include <cinttypes>
#include <cstdio>
#include <initializer_list>

namespace vboard
{
namespace
{

struct Field {
    const char *name;
    uint64_t value;
};

// {name=value name=value}
void braces(std::string &text, const void *record, std::initializer_list<Field> fields)
{
    if (record == nullptr) {
        text += "null";
        return;
    }
    text += '{';
    const char *gap = "";
    for (const Field &field : fields) {
        char piece[64];
        snprintf(piece, sizeof piece, "%s%s=%" PRIu64, gap, field.name, field.value);
        text += piece;
        gap = " ";
    }
    text += '}';
}

constexpr std::array<uint32_t, 256> crc_table()
{
    std::array<uint32_t, 256> table = {};
    for (uint32_t byte = 0; byte < table.size(); ++byte) {
        uint32_t crc = byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320u : crc >> 1;
        table[byte] = crc;
    }
    return table;
}
constexpr std::array<uint32_t, 256> kCrcTable = crc_table();

uint32_t crc32(const void *bytes, size_t size)
{
    uint32_t crc = 0xFFFFFFFFu;
    for (const auto *at = static_cast<const uint8_t *>(bytes); size > 0; --size, ++at)
        crc = crc >> 8 ^ kCrcTable[(crc ^ *at) & 0xFF];
    return ~crc;
}

// In front of a record's closing brace. Only bytes that the call took are read: those of a refused
// one need not be there.
void add_checksum(std::string &text, const void *bytes, size_t size, bool taken)
{
    char piece[24] = "-";
    if (taken && bytes != nullptr) snprintf(piece, sizeof piece, "%08" PRIx32, crc32(bytes, size));
    text.insert(text.size() - 1, std::string(" crc32=") + piece);
}

} // namespace

const char *reason_text(MI_Reason reason)
{
    switch (reason) {
    case MI_REASON_BAD_DEVICE: return "no such device";
    case MI_REASON_BAD_CHANNEL: return "no such channel";
    case MI_REASON_BAD_VALUE: return "bad value";
    case MI_REASON_EXISTS: return "exists already";
    case MI_REASON_ABSENT: return "absent";
    case MI_REASON_NULL_POINTER: return "null pointer";
    case MI_REASON_NOT_READY: return "not ready";
    case MI_REASON_UNSUPPORTED: return "unsupported";
    case MI_REASON_NOT_PERMITTED: return "not permitted";
    case MI_REASON_NO_MEMORY: return "no memory";
    case MI_REASON_NO_BUFFER: return "no buffer";
    case MI_REASON_BUFFER_FULL: return "buffer full";
    case MI_REASON_TIMEOUT: return "timed out";
    case MI_REASON_FAULT: return "device fault";
    }
    return "unknown reason";
}

std::string code_text(int64_t code)
{
    char text[32];
    if (code >= -1)
        snprintf(text, sizeof text, "%" PRId64, code);
    else
        snprintf(text, sizeof text, "0x%08" PRIx32, static_cast<uint32_t>(code));
    return text;
}

void describe(std::string &text, uint32_t value, bool)
{
    text += std::to_string(value);
}
void describe(std::string &text, int32_t value, bool)
{
    text += std::to_string(value);
}
void describe(std::string &text, uint64_t value, bool)
{
    text += std::to_string(value);
}
void describe(std::string &text, const void *value, bool)
{
    text += value != nullptr ? "data" : "null";
}

void describe(std::string &text, const char *value, bool)
{
    text += value != nullptr ? '"' + std::string(value) + '"' : "null";
}

void describe(std::string &text, const uint64_t *value, bool filled)
{
    if (value != nullptr)
        describe(text, *value, filled);
    else
        text += "null";
}

void describe(std::string &text, const uint32_t *value, bool filled)
{
    if (value != nullptr)
        describe(text, *value, filled);
    else
        text += "null";
}

void describe(std::string &text, const MI_SYS_Version *value, bool filled)
{
    describe(text, value != nullptr ? value->text : nullptr, filled);
}

#define AT(field) value != nullptr ? static_cast<uint64_t>(value->field) : 0
#define RECORD(Type, ...)                                                                                    \
    void describe(std::string &text, const Type *value, bool)                                                \
    {                                                                                                        \
        braces(text, value, {__VA_ARGS__});                                                                  \
    }

RECORD(MI_SYS_ChnPort, {"module", AT(module)}, {"device", AT(device)}, {"channel", AT(channel)},
       {"port", AT(port)})
RECORD(MI_VDEC_ChnAttr, {"codec", AT(codec)}, {"buffer", AT(stream_buffer_bytes)}, {"priority", AT(priority)},
       {"max_width", AT(max_width)}, {"max_height", AT(max_height)}, {"mode", AT(video_mode)},
       {"references", AT(reference_frames)}, {"buffers", AT(decode_buffers)})
RECORD(MI_VDEC_OutputPortAttr, {"width", AT(width)}, {"height", AT(height)})
RECORD(MI_VDEC_ChnStat, {"bytes", AT(left_stream_bytes)}, {"frames", AT(left_stream_frames)},
       {"pictures", AT(left_pictures)})
RECORD(MI_DISP_PubAttr, {"background", AT(background)}, {"interface", AT(interface_type)},
       {"timing", AT(timing)}, {"rate", AT(frame_rate)})
RECORD(MI_DISP_VideoLayerAttr, {"x", AT(window.x)}, {"y", AT(window.y)}, {"w", AT(window.width)},
       {"h", AT(window.height)}, {"width", AT(width)}, {"height", AT(height)}, {"format", AT(pixel_format)})
RECORD(MI_DISP_InputPortAttr, {"x", AT(window.x)}, {"y", AT(window.y)}, {"w", AT(window.width)},
       {"h", AT(window.height)}, {"source_width", AT(source_width)}, {"source_height", AT(source_height)})
RECORD(MI_Rect, {"x", AT(x)}, {"y", AT(y)}, {"w", AT(width)}, {"h", AT(height)})
RECORD(MI_HDMI_Attr, {"connected", AT(connected)}, {"video", AT(video_enabled)}, {"timing", AT(video_timing)},
       {"mode", AT(output_mode)}, {"colour", AT(colour_type)}, {"deep_colour", AT(deep_colour)},
       {"audio", AT(audio_enabled)}, {"multichannel", AT(audio_multichannel)},
       {"sample_rate", AT(audio_sample_rate)}, {"bit_depth", AT(audio_bit_depth)},
       {"coding", AT(audio_coding)}, {"avi", AT(avi_infoframe)}, {"audio_info", AT(audio_infoframe)},
       {"spd", AT(spd_infoframe)})
RECORD(MI_HDMI_InitParam, {"callback", value != nullptr && value->callback != nullptr ? 1u : 0u})
RECORD(MI_HDMI_SinkInfo, {"connected", AT(connected)}, {"hdmi", AT(hdmi)}, {"width", AT(preferred_width)},
       {"height", AT(preferred_height)})
RECORD(MI_AO_PubAttr, {"sample_rate", AT(sample_rate)}, {"bit_width", AT(bit_width)},
       {"work_mode", AT(work_mode)}, {"sound_mode", AT(sound_mode)}, {"frame_count", AT(frame_count)},
       {"samples", AT(samples_per_frame)}, {"channels", AT(channels)}, {"codec_channels", AT(codec_channels)})
RECORD(MI_AO_AdecAttr, {"codec", AT(codec)}, {"sample_rate", AT(sample_rate)}, {"sound_mode", AT(sound_mode)})
RECORD(MI_DIVP_ChnAttr, {"max_width", AT(max_width)}, {"max_height", AT(max_height)},
       {"noise_reduction", AT(noise_reduction)}, {"deinterlace", AT(deinterlace)}, {"rotation", AT(rotation)},
       {"crop_x", AT(crop.x)}, {"crop_y", AT(crop.y)}, {"crop_w", AT(crop.width)},
       {"crop_h", AT(crop.height)}, {"mirror", AT(mirror)}, {"flip", AT(flip)})
RECORD(MI_DIVP_OutputPortAttr, {"width", AT(width)}, {"height", AT(height)}, {"format", AT(pixel_format)},
       {"compression", AT(compression)})
RECORD(MI_VENC_ChnAttr, {"codec", AT(codec)}, {"max_width", AT(max_width)}, {"max_height", AT(max_height)},
       {"buffer", AT(stream_buffer_bytes)}, {"width", AT(width)}, {"height", AT(height)},
       {"by_frame", AT(by_frame)}, {"restart_rows", AT(restart_rows)})
RECORD(MI_VENC_JpegParam, {"quality", AT(quality)})
RECORD(MI_VENC_Stream, {"packs", AT(pack_count)}, {"sequence", AT(sequence)})

void describe(std::string &text, const MI_VDEC_Stream *value, bool filled)
{
    braces(text, value,
           {{"length", AT(length_bytes)},
            {"pts", AT(pts)},
            {"end_of_frame", AT(end_of_frame)},
            {"end_of_stream", AT(end_of_stream)}});
    if (value != nullptr) add_checksum(text, value->address, value->length_bytes, filled);
}

void describe(std::string &text, const MI_AO_Frame *value, bool filled)
{
    braces(text, value,
           {{"bit_width", AT(bit_width)},
            {"sound_mode", AT(sound_mode)},
            {"pts", AT(pts)},
            {"sequence", AT(sequence)},
            {"length", AT(length_bytes)}});
    if (value != nullptr) add_checksum(text, value->data[0], value->length_bytes, filled);
}

#undef RECORD
#undef AT

} // namespace vboard
