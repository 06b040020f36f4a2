/* recorded_sound.cpp - see recorded_sound.h. */
#include "record/recorded_sound.h"

#include <algorithm>

extern "C" {
#include <libavcodec/codec_id.h>
}

#include "camera/sound.h"

namespace nvrec
{
namespace
{

struct FormatRow {
    int av_id;
    bool needs_extradata; /* no file without it */
};
constexpr FormatRow kFormats[] = {
    {AV_CODEC_ID_AAC, true},
    {AV_CODEC_ID_OPUS, false}, /* completed() makes it */
    {AV_CODEC_ID_PCM_ALAW, false},
    {AV_CODEC_ID_PCM_MULAW, false},
};

constexpr int kMostChannels = 8;
constexpr int kMostOpusChannels = 2; /* more need a mapping that only the camera knows */

/* RFC 7845, 5.1: version 1, channels, nothing to skip, 48 kHz, no gain, mapping family 0. */
std::vector<uint8_t> opus_head(int channels)
{
    return {'O', 'p', 'u',  's',  'H', 'e', 'a', 'd', 1, static_cast<uint8_t>(channels),
            0,   0,   0x80, 0xBB, 0,   0,   0,   0,   0};
}

} // namespace

std::shared_ptr<const SoundFormat> pool_sound_format()
{
    static const auto format =
        std::make_shared<const SoundFormat>(SoundFormat{AV_CODEC_ID_PCM_ALAW, kSoundRate_hz, 1, {}});
    return format;
}

bool is_recordable(const SoundFormat &format)
{
    if (format.rate_hz <= 0 || format.channels < 1 || format.channels > kMostChannels) return false;
    if (format.av_id == AV_CODEC_ID_OPUS && format.extradata.empty() && format.channels > kMostOpusChannels)
        return false;
    return std::ranges::any_of(kFormats, [&format](const FormatRow &row) {
        return row.av_id == format.av_id && !(row.needs_extradata && format.extradata.empty());
    });
}

SoundFormat completed(SoundFormat format)
{
    if (format.av_id == AV_CODEC_ID_OPUS && format.extradata.empty())
        format.extradata = opus_head(format.channels);
    return format;
}

} // namespace nvrec
