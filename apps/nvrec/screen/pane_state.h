/* pane_state.h - what a pane tells of its camera besides the name. */
#pragma once

#include <cstdint>
#include <ctime>
#include <string>

namespace nvrec
{

enum class PaneNotice {
    kNone,       /* pictures come                                                              */
    kMissing,    /* the camera has never come                                                  */
    kNoVideo,    /* it has stopped coming; its last picture stays under a dark pattern         */
    kRefused,    /* its stream comes, but no picture can be shown; the last one stays likewise */
    kWaitsForKey /* the decoder was flushed: its next picture is a key frame                   */
};

/** Whether the picture in the pane is not what the camera sees now: it lies under a dark pattern. */
constexpr bool is_veiled(PaneNotice notice)
{
    return notice == PaneNotice::kNoVideo || notice == PaneNotice::kRefused;
}

struct PaneState {
    PaneNotice notice = PaneNotice::kNone;
    std::time_t since = 0;        /* of the notice, seconds since 1970; 0 = not to be said */
    std::string reason;           /* as the camera's side words it; may be empty           */
    bool undecodable = false;     /* why it is refused: the decoder makes nothing of it    */
    uint64_t too_large_bytes = 0; /* of the key frame that is refused; 0 = that is not why */
    bool recording = false;
    bool sound = false;     /* the camera's sound is taken                */
    bool motion = false;    /* something moves before its analog input    */
    bool no_signal = false; /* its analog input has none                  */

    bool operator==(const PaneState &) const = default;
};

} // namespace nvrec
