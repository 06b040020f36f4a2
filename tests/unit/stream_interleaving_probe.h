/*
 * stream_interleaving_probe.h - one writer's whole run, store by store, and readers set against it.
 *
 * The pool's own code is compiled over a header that reports each access to shared memory. First
 * the writer runs alone and the memory is kept after every store: version v is what v stores have
 * made. Then a reader's call runs over and over; at each of its loads the probe lets the writer
 * advance or not, so that the load meets any version from the current one on. Versions in which
 * the loaded word is the same need not be told apart, since every later load may still advance.
 * All choices are tried: that is every interleaving of the writer's stores with the call's loads.
 *
 * Readers store nothing in shared memory (the probe checks it), so several readers cannot meet
 * each other: what holds for each alone against the writer holds for all of them together.
 */
#pragma once

#include "nvrhal.h"
#include "stream/pool.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace stream_probe
{

struct Frame {
    uint32_t length;
    uint32_t type;
};

struct Sizes {
    int32_t max_frame_bytes;
    int32_t data_bytes;
    int32_t index_num;
    uint32_t first_lap; // both lap counters start there
};

class WriterRun
{
public:
    /** Let the writer store the frames; frame i carries time stamp i and its own bytes. */
    WriterRun(const Sizes &sizes, const std::vector<Frame> &frames);
    ~WriterRun();

    static uint8_t byte_of(uint32_t frame, uint32_t i) { return static_cast<uint8_t>(1 + frame * 5 + i); }

    int frame_count() const { return static_cast<int>(frames_.size()); }
    const Frame &frame(int number) const { return frames_[static_cast<size_t>(number)]; }

    /** Versions: before any store, when frame `number` is published, the last. */
    int published(int number) const { return published_[static_cast<size_t>(number + 1)]; }
    int first_store_of(int number) const { return published(number - 1) + 1; }

    /** Bytes of ring that the writer advances from frame `from` to frame `to`, unused rests included. */
    int64_t advance_bytes(int from, int to) const { return position(to) - position(from); }

    /**
     * Run a reader's call in every interleaving: it starts when frame `newest` is the newest and
     * looks at any time from then on. `limit(look)` is the last version that the writer may reach
     * before the call ends, given the frame that its look found newest (-1 = none).
     * @param call  is given a reader to use, and returns the call's result
     * @param done  is told result, reader, the frame the look found, and the version at the end
     */
    void every_call(int newest, const StreamReader &reader, const std::function<int(int look)> &limit,
                    const std::function<int32_t(StreamReader *)> &call,
                    const std::function<void(int32_t, const StreamReader &, int, int)> &done);

    /** Bring the memory to a version; calls made then see that one. */
    void show(int version);

    uint32_t first_lap() const { return first_lap_; }
    StreamChannel &channel() { return *channel_; }

private:
    friend void before_load(const void *, size_t);
    friend void after_store();
    friend void frame_begins();

    struct Region {
        uint8_t *at;
        size_t size;
    };

    void record();
    void choose_version(const void *address, size_t size);
    int64_t position(int frame) const { return positions_[static_cast<size_t>(frame + 1)]; }

    std::vector<Frame> frames_;
    std::vector<int> published_;     // by frame, from -1
    std::vector<int64_t> positions_; // absolute end, likewise
    StreamChannel *channel_ = nullptr;
    Region regions_[3] = {}; // channel record, index ring, data ring
    std::vector<std::vector<uint8_t>> images_;
    uint32_t first_lap_ = 0;
    bool is_recording_ = false;
    bool is_exploring_ = false;

    int version_ = 0;
    int limit_ = 0;
    int look_ = -1;
    bool has_looked_ = false;
    const std::function<int(int)> *limit_of_look_ = nullptr;
    std::vector<int> choices_; // versions chosen, one for each load that had a choice
    std::vector<std::vector<int>> options_;
    std::vector<int> scratch_;
    size_t next_choice_ = 0;
};

} // namespace stream_probe
