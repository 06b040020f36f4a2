/* picture_scaler.cpp - see picture_scaler.h. */
#include "media/picture_scaler.h"

#include <memory>

namespace vboard
{
namespace
{

constexpr int kRowAlignment = 64;

/* A picture with memory of its own. */
class ScaledPicture : public Picture
{
public:
    ScaledPicture(int width, int height, uint64_t time_stamp)
    {
        const int chroma_width = (width + 1) / 2;
        const int strides[3] = {padded(width), padded(chroma_width), padded(chroma_width)};
        const int rows[3] = {height, (height + 1) / 2, (height + 1) / 2};
        size_t size = kRowAlignment; // vector loops may read past the last row's end
        for (int plane = 0; plane < 3; ++plane)
            size += static_cast<size_t>(strides[plane]) * static_cast<size_t>(rows[plane]);
        bytes_.reset(new uint8_t[size]);
        uint8_t *at = bytes_.get();
        for (int plane = 0; plane < 3; ++plane) {
            planes.plane[plane] = at;
            planes.stride[plane] = strides[plane];
            at += static_cast<size_t>(strides[plane]) * static_cast<size_t>(rows[plane]);
        }
        planes.width = width;
        planes.height = height;
        view = read_only(planes);
        pts = time_stamp;
    }

    MutablePlanarView planes;

private:
    static int padded(int width) { return (width + kRowAlignment - 1) & ~(kRowAlignment - 1); }
    std::unique_ptr<uint8_t[]> bytes_;
};

bool has_part(const MI_Rect &part)
{
    return part.width != 0 && part.height != 0;
}

} // namespace

PicturePtr PictureScaler::scale(const PictureRef &ref, const MI_DIVP_ChnAttr &attr,
                                const MI_DIVP_OutputPortAttr &output)
{
    const PlanarView &stream = ref.picture().view;
    const int width = static_cast<int>(output.width);
    const int height = static_cast<int>(output.height);
    auto result = std::make_shared<ScaledPicture>(width, height, ref.picture().pts);
    const bool once_across = ref.width() == stream.width || ref.width() == width;
    const bool once_down = ref.height() == stream.height || ref.height() == height;
    const bool reduced = ref.width() != stream.width || ref.height() != stream.height;

    std::unique_ptr<ScaledPicture> delivered;
    PlanarView source = stream;
    if (reduced && (has_part(attr.crop) || !once_across || !once_down)) {
        delivered = std::make_unique<ScaledPicture>(ref.width(), ref.height(), 0);
        if (!to_delivered_.scale(stream, delivered->planes)) return nullptr;
        source = delivered->view;
    }
    if (has_part(attr.crop)) {
        const MI_Rect &crop = attr.crop;
        if (crop.x + crop.width > source.width || crop.y + crop.height > source.height) return nullptr;
        source = part_of(source, crop.x, crop.y, crop.width, crop.height);
    }
    if (!to_output_.scale(source, result->planes)) return nullptr;
    return result;
}

} // namespace vboard
