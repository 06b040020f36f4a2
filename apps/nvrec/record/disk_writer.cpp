/* disk_writer.cpp - see disk_writer.h. */
#include "record/disk_writer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <thread>
#include <utility>

#include "record/disk_writer_state.h"

namespace nvrec
{
namespace
{

constexpr auto kUnansweredLimit = std::chrono::seconds(20); /* disks that wake up take ten     */
constexpr auto kLastPatience = std::chrono::milliseconds(1000);

} // namespace

DiskWriter::DiskWriter(DiskWriterOptions options) : state_(std::make_shared<State>())
{
    state_->options = std::move(options);
    thread_ = std::thread([state = state_] { state->run(); });
}

DiskWriter::~DiskWriter()
{
    Leftover ignored;
    finish(&ignored);
}

void DiskWriter::append(const std::shared_ptr<OutputFile> &file, FileChunk chunk, int64_t until_us)
{
    const uint64_t bytes = chunk.bytes();
    state_->add({file, std::move(chunk), bytes, until_us, false, Clock::now()});
}

void DiskWriter::end(const std::shared_ptr<OutputFile> &file)
{
    state_->add({file, {}, 0, 0, true, Clock::now()});
}

bool DiskWriter::wait_for_room(const std::function<bool()> &given_up)
{
    std::unique_lock guard(state_->lock);
    const auto has_room = [this] { return state_->queued_bytes < state_->options.most_queued_bytes; };
    state_->room.wait(guard, [&] { return has_room() || given_up(); });
    return has_room();
}

void DiskWriter::wake_waiting()
{
    const std::scoped_lock guard(state_->lock);
    state_->room.notify();
}

void DiskWriter::wait_until_idle()
{
    std::unique_lock guard(state_->lock);
    state_->done.wait(guard, [this] { return state_->idle(); });
}

bool DiskWriter::finish(Leftover *leftover)
{
    if (!thread_.joinable()) return true;
    State &state = *state_;
    {
        std::unique_lock guard(state.lock);
        state.closing = true;
        state.work.notify();
        const Clock::time_point began = Clock::now();
        uint64_t seen = state.calls;
        Clock::time_point moved_at = began;
        while (!state.exited) {
            state.done.wait_until(guard, moved_at + kLastPatience, [&] { return state.exited; });
            const Clock::time_point now = Clock::now();
            if (std::exchange(seen, state.calls) != state.calls) moved_at = now;
            if (now - moved_at >= kLastPatience || now - began >= kLongestDiskEnd) break;
        }
        if (!state.exited) {
            state.abandoned = true;
            *leftover = state.leftover();
        }
    }
    if (state.exited) {
        thread_.join();
        return true;
    }
    /* After this no hook is called any more. The thread may go on: it shares ownership of what it uses. */
    const std::scoped_lock guard(state.hooks_lock);
    thread_.detach();
    return false;
}

DiskStatus DiskWriter::status() const
{
    const std::scoped_lock guard(state_->lock);
    return state_->status(Clock::now());
}

double DiskWriter::lag_s(const OutputFile &file) const
{
    const std::scoped_lock guard(state_->lock);
    const Clock::time_point since = state_->waits_since(file);
    if (since == Clock::time_point::max()) return 0;
    return std::chrono::duration<double>(Clock::now() - since).count();
}

std::string DiskWriter::directory_trouble() const
{
    const std::scoped_lock guard(state_->lock);
    return state_->directory_trouble;
}

uint64_t DiskWriter::recoveries() const
{
    const std::scoped_lock guard(state_->lock);
    return state_->recoveries;
}

std::vector<std::string> DiskWriter::take_lines()
{
    const std::scoped_lock guard(state_->lock);
    return std::exchange(state_->lines, {});
}

Clock::time_point DiskWriter::heartbeat_deadline() const
{
    const std::scoped_lock guard(state_->lock);
    if (!state_->call_began) return Clock::time_point::max();
    return *state_->call_began + kUnansweredLimit;
}

DiskStatus DiskWriter::State::status(Clock::time_point now) const
{
    DiskStatus status;
    status.queued_bytes = queued_bytes;
    status.queue_limit_bytes = options.most_queued_bytes;
    Clock::time_point since = trouble_since;
    status.state = trouble;
    status.trouble = trouble_text;
    if (call_began && now - *call_began >= kDiskHangsAfter) {
        status.state = DiskState::kHangs;
        status.trouble = "the disk does not answer";
        since = *call_began;
    }
    if (status.state != DiskState::kGood) status.since_s = std::chrono::duration<double>(now - since).count();
    return status;
}

Clock::time_point DiskWriter::State::waits_since(const OutputFile &file) const
{
    for (const Job &job : queue) {
        if (job.file.get() == &file && job.bytes > 0) return job.queued_at;
    }
    return Clock::time_point::max();
}

DiskWriter::Leftover DiskWriter::State::leftover() const
{
    Leftover left;
    for (const Job &job : queue) {
        left.pictures += job.chunk.pictures;
        left.bytes += job.bytes;
        const std::string name = job.file->name + job.file->ending;
        if (std::ranges::find(left.paths, name) == left.paths.end()) left.paths.push_back(name);
    }
    return left;
}

} // namespace nvrec
