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

struct CameraSource {
    CameraSource() = default;
    CameraSource(std::string main_address) : address(std::move(main_address)) {}
    CameraSource(const char *main_address) : address(main_address) {}

    std::string name;        /* as the user calls it; empty = "Camera N"                         */
    std::string address;     /* of its main stream: a file or rtsp://                             */
    std::string sub_address; /* of a smaller stream, for small panes; empty = it has none         */
    Transport transport = Transport::kAuto;
    std::string user, password; /* for addresses that carry none themselves */

    /** Where to connect to, credentials included: never to be shown. */
    std::string address_of(StreamChoice stream) const
    {
        return with_credentials(stream == StreamChoice::kSub ? sub_address : address, user, password);
    }
};

} // namespace nvrec
