/* snap_pictures.cpp - see snap_pictures.h. */
#include "snap_pictures.h"

#include <algorithm>
#include <cmath>

namespace snap_test
{

rig::Picture decode_jpeg(const void *bytes, size_t size)
{
    const uint8_t *from = static_cast<const uint8_t *>(bytes);
    const auto pictures = rig::reference_decode({MI_VDEC_CODEC_JPEG, {rig::Bytes(from, from + size)}});
    EXPECT_EQ(pictures.size(), 1u);
    return pictures.empty() ? rig::Picture{} : pictures.front();
}

rig::Picture full_range(const rig::Picture &picture)
{
    rig::Picture result = picture;
    const size_t luma = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height);
    for (size_t i = 0; i < result.bytes.size(); ++i) {
        const double value = picture.bytes[i];
        const double spread = i < luma ? (value - 16) * 255 / 219 : (value - 128) * 255 / 224 + 128;
        result.bytes[i] = static_cast<uint8_t>(std::clamp(std::lround(spread), 0L, 255L));
    }
    return result;
}

double psnr_db(const rig::Picture &a, const rig::Picture &b)
{
    EXPECT_EQ(a.bytes.size(), b.bytes.size());
    if (a.bytes.empty() || a.bytes.size() != b.bytes.size()) return 0;
    double squares = 0;
    for (size_t i = 0; i < a.bytes.size(); ++i) {
        const double difference = double(a.bytes[i]) - double(b.bytes[i]);
        squares += difference * difference;
    }
    if (squares == 0) return 99;
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(a.bytes.size()) / squares);
}

unsigned first_luma_step(const void *bytes, size_t size)
{
    const uint8_t *at = static_cast<const uint8_t *>(bytes);
    for (size_t i = 2; i + 4 < size && at[i] == 0xFF;) { // marker, length, table number, steps
        if (at[i + 1] == 0xDB && (at[i + 4] & 0x0F) == 0) return at[i + 5];
        i += 2 + (size_t{at[i + 2]} << 8 | at[i + 3]);
    }
    return 0;
}

} // namespace snap_test
