/* disk_writer_thread.cpp - see disk_writer.h: what its thread does, and what it says of that. */
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "record/disk_writer_state.h"

namespace nvrec
{
namespace
{

constexpr auto kSyncPeriod = std::chrono::seconds(1);
constexpr const char *kTaken = "another recorder records into it";
constexpr int kMostNames = 1000;
constexpr uint64_t kLeastRoom_bytes = 8u << 20; /* that is asked for: a name needs room, too     */
constexpr int kMostRecycled = 8; /* times that it is asked for; behind the first a recording goes each time */

bool is_full(int error)
{
    return error == ENOSPC || error == EDQUOT;
}

} // namespace

void DiskWriter::State::add(Job job)
{
    const std::scoped_lock guard(lock);
    queued_bytes += job.bytes;
    queue.push_back(std::move(job));
    work.notify();
}

/* A call to the disk, which may not come back. */
template <typename Call> auto DiskWriter::State::timed(Call call)
{
    {
        const std::scoped_lock guard(lock);
        call_began = Clock::now();
    }
    const auto result = call();
    const std::scoped_lock guard(lock);
    const Clock::duration took = Clock::now() - *call_began;
    call_began.reset();
    ++calls;
    if (took >= kDiskHangsAfter) {
        const auto tenths = std::chrono::duration_cast<std::chrono::milliseconds>(took).count() / 100;
        lines.push_back("the disk answers again, after " + std::to_string(tenths / 10) + "." +
                        std::to_string(tenths % 10) + " s");
    }
    return result;
}

template <typename Hook, typename... Arguments>
void DiskWriter::State::tell(const Hook &hook, Arguments &&...arguments)
{
    const std::scoped_lock guard(hooks_lock);
    {
        const std::scoped_lock state_guard(lock);
        if (abandoned) return;
    }
    if (hook) hook(std::forward<Arguments>(arguments)...);
}

void DiskWriter::State::say(const std::string &line)
{
    {
        const std::scoped_lock guard(lock);
        lines.push_back(line);
    }
    tell(options.on_news);
}

void DiskWriter::State::set_trouble(DiskState state, const std::string &text)
{
    {
        const std::scoped_lock guard(lock);
        if (trouble == state && trouble_text == text) return;
        if (trouble != state) trouble_since = Clock::now();
        trouble = state;
        trouble_text = text;
    }
    tell(options.on_news);
}

void DiskWriter::State::run()
{
    prepare();
    std::unique_lock guard(lock);
    done.notify(); /* to whoever began to wait while the directory was made */
    while (!abandoned) {
        Clock::time_point sync_at = Clock::time_point::max();
        for (const auto &open : open_) {
            if (open->unsynced_since) sync_at = std::min(sync_at, *open->unsynced_since + kSyncPeriod);
        }
        work.wait_until(guard, sync_at, [this] { return !queue.empty() || closing; });
        if (queue.empty() && closing) break;
        if (!queue.empty()) {
            Job &job = queue.front(); /* a deque's front stays where it is while others push */
            guard.unlock();
            deal_with(job);
            guard.lock();
            queued_bytes -= queue.front().bytes;
            queue.pop_front();
            room.notify();
        }
        guard.unlock();
        sync_old();
        guard.lock();
        done.notify();
    }
    guard.unlock();
    while (!open_.empty())
        close(*open_.front());
    if (directory_ >= 0) options.files->close(directory_);
    guard.lock();
    exited = true;
    done.notify();
}

void DiskWriter::State::prepare()
{
    FileSystem &files = *options.files;
    const int error = timed([&] { return files.make_directories(options.directory); });
    const std::string problem = error != 0 ? std::strerror(error) : hold_directory();
    if (problem.empty()) return;
    {
        const std::scoped_lock guard(lock);
        directory_trouble = problem;
    }
    set_trouble(DiskState::kFailing, problem);
    say("nothing is recorded: " + options.directory + ": " + problem);
}

/* @return what is in the way; empty = it is held. */
std::string DiskWriter::State::hold_directory()
{
    if (is_held_ || is_abandoned()) return {};
    std::string problem;
    if (options.hold_directory) {
        problem = timed([&] { return options.hold_directory(); });
    } else {
        FileSystem &files = *options.files;
        const int error = timed([&] { return files.lock_directory(options.directory, &directory_); });
        if (error != 0) problem = error == EWOULDBLOCK ? kTaken : std::strerror(error);
    }
    is_held_ = problem.empty();
    return problem;
}

DiskWriter::State::Open *DiskWriter::State::find(const OutputFile &file)
{
    for (const auto &open : open_) {
        if (open->file.get() == &file) return open.get();
    }
    return nullptr;
}

void DiskWriter::State::deal_with(Job &job)
{
    if (job.end)
        end(*job.file);
    else if (job.file->trouble().kind == OutputTrouble::kNone)
        append(job);
}

void DiskWriter::State::append(Job &job)
{
    OutputTally &tally = *job.file->tally;
    Open *open = find(*job.file);
    if (!open) {
        open_.push_back(std::make_unique<Open>());
        open = open_.back().get();
        open->file = job.file;
        std::string problem;
        if (const int error = create(*open, &problem)) {
            give_up(*open, error, problem);
            return;
        }
        tally.begin(open->path);
        tell(options.events.begun, open->path, *open->file);
    }
    int error = write_with_room(*open, job);
    if (error == 0 && !timed([&] { return options.files->has_name(open->descriptor); })) error = ENOENT;
    if (error != 0) {
        give_up(*open, error, "");
        return;
    }
    const int64_t before = open->size;
    for (const FileChunk::Extent &extent : job.chunk.extents)
        open->size = std::max(open->size, extent.at + static_cast<int64_t>(extent.bytes.size()));
    open->pictures += job.chunk.pictures;
    open->sounds += job.chunk.sounds;
    open->until_us = job.until_us;
    if (!open->unsynced_since) open->unsynced_since = Clock::now();
    tally.pictures += job.chunk.pictures;
    tally.sounds += job.chunk.sounds;
    tally.bytes += static_cast<uint64_t>(open->size - before);
    set_trouble(DiskState::kGood, "");
    tell(options.events.grown, open->path, job.until_us, static_cast<uint64_t>(open->size));
}

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
    for (int tries = 0; is_full(error) && tries < kMostRecycled && make_room(0, tries > 0); ++tries)
        error = timed([&] { return options.files->create(open.path, &open.descriptor); });
    return error;
}

/* While the disk is full, room is made as long as there is some to make. */
int DiskWriter::State::write_with_room(Open &open, const Job &job)
{
    int error = write(open, job.chunk);
    for (int tries = 0; is_full(error) && tries < kMostRecycled && make_room(job.bytes, tries > 0); ++tries)
        error = write(open, job.chunk);
    return error;
}

bool DiskWriter::State::is_abandoned() const
{
    const std::scoped_lock guard(lock);
    return abandoned;
}

bool DiskWriter::State::make_room(uint64_t bytes, bool in_vain)
{
    if (!options.free_space || is_abandoned()) return false;
    return timed([&] { return options.free_space(std::max(bytes, kLeastRoom_bytes), in_vain); });
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

/* What is in it can be played, or it goes. */
void DiskWriter::State::give_up(Open &open, int error, const std::string &problem)
{
    FileSystem &files = *options.files;
    OutputTally &tally = *open.file->tally;
    const bool gone = open.descriptor >= 0 && error == ENOENT;
    if (open.descriptor >= 0) {
        timed([&] { return files.truncate(open.descriptor, open.size); });
        if (gone || open.pictures == 0) {
            tally.pictures -= open.pictures;
            tally.sounds -= open.sounds;
            tally.bytes -= static_cast<uint64_t>(open.size);
        }
        if (!gone && open.pictures == 0) timed([&] { return files.remove(open.path); });
        if (gone || open.pictures == 0) tell(options.events.removed, open.path);
        tally.end(open.path, !gone && open.pictures > 0);
    }
    std::string reason = problem.empty() ? std::strerror(error) : problem;
    if (gone) reason = "it was deleted while it was written";
    open.file->give_up({is_full(error) ? OutputTrouble::kFull
                        : gone         ? OutputTrouble::kGone
                                       : OutputTrouble::kRefused,
                        open.path, reason});
    set_trouble(is_full(error) ? DiskState::kFull : DiskState::kFailing,
                is_full(error) ? "the disk is full" : reason);
    tell(options.on_news);
    close(open);
}

void DiskWriter::State::end(const OutputFile &file)
{
    if (Open *open = find(file)) close(*open);
}

void DiskWriter::State::close(Open &open)
{
    if (open.descriptor >= 0) {
        if (open.unsynced_since) sync(open);
        timed([&] { return options.files->close(open.descriptor); });
        if (open.file->trouble().kind == OutputTrouble::kNone && open.pictures == 0)
            remove_empty(open);
        else if (open.pictures > 0 && open.file->trouble().kind != OutputTrouble::kGone)
            tell(options.events.ended, open.path, open.until_us, static_cast<uint64_t>(open.size));
        open.file->tally->end(open.path, true);
    }
    open.file->closed = true;
    std::erase_if(open_, [&open](const auto &other) { return other.get() == &open; });
}

void DiskWriter::State::remove_empty(const Open &open)
{
    timed([&] { return options.files->remove(open.path); });
    open.file->tally->end(open.path, false);
    open.file->tally->bytes -= static_cast<uint64_t>(open.size);
    tell(options.events.removed, open.path);
}

void DiskWriter::State::sync_old()
{
    const Clock::time_point now = Clock::now();
    for (const auto &open : open_) {
        if (open->unsynced_since && now - *open->unsynced_since >= kSyncPeriod) sync(*open);
    }
}

void DiskWriter::State::sync(Open &open)
{
    open.unsynced_since.reset();
    const int error = timed([&] { return options.files->sync(open.descriptor); });
    if (error == 0) return;
    set_trouble(DiskState::kFailing, std::strerror(error));
    say(open.path + ": what was written may not be on the disk: " + std::strerror(error));
}

} // namespace nvrec
