/* picture_scaler.h - a picture brought to the size that a scaler channel is to give it. */
#ifndef VBOARD_PICTURE_SCALER_H
#define VBOARD_PICTURE_SCALER_H

#include "host/scaler.h"
#include "media/picture_ref.h"
#include "mi_divp.h"

namespace vboard
{

/* One thread at a time. */
class PictureScaler
{
public:
    /*
     * The picture at the output's size, or null for want of memory. As in the display, one scaling does
     * where no dimension would be scaled twice.
     */
    PicturePtr scale(const PictureRef &ref, const MI_DIVP_ChnAttr &attr,
                     const MI_DIVP_OutputPortAttr &output);

private:
    Scaler to_delivered_; // from the stream's size to the one the decoder's output port delivers
    Scaler to_output_;
};

} // namespace vboard

#endif
