/* planar_frames.cpp - see planar_frames.h. */
#include "host/planar_frames.h"

#include <memory>
#include <utility>

namespace vboard
{
namespace
{

class FramePicture final : public Picture
{
public:
    explicit FramePicture(FramePtr frame) : frame_(std::move(frame))
    {
        for (int plane = 0; plane < 3; ++plane) {
            view.plane[plane] = frame_->data[plane];
            view.stride[plane] = frame_->linesize[plane];
        }
        view.width = frame_->width;
        view.height = frame_->height;
        pts = static_cast<uint64_t>(frame_->pts);
    }

private:
    FramePtr frame_;
};

} // namespace

PicturePtr picture_in(FramePtr frame)
{
    return std::make_shared<FramePicture>(std::move(frame));
}

FramePtr PlanarFrames::take(AVFrame &frame)
{
    FramePtr result(av_frame_alloc());
    if (result == nullptr) return nullptr;
    if (frame.format == AV_PIX_FMT_YUV420P && frame.color_range != AVCOL_RANGE_JPEG) {
        av_frame_move_ref(result.get(), &frame);
        return result;
    }
    result->format = AV_PIX_FMT_YUV420P;
    result->width = frame.width;
    result->height = frame.height;
    result->pts = frame.pts;
    if (av_frame_get_buffer(result.get(), 0) < 0) return nullptr;
    if (!convert(frame, *result)) return nullptr;
    return result;
}

bool PlanarFrames::convert(const AVFrame &from, AVFrame &to)
{
    const auto format = static_cast<AVPixelFormat>(from.format);
    converter_.reset(sws_getCachedContext(converter_.release(), from.width, from.height, format, to.width,
                                          to.height, AV_PIX_FMT_YUV420P, SWS_BILINEAR, nullptr, nullptr,
                                          nullptr));
    if (converter_ == nullptr) return false;
    const int *table = sws_getCoefficients(SWS_CS_DEFAULT);
    const int full_range = from.color_range == AVCOL_RANGE_JPEG ? 1 : 0;
    sws_setColorspaceDetails(converter_.get(), table, full_range, table, 0, 0, 1 << 16, 1 << 16);
    return sws_scale(converter_.get(), from.data, from.linesize, 0, from.height, to.data, to.linesize) ==
           to.height;
}

} // namespace vboard
