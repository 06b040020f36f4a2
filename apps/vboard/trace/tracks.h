/*
 * tracks.h - what a call is about: a decoder channel, a port of the display, a device node. Calls about
 * one thing stand in one row of the time line, and are compared by themselves.
 */
#ifndef VBOARD_APP_TRACKS_H
#define VBOARD_APP_TRACKS_H

#include <map>
#include <string>

#include "trace/call_line.h"

namespace vboard_app
{

class Tracks
{
public:
    /*
     * "VDEC 3", "DISP 0 port 2", "AO 3", "/dev/fb0", "events", "system". A binding belongs to its source.
     * Calls must come in the order of the trace: which node a descriptor is, an earlier call says.
     */
    std::string of(const CallLine &call);

    /* Where a track stands among the others: by kind, then by number. */
    static int order(const std::string &track);

private:
    std::string node_track(const CallLine &call);

    std::map<int64_t, std::string> nodes_; // by open descriptor
};

} // namespace vboard_app

#endif
