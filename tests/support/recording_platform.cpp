/* The recorder itself: scripts, the list of calls, what is open. */
#include "recording_platform.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace recording
{

Platform &platform = *new Platform;

namespace
{

bool begins_with_words(const std::string &text, const std::string &words)
{
    if (text.compare(0, words.size(), words) != 0) return false;
    return words.empty() || text.size() == words.size() || text[words.size()] == ' ' || words.back() == ' ';
}

std::string line_of(const std::pair<std::string, std::string> &call)
{
    return call.second.empty() ? call.first : call.first + " " + call.second;
}

std::string join(const std::vector<std::string> &lines)
{
    std::string text;
    for (const std::string &line : lines)
        text += (text.empty() ? "" : "\n") + line;
    return text;
}

/* A library that calls without end is stopped here, before it eats the machine's memory. */
constexpr size_t kMostCalls = 2'000'000;

/* Calls that cannot fail are not counted by fail_call. */
bool can_fail(const std::string &name)
{
    return name != "board_sleep_us" && name != "board_time_us";
}

} // namespace

Script &Script::with(std::string arguments)
{
    arguments_ = std::move(arguments);
    return *this;
}

Script &Script::nth(unsigned n)
{
    first_ = last_ = n;
    return *this;
}

Script &Script::from(unsigned n)
{
    first_ = n;
    last_ = UINT32_MAX;
    return *this;
}

Script &Script::returns(int64_t value)
{
    value_ = static_cast<int32_t>(value);
    return *this;
}

Script &Script::sees(Filler filler)
{
    seer_ = std::move(filler);
    return *this;
}

Script &Script::fills(Filler filler)
{
    filler_ = std::move(filler);
    return *this;
}

bool Script::fits(const std::string &name, const std::string &arguments)
{
    if (name != name_ || !begins_with_words(arguments, arguments_)) return false;
    ++seen_;
    return seen_ >= first_ && seen_ <= last_;
}

Script &Platform::script(const std::string &name)
{
    std::lock_guard lock(mutex);
    return scripts_.emplace_back(name);
}

void Platform::describe_request(unsigned long request, RequestFormatter formatter)
{
    std::lock_guard lock(mutex);
    formatters_[request] = std::move(formatter);
}

void Platform::ignore(const std::string &prefix)
{
    std::lock_guard lock(mutex);
    ignored_.insert(prefix);
}

void Platform::fail_call(unsigned n, int32_t code)
{
    std::lock_guard lock(mutex);
    fail_in_ = n;
    fail_code_ = code;
    failed_call_.clear();
}

std::string Platform::failed_call()
{
    std::lock_guard lock(mutex);
    return failed_call_;
}

Platform::Verdict Platform::record(const std::string &name, const std::string &arguments)
{
    std::lock_guard lock(mutex);
    bool ignored = std::any_of(ignored_.begin(), ignored_.end(), [&](const std::string &prefix) {
        return name.compare(0, prefix.size(), prefix) == 0;
    });
    if (!ignored) calls_.emplace_back(name, arguments);
    if (calls_.size() > kMostCalls) {
        std::fprintf(stderr, "more than %zu platform calls, the last: %s\n", kMostCalls,
                     line_of(calls_.back()).c_str());
        std::abort();
    }

    Verdict verdict;
    for (Script &script : scripts_) { // every fitting script counts the call; the youngest answers
        if (!script.fits(name, arguments)) continue;
        if (script.value_) verdict.value = script.value_;
        if (script.seer_) verdict.seer = script.seer_;
        if (script.filler_) verdict.filler = script.filler_;
    }
    if (fail_in_ > 0 && can_fail(name) && --fail_in_ == 0) {
        failed_call_ = line_of({name, arguments});
        verdict = {name.compare(0, 3, "MI_") == 0 ? fail_code_ : -1, {}, {}};
    }
    return verdict;
}

void Platform::keep_bytes(const std::string &name, const void *bytes, size_t size)
{
    std::lock_guard lock(mutex);
    const auto *first = static_cast<const uint8_t *>(bytes);
    if (first == nullptr)
        bytes_[name].emplace_back();
    else
        bytes_[name].emplace_back(first, first + size);
}

std::vector<std::vector<uint8_t>> Platform::bytes_sent(const std::string &name)
{
    std::lock_guard lock(mutex);
    return bytes_[name];
}

std::string Platform::calls(const std::vector<std::string> &prefixes)
{
    std::lock_guard lock(mutex);
    std::vector<std::string> lines;
    for (const auto &call : calls_) {
        bool wanted =
            prefixes.empty() || std::any_of(prefixes.begin(), prefixes.end(), [&](const std::string &p) {
                return call.first.compare(0, p.size(), p) == 0;
            });
        if (wanted) lines.push_back(line_of(call));
    }
    return join(lines);
}

std::string Platform::calls_since(const std::string &name)
{
    std::lock_guard lock(mutex);
    std::vector<std::string> lines;
    for (const auto &call : calls_)
        if (!lines.empty() || call.first == name) lines.push_back(line_of(call));
    return join(lines);
}

unsigned Platform::count(const std::string &text)
{
    std::lock_guard lock(mutex);
    return static_cast<unsigned>(std::count_if(calls_.begin(), calls_.end(), [&](const auto &call) {
        return begins_with_words(line_of(call), text);
    }));
}

void Platform::forget()
{
    std::lock_guard lock(mutex);
    calls_.clear();
    bytes_.clear();
    forget_printed();
}

void Platform::reset()
{
    std::lock_guard lock(mutex);
    calls_.clear();
    bytes_.clear();
    scripts_.clear();
    formatters_.clear();
    ignored_.clear();
    fail_in_ = 0;
    failed_call_.clear();
    media = {};
    descriptors.clear();
    queued_reads.clear();
    waiting_nodes.clear();
    reads_moved.notify_all();
    strict_ = true;
    for (auto &mapping : mappings)
        std::free(mapping.first);
    mappings.clear();
    next_descriptor = 3;
    now_us_ = 0;
    all_sleeps_advance_ = false;
    test_thread_ = std::this_thread::get_id();
}

MI_HDMI_InitParam Platform::hdmi_registration()
{
    std::lock_guard lock(mutex);
    return media.hdmi_registration;
}

std::string Platform::node_name(int descriptor)
{
    std::lock_guard lock(mutex);
    auto open = descriptors.find(descriptor);
    return open == descriptors.end() ? std::to_string(descriptor) : open->second;
}

bool Platform::is_open(int descriptor)
{
    std::lock_guard lock(mutex);
    return descriptors.count(descriptor) != 0;
}

std::optional<std::vector<uint8_t>> Platform::next_read(const std::string &path)
{
    std::unique_lock lock(mutex);
    struct Wait { // left by going on and by being cancelled alike
        explicit Wait(unsigned &readers) : count(++readers) {}
        ~Wait() { --count; }
        unsigned &count;
    };
    if (waiting_nodes.count(path) != 0 && queued_reads[path].empty()) {
        Wait wait(waiting_readers[path]);
        reads_moved.notify_all();
        reads_moved.wait(lock, [&] { return waiting_nodes.count(path) == 0 || !queued_reads[path].empty(); });
    }
    auto &queue = queued_reads[path];
    if (queue.empty()) return std::vector<uint8_t>();
    auto bytes = std::move(queue.front());
    queue.pop_front();
    return bytes;
}

void Platform::be_lenient()
{
    std::lock_guard lock(mutex);
    strict_ = false;
}

bool Platform::is_strict()
{
    std::lock_guard lock(mutex);
    return strict_;
}

void Platform::have_decoders(uint32_t count)
{
    std::lock_guard lock(mutex);
    for (uint32_t channel = 0; channel < count; ++channel) {
        media.decoders.create(channel);
        media.decoders.start(channel, true);
    }
}

void Platform::have_bindings(uint32_t count)
{
    std::lock_guard lock(mutex);
    for (uint32_t channel = 0; channel < count; ++channel) {
        const MI_SYS_ChnPort source = {MI_MODULE_VDEC, 0, channel, 0}, sink = {MI_MODULE_DISP, 0, channel, 0};
        media.bind(&source, &sink);
    }
}

std::string Platform::describe_argument(unsigned long request, const void *argument)
{
    std::lock_guard lock(mutex);
    auto known = formatters_.find(request);
    if (known != formatters_.end()) return known->second(argument);
    constexpr uintptr_t kLargestPlainValue = 0xFFFF; // beyond it, the argument is an address
    auto value = reinterpret_cast<uintptr_t>(argument);
    return value <= kLargestPlainValue ? std::to_string(value) : "*";
}

std::string trace(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        size_t first = line.find_first_not_of(" \t");
        if (first == std::string::npos) continue;
        lines.push_back(line.substr(first, line.find_last_not_of(" \t") - first + 1));
    }
    return join(lines);
}

} // namespace recording
