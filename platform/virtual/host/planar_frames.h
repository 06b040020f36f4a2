/* planar_frames.h - what libavcodec gives, as the board keeps pictures: 4:2:0, 8 bits, limited range. */
#ifndef VBOARD_PLANAR_FRAMES_H
#define VBOARD_PLANAR_FRAMES_H

#include "host/av_handles.h"
#include "host/picture.h"

namespace vboard
{

/* Not thread-safe: one thread at a time. */
class PlanarFrames
{
public:
    /* A frame in that form: itself, and then it is taken, where it has it already. Null = it cannot be had.
     */
    FramePtr take(AVFrame &frame);

private:
    bool convert(const AVFrame &from, AVFrame &to);

    SwsPtr converter_;
};

/* A picture that lives in such a frame: nothing is copied. */
PicturePtr picture_in(FramePtr frame);

} // namespace vboard

#endif
