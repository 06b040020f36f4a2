/* disk_writer_state.h - what the disk writer and its thread share; the thread may outlive the writer. */
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "record/disk_writer.h"

namespace nvrec
{

constexpr auto kSyncPeriod = std::chrono::seconds(1);

/* For so long a disk in trouble has to take all data before the trouble counts as over. A full disk takes the
 * head of a new file now and then, and a second of pictures where another file was cut back. */
constexpr auto kWellAfter = std::chrono::seconds(5);

struct DiskWriter::State {
    struct Job {
        std::shared_ptr<OutputFile> file;
        FileChunk chunk;
        uint64_t bytes = 0;
        int64_t until_us = 0;
        bool end = false;
        Clock::time_point queued_at;
    };

    /* What is in a file up to the end of a chunk. */
    struct Content {
        int64_t size = 0;
        uint64_t pictures = 0, sounds = 0;
        int64_t until_us = 0; /* time of day */
    };

    /* A file that is open. The thread's own. */
    struct Open {
        std::shared_ptr<OutputFile> file;
        std::string path;
        int descriptor = -1;
        Content written;
        Content synced; /* of it, what a power cut leaves */
        bool name_is_synced = false;
        std::optional<Clock::time_point> unsynced_since;
    };

    DiskWriterOptions options; /* not changed behind the start; hooks under hooks_lock */

    mutable std::mutex lock; /* guards what follows */
    Condition work, room, done;
    std::deque<Job> queue; /* the one at hand stays in front until it is dealt with */
    uint64_t queued_bytes = 0;
    bool closing = false, exited = false, abandoned = false;
    std::optional<Clock::time_point> call_began; /* of the call to the disk under way */
    uint64_t calls = 0;                          /* that came back                    */
    DiskState trouble = DiskState::kGood;        /* beside a hanging call             */
    Clock::time_point trouble_since;
    std::optional<Clock::time_point> unwell_since; /* when it began to refuse data; unset = no trouble */
    uint64_t recoveries = 0;
    std::string trouble_text, directory_trouble;
    std::vector<std::string> lines;

    std::mutex hooks_lock; /* held while a hook is called; taken before lock */

    void add(Job job);
    bool idle() const { return queue.empty() && !call_began; }
    DiskStatus status(Clock::time_point now) const;
    Clock::time_point waits_since(const OutputFile &file) const;
    Leftover leftover() const;

    /* The thread's. */
    void run();

private:
    void prepare();
    std::string hold_directory();
    void deal_with(Job &job);
    void append(Job &job);
    int create(Open &open, std::string *problem);
    int write_with_room(Open &open, const Job &job);
    bool is_abandoned() const;
    bool make_room(uint64_t bytes, bool in_vain);
    int write(const Open &open, const FileChunk &chunk);
    void give_up(Open &open, int error, const std::string &problem);
    void end(const OutputFile &file);
    void close(Open &open);
    void let_go(Open &open);
    void fall_back(Open &open, const Content &to);
    void sync_old();
    int sync(Open &open);
    int sync_names();
    Open *find(const OutputFile &file);
    void set_trouble(DiskState state, const std::string &text);
    void unwell();
    void took_some();
    void say(const std::string &line);
    void began_call();
    void ended_call();

    /* A call to the disk, which may never return. */
    template <typename Call> auto timed(Call call)
    {
        began_call();
        auto result = call();
        ended_call();
        return result;
    }

    template <typename Hook, typename... Arguments> void tell(const Hook &hook, Arguments &&...arguments)
    {
        const std::scoped_lock guard(hooks_lock);
        {
            const std::scoped_lock state_guard(lock);
            if (abandoned) return;
        }
        if (hook) hook(std::forward<Arguments>(arguments)...);
    }

    std::vector<std::unique_ptr<Open>> open_;
    int directory_ = -1;       /* held for this process              */
    bool is_held_ = false;     /* by it, or by who was asked to do so */
    bool sync_failed_ = false; /* the last one: that a file takes bytes means nothing then */
    std::optional<Clock::time_point> takes_since_; /* all data, while unwell_since is set */
};

} // namespace nvrec
