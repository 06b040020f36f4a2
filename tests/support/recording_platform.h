/*
 * recording_platform.h - a platform for tests: it records every call and answers as scripted.
 *
 * Implements every function of platform/include. Each call becomes one line of plain text, its
 * name and then its arguments ("MI_VDEC_SendStream 2 {1234 bytes pts 77 eof 0 eos 0} 20");
 * records that the platform only fills in are left out. Unscripted calls succeed, getters answer
 * what was set last. Time is stepped and nothing ever sleeps for real.
 *
 * The platform refuses what a real one refuses: requests, reads and mappings on a descriptor that is
 * not open; and unless a test asks for lenience, calls on channels that were not created, a channel
 * created twice, a binding that is not there. A scripted result wins over a refusal. Memory that it
 * hands out is filled with kHandedOutByte wherever the platform does not write something itself.
 *
 * It needs no test framework: a program links recording_platform and runs. For GoogleTest,
 * recording_expect.h begins every test with a fresh platform. All members are safe from any thread.
 */
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "fresh_process.h"
#include "golden.h"
#include "media_state.h"
#include "printed.h"

namespace recording
{

/** What memory holds that the platform hands out and did not write. */
constexpr uint8_t kHandedOutByte = 0xC7;

/** Write kHandedOutByte over a record before the fields that the platform knows are filled in. */
template <class T> void fill_with_pattern(T &record)
{
    std::memset(static_cast<void *>(&record), kHandedOutByte, sizeof record);
}

/** What a filler sees of a call: the C arguments by position, and the result to be. */
class Args
{
public:
    struct Argument {
        int64_t number = 0;
        void *pointer = nullptr;
    };

    explicit Args(std::vector<Argument> arguments) : arguments_(std::move(arguments)) {}

    int64_t number(size_t position) const { return arguments_.at(position).number; }
    void *pointer(size_t position) const { return arguments_.at(position).pointer; }
    template <class T> T &record(size_t position) const { return *static_cast<T *>(pointer(position)); }

    int32_t result = 0;

private:
    std::vector<Argument> arguments_;
};

using Filler = std::function<void(Args &)>;

/**
 * One scripted answer. Calls are counted from 1, from the moment the script was written. The
 * youngest script that fits a call answers it.
 */
class Script
{
public:
    explicit Script(std::string name) : name_(std::move(name)) {}

    /** Only calls whose arguments begin so: with("2") fits "MI_VDEC_StopChn 2", not "... 20". */
    Script &with(std::string arguments);
    /** Only the n-th call. */
    Script &nth(unsigned n);
    /** The n-th call and all after it. */
    Script &from(unsigned n);
    /** Only the next call. */
    Script &once() { return nth(1); }
    Script &returns(int64_t value);
    /** Run before the default answer is given: sees what the library handed over. */
    Script &sees(Filler filler);
    /** Run after the default answer has been given; may change out-records and the result. */
    Script &fills(Filler filler);

private:
    friend class Platform;
    bool fits(const std::string &name, const std::string &arguments);

    std::string name_, arguments_;
    unsigned first_ = 1, last_ = UINT32_MAX, seen_ = 0;
    std::optional<int32_t> value_;
    Filler seer_, filler_;
};

/** How a driver request's argument is shown in the recording; empty shows nothing. */
using RequestFormatter = std::function<std::string(const void *argument)>;

/** A device node, by its path. */
class Node
{
public:
    explicit Node(std::string path) : path_(std::move(path)) {}

    void fails_to_open();
    /** The descriptor that opening it gives. */
    void opens_as(int descriptor);
    /** Queue what one read gives; an unscripted read gives 0 bytes. */
    void reads(std::vector<uint8_t> bytes);
    void read_fails();
    /** From now on a read waits while nothing is queued, as that of a real node may. */
    void makes_reads_wait();
    /** End the waiting: those that wait now read 0 bytes, later reads do not wait. */
    void lets_readers_go();
    /** Wait (for real, at most 10 s) until that many threads wait in a read. False: they do not. */
    bool wait_for_readers(unsigned threads);
    /** Script the answer to one driver request. */
    Script &ioctl(unsigned long request);
    /** The memory last mapped from it and not yet unmapped; null and 0 when there is none. */
    std::pair<uint8_t *, size_t> memory();
    /** How many of its descriptors are open. */
    unsigned open_count();

private:
    std::string path_;
};

class Platform
{
public:
    /* Scripts. */

    Script &script(const std::string &name);
    Node node(const std::string &path) { return Node(path); }

    /** How the argument of a request on any node is recorded. */
    void describe_request(unsigned long request, RequestFormatter formatter);

    /** Every call that begins with `prefix` goes unrecorded from now on; it is still answered. */
    void ignore(const std::string &prefix);

    /** Make the n-th call from now (from 1) fail: `code` from MI_*, -1 or null from board_*. */
    void fail_call(unsigned n, int32_t code);

    /** The call that fail_call made fail; empty while none did. */
    std::string failed_call();

    /**
     * Lenient: channels and bindings have no life. Every call on them succeeds, whether they were
     * created or not. For tests of a single operation on a library that was never started.
     */
    void be_lenient();
    bool is_strict();

    /** Decoder channels 0 to count - 1 exist and run from now on, unrecorded: a library that started. */
    void have_decoders(uint32_t count);
    /** Decoder channel c feeds port c of display device 0 from now on, for c from 0 to count - 1, unrecorded.
     */
    void have_bindings(uint32_t count);

    /* The recording. */

    /** Calls that begin with one of the prefixes (none = all), one a line. */
    std::string calls(const std::vector<std::string> &prefixes = {});
    /** Calls from the first one of that name on. */
    std::string calls_since(const std::string &name);
    /** How often a call whose line begins with `text` was made. */
    unsigned count(const std::string &text);
    /** Bytes handed to the calls of that name, in order: MI_VDEC_SendStream, MI_AO_SendFrame. */
    std::vector<std::vector<uint8_t>> bytes_sent(const std::string &name);
    /** Forget the recorded calls and the printed text; scripts and attributes stay. */
    void forget();
    /** As it was when the process began. */
    void reset();

    /* Time. */

    int64_t time_us();
    void set_time_us(int64_t now_us);
    /** Advance the clock and wake the threads whose sleep is over. */
    void step_us(int64_t microseconds);
    /** Wait (for real, at most 10 s) until that many threads sleep on the clock. False: they do not. */
    bool wait_for_sleepers(unsigned threads);
    /**
     * The test's own thread never waits: its sleeps advance the clock. Other threads wait for the
     * clock; with this set, their sleeps advance it too.
     */
    void let_all_sleeps_advance(bool yes);

    /** The HDMI registration made last. */
    MI_HDMI_InitParam hdmi_registration();

    /* For the implementation of the platform calls. */

    struct Verdict {
        std::optional<int32_t> value;
        Filler seer, filler;
    };
    Verdict record(const std::string &name, const std::string &arguments);
    void keep_bytes(const std::string &name, const void *bytes, size_t size);
    void sleep_us(uint32_t microseconds);
    std::string node_name(int descriptor);
    bool is_open(int descriptor);
    /** What a read of the node gives next; nothing = it fails. Waits if the node makes reads wait. */
    std::optional<std::vector<uint8_t>> next_read(const std::string &path);
    std::string describe_argument(unsigned long request, const void *argument);

    struct Mapping {
        std::string path;
        size_t size;
    };
    std::recursive_mutex mutex;
    MediaState media;
    std::map<int, std::string> descriptors;
    std::map<std::string, std::deque<std::optional<std::vector<uint8_t>>>> queued_reads;
    std::set<std::string> waiting_nodes;             // their reads wait while nothing is queued
    std::map<std::string, unsigned> waiting_readers; // how many threads wait in a read
    std::condition_variable_any reads_moved;         // a read was queued, begun or let go
    std::map<void *, Mapping> mappings;
    int next_descriptor = 3;

private:
    std::vector<std::pair<std::string, std::string>> calls_; // name, arguments
    std::deque<Script> scripts_;
    std::map<unsigned long, RequestFormatter> formatters_;
    std::set<std::string> ignored_;
    std::map<std::string, std::vector<std::vector<uint8_t>>> bytes_;
    unsigned fail_in_ = 0;
    int32_t fail_code_ = 0;
    std::string failed_call_;

    std::condition_variable_any clock_moved_;
    int64_t now_us_ = 0;
    std::multiset<int64_t> sleep_ends_us_; // of the threads that sleep
    bool all_sleeps_advance_ = false;
    bool strict_ = true;
    std::thread::id test_thread_ = std::this_thread::get_id();
};

/** The platform under the library. Lives until the process ends: the library's threads use it. */
extern Platform &platform;

/** An expected recording: blank lines and the blanks around each line do not count. */
std::string trace(const std::string &text);

} // namespace recording
