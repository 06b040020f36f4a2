/* index_writer.cpp - see index_writer.h. */
#include "archive/index_writer.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <thread>
#include <unordered_set>
#include <utility>

#include "archive/directory_lock.h"
#include "archive/index_in_memory.h"
#include "archive/intake.h"
#include "archive/time_of_day.h"
#include "host/clock.h"

namespace nvrec
{

/* What is queued. */
struct IndexChange {
    std::function<bool(Index &)> make;
    std::string grown; /* the file, when all that changes is its length */
};

namespace
{

constexpr size_t kMostQueued = 4096;
constexpr auto kCommitPeriod = std::chrono::seconds(1); /* what a crash may take from the index */
constexpr auto kRetentionPeriod = std::chrono::seconds(10);
constexpr auto kReopenPeriod = std::chrono::seconds(60);
constexpr auto kLastPatience = std::chrono::milliseconds(500);

using Changes = std::deque<IndexChange>;

/* The outcome of changes that were made together. */
struct Made {
    size_t refused = 0; /* by the index, whatever the disk does */
    bool all = true;    /* but those; false = none              */
    std::string trouble;
};

/* Make all changes in one transaction, or none. A failed statement may have ended the transaction; changes
 * after it would then stay, and be made a second time when all of them are repeated. */
Made make_together(Index &index, Changes *changes)
{
    Made made;
    while (!changes->empty()) {
        Transaction transaction(index.database());
        auto failed = changes->begin();
        if (transaction.is_open())
            failed = std::find_if_not(changes->begin(), changes->end(),
                                      [&index](const IndexChange &change) { return change.make(index); });
        if (transaction.is_open() && failed == changes->end() && transaction.commit()) break;
        made.trouble = "the index cannot be written: " + index.error();
        made.all = failed != changes->end() && transaction.is_open() && !index.database().may_pass();
        if (!made.all) return made;
        changes->erase(failed);
        ++made.refused;
    }
    return made;
}

/* Of several lengths of one file only the last one counts. */
void forget_outdated(Changes *changes)
{
    std::unordered_set<std::string> told;
    Changes kept;
    for (auto change = changes->rbegin(); change != changes->rend(); ++change) {
        if (change->grown.empty() || told.insert(change->grown).second) kept.push_front(std::move(*change));
    }
    *changes = std::move(kept);
}

} // namespace

/* Lives as long as the thread, which may outlive the writer while a disk hangs. */
struct IndexWriter::State {
    std::string directory; /* fixed before the thread begins */

    std::mutex lock; /* guards what follows */
    Condition changed;
    Teller tell;
    RetentionOptions retention;
    Changes queue;
    bool opened = false; /* locked and open, or refused */
    std::string refused; /* why                         */
    bool quit = false;
    bool ended = false;
    uint64_t dropped = 0;
    RetentionState retained;
    int64_t room_wanted = 0; /* that a caller of make_room() waits for; 0 = none does */
    bool one_goes = false;   /* whatever is free */
    uint64_t rooms_made = 0;
    bool room = false;

    void push(std::function<bool(Index &)> make, const std::string &grown = "")
    {
        const std::scoped_lock guard(lock);
        if (queue.size() >= kMostQueued) {
            ++dropped;
            return;
        }
        queue.push_back({std::move(make), grown});
    }

    void say(bool trouble, const std::string &line)
    {
        Teller teller;
        {
            const std::scoped_lock guard(lock);
            teller = tell;
        }
        if (teller) teller(trouble, line);
    }
};

IndexWriter::IndexWriter(Teller on_line) : state_(std::make_shared<State>())
{
    state_->tell = std::move(on_line);
    state_->ended = true;
}

IndexWriter::~IndexWriter()
{
    stop(kLastPatience);
    const std::scoped_lock guard(state_->lock);
    state_->tell = {}; /* a thread that was left behind reports nothing */
}

void IndexWriter::start(const std::string &directory, const RetentionOptions &retention)
{
    state_->directory = directory.empty() ? "." : directory;
    state_->retention = retention;
    state_->ended = false;
    std::thread([state = state_] {
        run(state);
        const std::scoped_lock guard(state->lock);
        state->ended = true;
        state->changed.notify();
    }).detach();
}

std::string IndexWriter::wait_open(std::chrono::milliseconds limit)
{
    std::unique_lock guard(state_->lock);
    if (state_->changed.wait_for(guard, limit, [this] { return state_->opened || state_->ended; }))
        return state_->refused;
    return state_->directory + ": the disk does not answer";
}

bool IndexWriter::stop(std::chrono::milliseconds limit)
{
    std::unique_lock guard(state_->lock);
    state_->quit = true;
    state_->changed.notify();
    return state_->changed.wait_for(guard, limit, [this] { return state_->ended; });
}

void IndexWriter::segment_begun(const SegmentRow &row)
{
    state_->push([row](Index &index) { return index.put_segment(row); });
}

void IndexWriter::segment_grown(const std::string &path, int64_t to_us, int64_t bytes)
{
    state_->push([=](Index &index) { return index.grow_segment(path, to_us, bytes, false); }, path);
}

void IndexWriter::segment_ended(const std::string &path, int64_t to_us, int64_t bytes)
{
    state_->push([=](Index &index) { return index.grow_segment(path, to_us, bytes, true); });
}

void IndexWriter::segment_removed(const std::string &path)
{
    state_->push([=](Index &index) { return index.remove_segment(path); });
}

void IndexWriter::gap(const GapRow &row)
{
    state_->push([row](Index &index) { return index.put_gap(row); });
}

void IndexWriter::event(const EventRow &row)
{
    state_->push([row](Index &index) { return index.put_event(row); });
}

void IndexWriter::set_retention(const RetentionOptions &retention)
{
    const std::scoped_lock guard(state_->lock);
    state_->retention = retention;
}

bool IndexWriter::free_space(int64_t bytes, std::chrono::milliseconds limit, bool one_goes)
{
    std::unique_lock guard(state_->lock);
    const uint64_t before = state_->rooms_made;
    state_->room_wanted = std::max({state_->room_wanted, bytes, int64_t{1}});
    state_->one_goes |= one_goes;
    state_->changed.notify();
    return state_->changed.wait_for(
               guard, limit, [&] { return state_->rooms_made != before || state_->ended || state_->quit; }) &&
           state_->rooms_made != before && state_->room;
}

RetentionState IndexWriter::retention_state() const
{
    const std::scoped_lock guard(state_->lock);
    return state_->retained;
}

uint64_t IndexWriter::dropped() const
{
    const std::scoped_lock guard(state_->lock);
    return state_->dropped;
}

/* The writer's thread, between taking what was asked for under the lock and doing it without. */
void IndexWriter::run(const std::shared_ptr<State> &state)
{
    DirectoryLock directory_lock;
    const std::string refused = directory_lock.take(state->directory);
    Index index;
    std::string problem = refused.empty() ? index.open(state->directory, OpenedBy::kRecorder) : std::string();
    /* List them before anything is recorded: a file that is begun later must not be taken for torn. */
    const std::vector<ListedFile> files = list_recordings(state->directory);
    {
        const std::scoped_lock guard(state->lock);
        state->opened = true;
        state->refused = refused;
        state->changed.notify();
    }
    if (!refused.empty()) return;
    if (!problem.empty()) {
        /* Recordings go on; their entries are written into the index when it can be opened. */
        state->say(true, "no index: " + problem);
        directory_lock.set_index_kept_up(false);
        problem = index.open_in_memory(state->directory);
        if (!problem.empty()) return;
    }
    if (!index.note().empty()) state->say(true, index.note());
    for (const std::string &line : take_in(index, files, {.repair = true}).lines)
        state->say(true, line);

    Recycler retention(index, [&state](const SegmentRow &segment) {
        state->say(false, "deleted to make room: " + segment.path);
    });
    Clock::time_point retention_at = Clock::now();
    Clock::time_point reopen_at = retention_at + kReopenPeriod;
    std::string told;
    std::unique_lock guard(state->lock);
    while (!state->quit || !state->queue.empty()) {
        const Clock::time_point commit_at = Clock::now() + kCommitPeriod;
        state->changed.wait_until(guard, std::min(commit_at, retention_at),
                                  [&] { return state->quit || state->room_wanted > 0; });
        Changes changes = std::exchange(state->queue, {});
        const bool last_try = state->quit;
        const int64_t room_wanted = state->room_wanted;
        const bool one_goes = state->one_goes;
        retention.set(state->retention);
        guard.unlock();

        if (index.in_memory() && Clock::now() >= reopen_at) {
            reopen_at = Clock::now() + kReopenPeriod;
            if (return_to_file(&index).empty()) {
                directory_lock.set_index_kept_up(true);
                state->say(false, "the index is open again, and holds what was recorded meanwhile");
                if (!index.note().empty()) state->say(true, index.note());
                retention_at = Clock::now();
            }
        }
        Made made = make_together(index, &changes);
        std::string trouble = made.trouble;
        bool room = false;
        if (room_wanted > 0)
            room = retention.may_make_room(room_wanted) && retention.make_room(room_wanted, one_goes);
        if (Clock::now() >= retention_at) {
            retention.apply(wall_now_us());
            retention_at = Clock::now() + kRetentionPeriod;
        }
        if (trouble.empty()) trouble = retention.state().trouble;
        if (!trouble.empty() && trouble != told) state->say(true, trouble);
        told = trouble;

        /* Deleting may have made room for the index, too. */
        if (!made.all && room) made = make_together(index, &changes);
        if (!made.all) forget_outdated(&changes);

        guard.lock();
        state->dropped += made.refused;
        if (!made.all && last_try)
            state->dropped += changes.size(); /* the next start takes it from the files again */
        else if (!made.all)
            state->queue.insert(state->queue.begin(), std::make_move_iterator(changes.begin()),
                                std::make_move_iterator(changes.end()));
        state->retained = retention.state();
        state->retained.trouble = trouble;
        if (room_wanted > 0) {
            state->room = room;
            state->room_wanted = 0;
            state->one_goes = false;
            ++state->rooms_made;
            state->changed.notify();
        }
    }
    guard.unlock();
    if (!index.in_memory()) return;
    const std::string reason = return_to_file(&index);
    if (reason.empty()) return;
    /* The rest is taken from the files again. */
    const IndexQuery all = {{}, "", {INT64_MIN, INT64_MAX}};
    const size_t lost = index.events(all).size() + index.gaps(all).size();
    if (lost > 0)
        state->say(true, std::to_string(lost) + " events and gaps are lost with the index: " + reason);
    guard.lock();
    state->dropped += lost;
}

} // namespace nvrec
