/*
 * playback_track.h - one recorded file on its way to a playback decoder.
 *
 * A track holds the file's next picture until it is due, and hands it over in the library's playback
 * buffer. Places in the file are microseconds from its first picture on.
 *
 * Threads: one at a time; Playback sees to it.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "camera/input.h"
#include "host/host.h"
#include "wall/report.h"

namespace nvrec
{

class PlaybackTrack
{
public:
    /** @param decoder  the decoder channel and display port it plays on */
    PlaybackTrack(std::string address, int decoder) : decoder_(decoder), input_(std::move(address)) {}

    /** Open the file and hold its first key frame. False: the reason is in trouble(). */
    bool open();

    /** Hold the last key frame at or before a place. False: the track is at its end. */
    bool seek(int64_t position_us);

    bool opened() const { return opened_; }
    bool at_end() const { return at_end_; }
    int decoder() const { return decoder_; }
    const AccessUnit &next() const { return next_; } /* unless at_end() */

    /** Deliver the held picture and hold the next one. @param double_rate  ask for the fast display. */
    void deliver(bool double_rate);

    /** Hold the next key frame instead of what is held now. */
    void skip_to_key();

    /** Drop what the decoder and its display port hold: the screen goes dark there. */
    void flush() const;

    /** Deliver the sound that is due up to a place. */
    void deliver_sound(int64_t until_us);

    /** Let the sound up to a place go by unheard. */
    void drop_sound(int64_t until_us) { input_.take_sound(until_us); }

    /** Begin and end to count what is decoded on this channel for the file. */
    void begin_count();
    host::DecoderCounters end_count();

    /** Wait until the decoder has handed on what it was sent. */
    void wait_for_decoder() const;

    StreamFacts facts() const { return input_.facts(); }
    uint64_t sent() const { return fed_.sent; }
    const std::string &trouble() const { return trouble_; }
    ChannelReport report(int number) const;

private:
    bool hold(Input::Read result);
    bool stop(const std::string &why);

    const int decoder_;
    Input input_;
    AccessUnit next_;
    bool opened_ = false;
    bool at_end_ = true;
    FeedCounters fed_;
    std::optional<host::DecoderCounters> counted_from_; /* nothing = decoders do not tell */
    host::DecoderCounters counted_;
    std::string trouble_;
};

} // namespace nvrec
