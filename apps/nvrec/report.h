/*
 * report.h - what happened to every camera's frames: progress line, closing table, JSON.
 *
 * "Sent" and "refused" are counted by the feeders, all else by the board, from the moment the wall
 * stood (mark()): the frames that only gave the decoders their codec do not count.
 */
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "feeder.h"

namespace nvrec
{

/** One channel's line of the table. */
struct ChannelReport {
    int channel = 0;
    std::string address;
    bool opened = false;
    StreamFacts facts;
    FeedCounters fed;
    uint64_t decoded = 0;
    uint64_t shown = 0;
    uint64_t dropped = 0; /* decoded and never on screen */
    uint64_t damaged = 0; /* withheld by the decoder     */
    uint64_t resets = 0;  /* decoder resets              */
    std::string trouble;  /* the last one, if any        */
};

class Reporter
{
public:
    explicit Reporter(const std::vector<std::unique_ptr<Feeder>> &feeders) : feeders_(feeders) {}

    /** Count from here on. */
    void mark();

    /** Every channel's counters now. */
    std::vector<ChannelReport> collect() const;

    /** "  12.0 s   4 of 4 cameras   1200 sent ..." */
    std::string progress_line(double seconds, int running) const;

private:
    struct Baseline {
        uint64_t decoded, shown, dropped, damaged, resets;
    };
    static Baseline board_counters(int channel);

    const std::vector<std::unique_ptr<Feeder>> &feeders_;
    std::vector<Baseline> baselines_;
};

/** The closing table, one text a line. */
std::vector<std::string> table_of(const std::vector<ChannelReport> &channels);

/** The same and more as one JSON object. */
std::string json_of(const std::vector<ChannelReport> &channels, const std::string &layout,
                    const std::string &output, double seconds);

} // namespace nvrec
