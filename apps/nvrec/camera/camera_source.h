/* camera_source.h - where a camera's pictures come from: plain data, filled by a command line or a file. */
#pragma once

#include <string>
#include <utility>

#include "camera/address.h"

namespace nvrec
{

/** How the packets of a network camera travel. */
enum class Transport {
    kAuto, /* TCP, and UDP for a camera that offers nothing else */
    kTcp,
    kUdp
};

/** Which of a camera's streams. */
enum class StreamChoice { kMain, kSub };

/** How messages name a camera: "channel 3 (Yard)"; without a name "channel 3". */
inline std::string channel_label(int channel, const std::string &name)
{
    return "channel " + std::to_string(channel) + (name.empty() ? "" : " (" + name + ")");
}

struct CameraSource {
    CameraSource() = default;
    CameraSource(std::string main_address) : address(std::move(main_address)) {}
    CameraSource(const char *main_address) : address(main_address) {}

    std::string name;        /* as the user calls it; empty = "Camera N"                         */
    std::string address;     /* of its main stream: a file or rtsp://                             */
    std::string sub_address; /* of a smaller stream, for small panes; empty = it has none         */
    Transport transport = Transport::kAuto;
    bool link_measured = false; /* the library is told what was measured; or FeedOptions says so       */
    int link_quality = 0;       /* it is told this, 1 to 100; 0 = what FeedOptions says                */
    bool loop = false;          /* a file is begun again at its end; or FeedOptions says so            */
    bool sound = true;          /* its sound is taken, where FeedOptions wants sound                   */
    std::string user, password; /* for addresses that carry none themselves */

    /** Where to connect to, credentials included: never to be shown. */
    std::string address_of(StreamChoice stream) const
    {
        return with_credentials(stream == StreamChoice::kSub ? sub_address : address, user, password);
    }
};

} // namespace nvrec
