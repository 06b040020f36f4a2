/* disk_writer_thread.cpp - see disk_writer.h: its thread, and the messages of that. */
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "record/disk_writer_state.h"

namespace nvrec
{
namespace
{

constexpr const char *kTaken = "another recorder records into it";

/* "10.0 s" */
std::string seconds_text(Clock::duration time)
{
    const auto tenths = std::chrono::duration_cast<std::chrono::milliseconds>(time).count() / 100;
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
}

} // namespace

void DiskWriter::State::add(Job job)
{
    const std::scoped_lock guard(lock);
    queued_bytes += job.bytes;
    queue.push_back(std::move(job));
    work.notify();
}

void DiskWriter::State::began_call()
{
    const std::scoped_lock guard(lock);
    call_began = Clock::now();
}

void DiskWriter::State::ended_call()
{
    const std::scoped_lock guard(lock);
    const Clock::duration took = Clock::now() - *call_began;
    call_began.reset();
    ++calls;
    if (took < kDiskHangsAfter) return;
    lines.push_back("the disk answers again, after " + seconds_text(took));
}

bool DiskWriter::State::is_abandoned() const
{
    const std::scoped_lock guard(lock);
    return abandoned;
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
        if (trouble != state) trouble_since = unwell_since.value_or(Clock::now());
        trouble = state;
        trouble_text = text;
    }
    tell(options.on_news);
}

/* The disk has refused data of a recording. */
void DiskWriter::State::unwell()
{
    takes_since_.reset();
    const std::scoped_lock guard(lock);
    if (!unwell_since) unwell_since = Clock::now();
}

/* The disk has taken data of a recording. */
void DiskWriter::State::took_some()
{
    if (sync_failed_) return;
    const Clock::time_point now = Clock::now();
    bool was_full = false;
    std::optional<Clock::duration> refused;
    {
        const std::scoped_lock guard(lock);
        was_full = trouble == DiskState::kFull;
        if (unwell_since) {
            if (!takes_since_) takes_since_ = now;
            if (now - *takes_since_ >= kWellAfter) {
                refused = *takes_since_ - *unwell_since;
                unwell_since.reset();
                takes_since_.reset();
                ++recoveries;
            }
        }
    }
    if (refused) say("the disk takes recordings again, after " + seconds_text(*refused));
    if (refused || !was_full) set_trouble(DiskState::kGood, "");
}

void DiskWriter::State::run()
{
    prepare();
    std::unique_lock guard(lock);
    done.notify(); /* wakes callers that began to wait while the directory was made */
    while (!abandoned) {
        Clock::time_point sync_at = Clock::time_point::max();
        for (const auto &open : open_) {
            if (open->unsynced_since) sync_at = std::min(sync_at, *open->unsynced_since + kSyncPeriod);
        }
        work.wait_until(guard, sync_at, [this] { return !queue.empty() || closing; });
        if (queue.empty() && closing) break;
        if (!queue.empty()) {
            Job &job = queue.front(); /* pushing to a deque does not move its front */
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
    unwell();
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
    Content &written = open->written;
    const int64_t before = written.size;
    for (const FileChunk::Extent &extent : job.chunk.extents)
        written.size = std::max(written.size, extent.at + static_cast<int64_t>(extent.bytes.size()));
    written.pictures += job.chunk.pictures;
    written.sounds += job.chunk.sounds;
    written.until_us = job.until_us;
    if (!open->unsynced_since) open->unsynced_since = Clock::now();
    tally.pictures += job.chunk.pictures;
    tally.sounds += job.chunk.sounds;
    tally.bytes += static_cast<uint64_t>(written.size - before);
    took_some();
    tell(options.events.grown, open->path, job.until_us, static_cast<uint64_t>(written.size));
}

} // namespace nvrec
