/* encoded_images.cpp - see encoded_images.h. */
#include "media/encoded_images.h"

#include <algorithm>
#include <utility>

namespace vboard
{

bool EncodedImages::has_room(uint64_t buffer_bytes) const
{
    const uint64_t expected = images_.empty() ? 0 : images_.back().jpeg.size();
    return held_bytes_ + expected <= buffer_bytes;
}

bool EncodedImages::keep(JpegImage jpeg, uint64_t pts, uint64_t buffer_bytes)
{
    if (held_bytes_ + jpeg.size() > buffer_bytes) return false;
    held_bytes_ += jpeg.size();
    images_.push_back({std::move(jpeg), pts, sequence_++, ++last_handle_});
    return true;
}

void EncodedImages::lend_oldest(MI_VENC_Stream &stream)
{
    lent_.push_back(std::move(images_.front()));
    images_.pop_front();
    const Image &image = lent_.back();
    MI_VENC_Pack &pack = stream.packs[0];
    pack = {};
    pack.address = image.jpeg.bytes();
    pack.length_bytes = static_cast<uint32_t>(image.jpeg.size());
    pack.pts = image.pts;
    pack.frame_end = 1;
    stream.pack_count = 1;
    stream.sequence = image.sequence;
    stream.handle = image.handle;
}

bool EncodedImages::release(uintptr_t handle)
{
    const auto image =
        std::find_if(lent_.begin(), lent_.end(), [&](const Image &one) { return one.handle == handle; });
    if (image == lent_.end()) return false;
    held_bytes_ -= image->jpeg.size();
    lent_.erase(image);
    return true;
}

void EncodedImages::clear()
{
    images_.clear();
    lent_.clear();
    held_bytes_ = 0;
}

} // namespace vboard
