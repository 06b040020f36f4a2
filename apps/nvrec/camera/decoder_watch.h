/*
 * decoder_watch.h - tells whether a decoder makes pictures of the frames that it is sent.
 *
 * The library takes every frame that is well formed, and a decoder that cannot decode a frame does not report
 * it: the pane would wait for the next key frame for ever. So the stream counts as undecodable when no
 * picture was decoded between a key frame and the next one.
 *
 * Threads: any; it has a lock of its own.
 */
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>

#include "camera/camera_status.h"
#include "host/clock.h"

namespace nvrec
{

class DecoderWatch
{
public:
    /** A key frame has been sent. @param decoded  pictures of the decoder until now */
    void key_sent(uint64_t decoded, Clock::time_point now)
    {
        const std::scoped_lock guard(lock_);
        if (decoded_ == decoded) {
            barren_ = true;
            return;
        }
        decoded_ = decoded;
        since_ = now;
        barren_ = false;
    }

    /** The decoder was flushed, or its channel has no pane: the next key frame is the first that counts. */
    void begin_again()
    {
        const std::scoped_lock guard(lock_);
        decoded_.reset();
        barren_ = false;
    }

    /** Since when the decoder makes no pictures; nothing = it makes some, or that is not known yet. */
    std::optional<Clock::time_point> barren_since(uint64_t decoded, Clock::time_point now) const
    {
        const std::scoped_lock guard(lock_);
        const bool barren = barren_ && decoded_ == decoded && now - since_ >= kSilentAfter;
        if (barren) {
            told_ = decoded;
        } else if (told_ && *told_ != decoded) {
            told_.reset();
            well_since_ = now;
        }
        return barren ? std::optional(since_) : std::nullopt;
    }

    /** When the first picture behind such a time was seen by barren_since(); nothing = there was none. */
    std::optional<Clock::time_point> well_since() const
    {
        const std::scoped_lock guard(lock_);
        return well_since_;
    }

private:
    mutable std::mutex lock_;              /* guards what follows */
    std::optional<uint64_t> decoded_;      /* pictures when the first key frame since then was sent */
    Clock::time_point since_;              /* when that was                                         */
    bool barren_ = false;                  /* another key frame found as many                       */
    mutable std::optional<uint64_t> told_; /* pictures when barren_since() last said that it is so */
    mutable std::optional<Clock::time_point> well_since_;
};

} // namespace nvrec
