/* camera_status.h - the state of a camera now, for the screen, the panel, the table and the status. */
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "camera/packet_source.h"
#include "host/clock.h"

namespace nvrec
{

/** A camera that has sent nothing for so long is silent. */
constexpr auto kSilentAfter = std::chrono::seconds(3);

enum class CameraState {
    kConnecting, /* nothing came yet                                                            */
    kLive,       /* pictures come                                                               */
    kSilent,     /* they came before, and nothing has for kSilentAfter                          */
    kRefused,    /* they come, and the library or the decoder takes none: last_error says why  */
    kEnded       /* a file at its end                                                           */
};

/** "connecting", "live", ... */
const char *camera_state_name(CameraState state);

struct CameraStatus {
    CameraState state = CameraState::kConnecting;
    Clock::time_point since;    /* of the state; of kSilent, when the last picture came         */
    int64_t since_wall_us = 0;  /* the same as time of day, microseconds since 1970             */
    StreamFacts facts;          /* of the stream that is shown                                  */
    bool sub_stream = false;    /* that is the sub stream                                       */
    bool waits_for_key = false; /* its decoder was flushed, and shows nothing before a key frame */
    bool undecodable = false;   /* that is why it is kRefused: the decoder makes nothing of it  */

    /* Of a main stream that is always read, while the sub stream is shown; else none. */
    std::optional<CameraState> main_state;
    Clock::time_point main_since;

    /* Of the last seconds, as it came in; 0 = not known. */
    double frame_rate = 0;     /* frames a second                                               */
    double bit_rate_bps = 0;   /* bits a second                                                 */
    double key_distance_s = 0; /* between the last two key frames                               */
    double jitter_ms = 0;      /* of the arrival against the camera's own clock                 */
    double loss = 0;           /* share of packets that did not come, 0 to 1                    */
    int link_quality = 0;      /* 1 to 100 from jitter and loss                                 */

    uint64_t reconnects = 0;  /* times the connection was opened again                      */
    uint64_t refused = 0;     /* frames that the library refused                            */
    uint64_t clock_jumps = 0; /* times the camera's clock was set, or its stream began anew */
    std::string last_error;   /* the last one, if any; no credentials in it                 */

    /**
     * Whether the sub stream is shown while the main stream does not come, so that nobody sees that it is
     * missing.
     */
    bool main_is_lost(Clock::time_point now) const;
};

} // namespace nvrec
