/*
 * playback_track.h - sends the recordings of one camera, file after file, to a playback decoder.
 *
 * A track holds its next picture until it is due, and hands it over in the library's playback buffer.
 * Places in a track are microseconds from its beginning on; each file begins at one of them. While nothing is
 * recorded the track has a gap: a little after the last picture before it the screen goes dark.
 *
 * A decoder holds pictures back when a stream shows them in another order than it decodes them. A picture
 * comes out after as many further pictures have gone in: see push_out().
 *
 * The files of a camera may have different codecs, if its settings were changed. A decoder is made for one
 * codec; decoder_fits() tells whether it takes the held picture, and make_decoder_fit() makes it anew.
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
    std::string name; /* of the camera; empty = it has none */
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

    /** Open the file of a place, so that facts() are those of the pictures there. seek() has to follow. */
    void turn_to(int64_t position_us);

    /**
     * Hold the last key frame at or before a place. If there is none, or the file of the place cannot be
     * read, hold the next one. False: the track is at its end.
     */
    bool seek(int64_t position_us);

    /** Whether a place lies behind the last picture. This moves the track: seek() has to follow. */
    bool ends_before(int64_t position_us);

    /** From when on the screen is to be dark, for the present gap or the next one; INT64_MAX = none. */
    int64_t dark_from_us() const;
    /** The screen was made dark for the gap. */
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
     * Deliver what the decoder needs to give out the picture delivered last: the pictures behind it, or at
     * the end of the track its last key frame again. Nothing is needed when pictures are decoded in the order
     * of showing.
     */
    void push_out(bool double_rate);

    /** Drop the pictures in the decoder and its display port: the pane goes dark. */
    void flush() const;

    /** Deliver the sound that is due up to a place. */
    void deliver_sound(int64_t until_us);

    /** Skip the sound up to a place. */
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
    std::unique_ptr<Input> input_;  /* of the file at hand                                              */
    size_t file_ = 0;               /* its number                                                       */
    std::optional<Codec> made_for_; /* what the decoder was made for; nothing = the player sees to that */
    AccessUnit next_;               /* its times are places of the track                                */
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
