/*
 * distance.h - where a reader stands relative to the writer, and whether that is safe.
 *
 * Every judgement of one call starts from one look at cur_index, so that it is consistent in
 * itself while the writer goes on. All differences are unsigned and wrap around at 2^32.
 */
#pragma once

#include "stream/pool.h"

namespace nvrhal
{

/** The newest entry as one look found it. */
struct NewestEntry {
    uint32_t index;
    StreamIndexEntry entry;
};

/** Whole words of an entry that the writer may be about to rewrite. */
StreamIndexEntry load_entry(const StreamIndexEntry &entry);

/** Look at the newest entry. False when there is none. */
bool load_newest(const StreamChannel &channel, NewestEntry *newest);

/** Null, foreign and damaged readers are refused. */
bool reads_channel(const StreamReader *reader, const StreamChannel &channel);

/** Nothing was written since the reader's last delivery. */
bool is_up_to_date(const StreamReader &reader, const NewestEntry &newest);

/** Bytes between the writer and a position, negative once it is overwritten. */
int32_t free_bytes(const StreamChannel &channel, const NewestEntry &newest, uint32_t offset, uint32_t lap);

/** An entry within one lap of the writer and at a safe distance ahead of it. */
bool is_safe_entry(const StreamChannel &channel, const NewestEntry &newest, const StreamIndexEntry &entry);

/** The reader may go on with the frame after its last one. */
bool is_in_step(const StreamChannel &channel, const NewestEntry &newest, const StreamReader &reader);

/** Frames written after the one that the reader got last. */
uint32_t backlog_frames(const StreamChannel &channel, const NewestEntry &newest, const StreamReader &reader);

/** First entry at which a search for an old but safe frame starts. */
uint32_t search_start(const StreamChannel &channel, const NewestEntry &newest);

/** The oldest safe key frame, where an overrun reader goes on. False when there is none ahead of it. */
bool find_safe_key_frame(const StreamChannel &channel, const NewestEntry &newest, const StreamReader &reader,
                         uint32_t *found);

} // namespace nvrhal
