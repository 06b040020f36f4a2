/*
 * disk_writer_files.cpp - see disk_writer.h: the life of a file, from its creation to its end.
 *
 * A file is synced once a second, both its contents and its name. When that fails, the kernel has given up
 * the bytes and does not report it a second time: a later sync may succeed without them. So the file is cut
 * back to its last synced length, and given up.
 */
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "record/disk_writer_state.h"

namespace nvrec
{
namespace
{

constexpr int kMostNames = 1000;
constexpr uint64_t kAmpleRoom_bytes = 8u << 20; /* that is asked for first: not for every piece anew */
constexpr uint64_t kNameRoom_bytes = 64u << 10; /* of a small disk: a name needs room, too           */
constexpr int kMostRecycled = 8; /* times that it is asked for; behind the first a recording goes each time */

bool is_full(int error)
{
    return error == ENOSPC || error == EDQUOT;
}

std::string not_on_the_disk(int error)
{
    return std::string("what was written last may not be on the disk: ") + std::strerror(error);
}

} // namespace

/* Under a name that is not taken. */
int DiskWriter::State::create(Open &open, std::string *problem)
{
    const OutputFile &file = *open.file;
    const std::string stem = options.directory + "/" + file.name;
    open.path = stem + file.ending;
    *problem = hold_directory();
    if (!problem->empty()) return EBUSY;
    int error = EEXIST;
    for (int number = 2; error == EEXIST && number <= kMostNames; ++number) {
        error = timed([&] { return options.files->create(open.path, &open.descriptor); });
        if (error == EEXIST) open.path = stem + "-" + std::to_string(number) + file.ending;
    }
    if (error == ENOENT) { /* a directory that comes in its place is another one to hold */
        if (directory_ >= 0) options.files->close(std::exchange(directory_, -1));
        is_held_ = false;
    }
    bool goes_on = options.free_space != nullptr;
    for (int tries = 0; is_full(error) && tries < kMostRecycled && goes_on; ++tries) {
        goes_on = make_room(kNameRoom_bytes, tries > 0);
        error = timed([&] { return options.files->create(open.path, &open.descriptor); });
    }
    return error;
}

/* While the disk is full, make room as long as there is something to delete. The write is tried also when
 * less room was made than was asked for: it may be enough. */
int DiskWriter::State::write_with_room(Open &open, const Job &job)
{
    int error = write(open, job.chunk);
    bool goes_on = options.free_space != nullptr;
    for (int tries = 0; is_full(error) && tries < kMostRecycled && goes_on; ++tries) {
        goes_on = make_room(job.bytes, tries > 0);
        error = write(open, job.chunk);
    }
    return error;
}

/* Ask for ample room, and when that cannot be made, for as much as is needed now. */
bool DiskWriter::State::make_room(uint64_t bytes, bool in_vain)
{
    if (!options.free_space) return false;
    for (const uint64_t wanted : {std::max(bytes, kAmpleRoom_bytes), std::max(bytes, kNameRoom_bytes)}) {
        if (is_abandoned()) return false;
        if (timed([&] { return options.free_space(wanted, in_vain); })) return true;
        if (wanted == bytes) return false;
    }
    return false;
}

int DiskWriter::State::write(const Open &open, const FileChunk &chunk)
{
    for (const FileChunk::Extent &extent : chunk.extents) {
        const int error =
            timed([&] { return options.files->write(open.descriptor, extent.bytes, extent.at); });
        if (error != 0) return error;
    }
    return 0;
}

/* Keep the file if it can be played, else delete it. */
void DiskWriter::State::give_up(Open &open, int error, const std::string &problem)
{
    const bool gone = open.descriptor >= 0 && error == ENOENT;
    if (open.descriptor >= 0) {
        timed([&] { return options.files->truncate(open.descriptor, open.written.size); });
        if (gone)
            fall_back(open, {});
        else
            sync(open);
    }
    std::string reason = problem.empty() ? std::strerror(error) : problem;
    if (gone) reason = "it was deleted while it was written";
    open.file->give_up({is_full(error) ? OutputTrouble::kFull
                        : gone         ? OutputTrouble::kGone
                                       : OutputTrouble::kRefused,
                        open.path, reason, open.written.until_us});
    if (!gone) unwell();
    set_trouble(is_full(error) ? DiskState::kFull : DiskState::kFailing,
                is_full(error) ? "the disk is full" : reason);
    tell(options.on_news);
    let_go(open);
}

void DiskWriter::State::end(const OutputFile &file)
{
    if (Open *open = find(file)) close(*open);
}

void DiskWriter::State::close(Open &open)
{
    const int error = sync(open);
    if (error != 0)
        give_up(open, error, not_on_the_disk(error));
    else
        let_go(open);
}

/* Nothing is written into it any more, for whatever reason. */
void DiskWriter::State::let_go(Open &open)
{
    OutputFile &file = *open.file;
    const OutputTrouble before = file.trouble().kind;
    if (open.descriptor >= 0) {
        const int error = timed([&] { return options.files->close(open.descriptor); });
        if (error != 0 && before == OutputTrouble::kNone) {
            file.give_up({OutputTrouble::kRefused, open.path, not_on_the_disk(error), open.written.until_us});
            unwell();
            set_trouble(DiskState::kFailing, std::strerror(error));
        }
        const bool is_kept = open.written.pictures > 0;
        if (is_kept) {
            tell(options.events.ended, open.path, open.written.until_us,
                 static_cast<uint64_t>(open.written.size));
        } else {
            fall_back(open, {});
            if (before != OutputTrouble::kGone) timed([&] { return options.files->remove(open.path); });
            tell(options.events.removed, open.path);
        }
        file.tally->end(open.path, is_kept);
    }
    file.closed = true;
    std::erase_if(open_, [&open](const auto &other) { return other.get() == &open; });
}

/* Only so much of the file counts as written. */
void DiskWriter::State::fall_back(Open &open, const Content &to)
{
    OutputTally &tally = *open.file->tally;
    tally.pictures -= open.written.pictures - to.pictures;
    tally.sounds -= open.written.sounds - to.sounds;
    tally.bytes -= static_cast<uint64_t>(open.written.size - to.size);
    open.written = to;
}

void DiskWriter::State::sync_old()
{
    const Clock::time_point now = Clock::now();
    for (size_t i = 0; i < open_.size();) {
        Open &open = *open_[i];
        const bool is_due = open.unsynced_since && now - *open.unsynced_since >= kSyncPeriod;
        const int error = is_due ? sync(open) : 0;
        if (error == 0)
            ++i;
        else
            give_up(open, error, not_on_the_disk(error)); /* and off the list */
    }
}

/* @return 0 = all of it outlasts a power cut; else the file is cut back to what was synced before */
int DiskWriter::State::sync(Open &open)
{
    if (!open.unsynced_since) return 0;
    open.unsynced_since.reset();
    FileSystem &files = *options.files;
    int error = timed([&] { return files.sync(open.descriptor); });
    if (error == 0 && !open.name_is_synced) error = sync_names();
    if (error != 0) {
        sync_failed_ = true;
        fall_back(open, open.synced);
        timed([&] { return files.truncate(open.descriptor, open.written.size); });
        if (is_full(error))
            make_room(kNameRoom_bytes, true); /* over a network a full disk may say so only here */
        return error;
    }
    open.synced = open.written;
    if (std::exchange(sync_failed_, false)) set_trouble(DiskState::kGood, "");
    return 0;
}

int DiskWriter::State::sync_names()
{
    const int error = timed([&] { return options.files->sync_directory(options.directory); });
    for (const auto &open : open_)
        open->name_is_synced |= error == 0 && open->descriptor >= 0;
    return error;
}

} // namespace nvrec
