/*
 * playback_track.h - the recordings of one camera, file after file, on their way to a playback decoder.
 *
 * A track holds its next picture until it is due, and hands it over in the library's playback buffer.
 * Places in a track are microseconds from its beginning on; a file of it begins at a place of it, and
 * a file's pictures lie from there on. Where nothing is recorded for a while the track has a gap: a
 * little later than its last picture the screen is to go dark.
 *
 * A decoder holds pictures back where a stream shows them in another order than it decodes them. The
 * picture of a place comes out when as many further ones have gone in: see push_out().
 *
 * Files of one camera may be of different codecs: a camera was set up anew. The decoder is made for one
 * codec; decoder_fits() says whether it takes the held picture, make_decoder_fit() makes it anew.
 *
 * Threads: one at a time; Playback sees to it.
 */
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "camera/input.h"
#include "host/host.h"
#include "wall/report.h"

namespace nvrec
{

/** One file of a track, and the place of the track at which it begins. */
struct TrackFile {
    std::string address;
    int64_t from_us = 0;
};

/** The recordings of one camera, in order. */
struct TrackPlan {
    std::string name; /* of the camera; empty = a file that nobody named */
    std::vector<TrackFile> files;
    bool dated = false; /* its places are times of day: behind its end nothing was recorded */
};

class PlaybackTrack
{
public:
    /** @param decoder  the decoder channel and display port it plays on */
    PlaybackTrack(TrackPlan plan, int decoder) : decoder_(decoder), plan_(std::move(plan)) {}

    /**
     * Open the file of a place, or the nearest one that can be opened, later ones first, and hold its
     * first key frame. False: the reason is in trouble().
     */
    bool open(int64_t position_us = 0);

    /** Have the file of a place open, so that facts() are those of what comes there. seek() follows. */
    void turn_to(int64_t position_us);

    /**
     * Hold the last key frame at or before a place; before the first one, in front of a gap's end, and
     * where a file cannot be read, what comes there. False: the track is at its end.
     */
    bool seek(int64_t position_us);

    /** Whether a place lies behind the last picture. The track is somewhere afterwards: seek() follows. */
    bool ends_before(int64_t position_us);

    /** The gap under way or ahead: from when on the screen is to be dark; INT64_MAX = none. */
    int64_t dark_from_us() const;
    /** The screen is dark there now. */
    void note_dark() { dark_ = true; }

    bool opened() const { return opened_; }
    bool at_end() const { return at_end_; }
    int decoder() const { return decoder_; }

    /** Whether the decoder was made for the codec of the held picture. True before it was made at all. */
    bool decoder_fits() const { return !made_for_ || *made_for_ == facts().codec; }
    /** Make it for that codec. It is bound to no pane then: a layout comes next. Main thread. */
    void make_decoder_fit();

    const AccessUnit &next() const { return next_; } /* unless at_end() */

    /** Deliver the held picture and hold the next one. @param double_rate  ask for the fast display. */
    void deliver(bool double_rate);

    /** Hold the next key frame instead of what is held now. */
    void skip_to_key();

    /**
     * Deliver what the decoder needs to hand out the picture delivered last: the ones behind it, and at
     * the end of the track its last key frame again. Nothing where pictures come in order.
     */
    void push_out(bool double_rate);

    /** Drop what the decoder and its display port hold: the screen goes dark there. */
    void flush() const;

    /** Deliver the sound that is due up to a place. */
    void deliver_sound(int64_t until_us);

    /** Let the sound up to a place go by unheard. */
    void drop_sound(int64_t until_us);

    /** Begin and end to count what is decoded on this channel for the file. */
    void begin_count();
    host::DecoderCounters end_count();

    /** Wait until the decoder has handed on what it was sent. */
    void wait_for_decoder() const;

    StreamFacts facts() const { return input_ ? input_->facts() : StreamFacts(); }
    const std::string &name() const { return plan_.name; }
    uint64_t sent() const { return fed_.sent; }
    const std::string &trouble() const { return trouble_; }
    ChannelReport report(int number) const;

private:
    size_t file_at(int64_t position_us) const;
    bool open_file(size_t number);
    bool hold_from(size_t number);
    bool take(Input::Read result);
    bool hold(Input::Read result) { return take(result) || hold_from(file_ + 1); }
    void times_to_places();
    bool stop(const std::string &why);
    std::vector<SoundBlock> take_sound(int64_t until_us);
    bool hand_over(const AccessUnit &unit, bool double_rate) const;
    int64_t frame_us() const;

    const int decoder_;
    const TrackPlan plan_;
    std::unique_ptr<Input> input_;  /* of the file at hand */
    size_t file_ = 0;               /* its number          */
    std::optional<Codec> made_for_; /* what the decoder takes; nothing = whoever plays saw to it */
    AccessUnit next_;               /* its times are places of the track */
    AccessUnit last_key_;
    int64_t delivered_us_ =
        INT64_MIN; /* place of the picture delivered last; INT64_MIN = none is on the screen */
    bool dark_ = false;
    bool opened_ = false;
    bool at_end_ = true;
    FeedCounters fed_;
    std::optional<host::DecoderCounters> counted_from_; /* nothing = decoders do not tell */
    host::DecoderCounters counted_;
    std::string trouble_;
};

} // namespace nvrec
