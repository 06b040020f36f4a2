/*
 * h264_headers.h - what the headers of an H.264 access unit say about the order of its pictures.
 *
 * A sequence parameter set may state how many pictures can precede one in decoding order and follow
 * it in display order (max_num_reorder_frames). Many cameras leave that out: then only the size of
 * the decoded picture buffer, which follows from level and picture size, bounds it.
 */
#ifndef VBOARD_H264_HEADERS_H
#define VBOARD_H264_HEADERS_H

#include <cstddef>
#include <cstdint>
#include <optional>

namespace vboard
{

/* From a sequence parameter set. */
struct H264Sequence {
    unsigned order_count_type = 0;        // pic_order_cnt_type; 2 = display order is decoding order
    std::optional<unsigned> reorder;      // max_num_reorder_frames, stated or implied by the profile
    unsigned decoded_picture_buffer = 16; // frames, 1 to 16
};

struct H264UnitHeaders {
    std::optional<H264Sequence> sequence; // of the last sequence parameter set in front of the slices
    bool is_idr = false;                  // its first slice belongs to an IDR picture
    bool has_slice = false;
};

/* Read an access unit with start codes (Annex B), up to its first slice. */
H264UnitHeaders read_h264_headers(const uint8_t *bytes, size_t size);

} // namespace vboard

#endif
