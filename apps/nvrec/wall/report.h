/*
 * report.h - what happened to every camera's frames: progress line, closing table, JSON.
 *
 * The feeders count "sent" and "refused", the decoders all else. Counting begins when the wall is on the
 * screen (mark()), so the frames that only gave the decoders their codec do not count. On a board whose
 * decoders do not tell counts, those columns are empty.
 */
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "camera/feeder.h"
#include "host/host.h"

namespace nvrec
{

/** One channel's line of the table. */
struct ChannelReport {
    int channel = 0;
    std::string address;
    bool opened = false;
    CameraStatus status;
    Clock::time_point at; /* of the status */
    StreamFacts facts;
    FeedCounters fed;
    bool counted = true;           /* decoders tell what follows */
    host::DecoderCounters decoder; /* of the channel's frames    */
    host::DecoderBacklog backlog;  /* what it has taken and not consumed */
    std::string trouble;           /* the last one, if any       */
};

class Reporter
{
public:
    explicit Reporter(const std::vector<std::unique_ptr<Feeder>> &feeders) : feeders_(feeders) {}

    /** Count from here on. */
    void mark();

    /** Another camera stands on the channel: what was decoded there until now is not its own. */
    void begin_anew(int channel);

    /** What the channel's decoder counted of the camera that stands there; nothing = it does not tell. */
    std::optional<host::DecoderCounters> decoder_of(int channel) const;

    /** Leave out the frames on a channel that came from another source than its camera. */
    void leave_out(int channel, const host::DecoderCounters &foreign);

    /** Every channel's counters now. */
    std::vector<ChannelReport> collect() const;

    /** "  12.0 s   3 of 4 cameras, none from 2   1200 sent ..." */
    std::string progress_line(double seconds) const;

private:
    const std::vector<std::unique_ptr<Feeder>> &feeders_;
    std::vector<host::DecoderCounters> baselines_;
    std::map<int, host::DecoderCounters> begun_; /* by channel, when its camera came; none = at the start */
};

/** The closing table, one text a line. */
std::vector<std::string> table_of(const std::vector<ChannelReport> &channels);

/** The same and more as one JSON object. @param more  further members of it, `"name": value` each */
std::string json_of(const std::vector<ChannelReport> &channels, const std::string &layout,
                    const std::string &output, double seconds, const std::vector<std::string> &more = {});

/** A text as JSON writes it, with its quotes; what is not UTF-8 in it is replaced. */
std::string json_string(const std::string &value);

/** Write a text to a file. @return false when it could not be written. */
bool write_text(const std::string &path, const std::string &text);

} // namespace nvrec
