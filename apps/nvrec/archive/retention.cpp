/* retention.cpp - see retention.h. */
#include "archive/retention.h"

#include <cerrno>
#include <cstring>

#include <sys/statvfs.h>
#include <unistd.h>

#include "archive/index_in_memory.h"

namespace nvrec
{
namespace
{

constexpr int64_t kAgeSecond_us = 1'000'000;
constexpr size_t kMostPassedOver = 16;
constexpr const char *kInMemory = "the index cannot be opened; what belongs into it is kept in memory";
constexpr const char *kPinsUnknown =
    "nothing is deleted to make room: the index cannot be read, and what is pinned stands in it alone";

} // namespace

int64_t free_bytes_of(const std::string &directory)
{
    struct statvfs facts = {};
    if (statvfs(directory.c_str(), &facts) != 0) return -1;
    return static_cast<int64_t>(facts.f_bavail) * static_cast<int64_t>(facts.f_frsize);
}

void Recycler::look()
{
    state_.total_bytes = index_.total_bytes();
    state_.free_bytes = free_bytes_of(index_.directory());
    const auto first = index_.segment_after({{}, "", {}}, INT64_MIN);
    state_.oldest_us = first ? first->from_us : 0;
}

bool Recycler::knows_pins()
{
    if (!index_.in_memory() || bring_pins(&index_)) return true;
    state_.trouble = kPinsUnknown;
    return false;
}

/* @return nothing = no file may be deleted, or none of the oldest could be */
std::optional<SegmentRow> Recycler::delete_oldest_file(const char *why)
{
    if (!knows_pins()) return std::nullopt;
    std::optional<SegmentRow> segment;
    while (passed_over_.size() < kMostPassedOver) {
        segment = index_.oldest_unpinned(passed_over_);
        /* Delete the file before its entry. If the process ends in between, the next start drops an entry
         * without a file; a file without an entry would be taken in again. */
        if (!segment || ::unlink(segment->path.c_str()) == 0 || errno == ENOENT) break;
        if (passed_over_.empty())
            not_deleted_ = segment->path + " cannot be deleted: " + std::strerror(errno);
        passed_over_.push_back(segment->path);
        segment.reset();
    }
    if (!passed_over_.empty())
        state_.trouble = std::string(why) + ", and " + not_deleted_;
    else if (!segment)
        state_.trouble =
            std::string(why) + ", and nothing may be deleted: all of it is pinned or being written";
    return segment;
}

/* @return false = nothing was deleted */
bool Recycler::remove_oldest(const char *why)
{
    const auto segment = delete_oldest_file(why);
    if (!segment) return false;
    if (!index_.remove_segment(segment->path)) {
        state_.trouble = "the index: " + index_.error();
        if (passed_over_.empty()) not_deleted_ = segment->path + " stays in the index: " + index_.error();
        passed_over_.push_back(segment->path); /* its file is gone: go on with the next one */
    }
    ++state_.deleted;
    state_.deleted_bytes += segment->bytes;
    /* The oldest file is deleted first, so from before its end only recordings that are kept are left.
     * Gaps and events that the index cannot delete now, it deletes with the next file. */
    index_.forget_before(segment->to_us);
    if (told_) told_(*segment);
    return true;
}

void Recycler::apply(int64_t now_us, int most_files)
{
    state_.trouble = index_.in_memory() ? kInMemory : "";
    passed_over_.clear();
    look();
    if (!knows_pins()) return;
    for (int left = most_files; left > 0; --left) {
        const char *why = nullptr;
        if (options_.most_bytes > 0 && state_.total_bytes > options_.most_bytes) {
            why = "recordings are larger than they may be";
        } else if (options_.least_free > 0 && state_.free_bytes >= 0 &&
                   state_.free_bytes < options_.least_free) {
            why = "less is free on the disk than there is to be";
        } else if (options_.most_age_s > 0) {
            const auto oldest = index_.oldest_unpinned(passed_over_); /* pinned ones may be of any age */
            if (oldest && oldest->to_us < now_us - options_.most_age_s * kAgeSecond_us)
                why = "recordings are older than they may be";
        }
        if (!why || !remove_oldest(why)) break;
        look();
    }
    /* This also deletes events of cameras that are not recorded. */
    if (options_.most_age_s > 0) index_.forget_before(now_us - options_.most_age_s * kAgeSecond_us);
}

/* Where nothing may be deleted at all, make_room() finds out why. */
bool Recycler::may_make_room(int64_t bytes)
{
    look();
    const int64_t to_go = index_.unpinned_bytes();
    return to_go == 0 || state_.free_bytes < 0 || state_.free_bytes + to_go >= bytes;
}

bool Recycler::make_room(int64_t bytes, bool one_goes)
{
    state_.trouble = index_.in_memory() ? kInMemory : "";
    if (one_goes && !remove_oldest("the disk is full")) return false;
    look();
    while (state_.free_bytes >= 0 && state_.free_bytes < bytes) {
        if (!remove_oldest("the disk is full")) return false;
        look();
    }
    return state_.free_bytes < 0 ? one_goes : state_.free_bytes >= bytes;
}

} // namespace nvrec
