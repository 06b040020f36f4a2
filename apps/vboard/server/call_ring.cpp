/* call_ring.cpp - see call_ring.h. */
#include "server/call_ring.h"

#include <algorithm>
#include <vector>

#include "trace/call_json.h"
#include "trace/call_line.h"

namespace vboard_app
{
namespace
{

using nlohmann::json;
using namespace std::chrono_literals;

constexpr size_t kKept = 5000; // calls
constexpr size_t kCallsAtOnce = 200;
constexpr auto kPatience = 10s; // without a question, until collecting ends

bool is_wanted(const json &call, const json &wanted)
{
    if (wanted.contains("name") &&
        call.at("name").get<std::string>().find(wanted.at("name").get<std::string>()) == std::string::npos)
        return false;
    if (wanted.contains("channel") && call.value("channel", json()) != wanted.at("channel")) return false;
    return !wanted.contains("failed") || call.value("failed", false) == wanted.at("failed").get<bool>();
}

} // namespace

const json &CallRing::taken_apart(Entry &entry)
{
    if (entry.call) return *entry.call;
    const std::string line = entry.told.value("text", "");
    CallLine parsed;
    // A line that cannot be taken apart is shown as it is.
    json call = parse_call(line, parsed).empty() ? call_json(parsed, line) : entry.told;
    call["number"] = entry.number;
    for (const char *measured : {"duration_us", "thread"})
        if (entry.told.contains(measured)) call[measured] = entry.told[measured];
    entry.told = nullptr;
    entry.call = std::move(call);
    return *entry.call;
}

json CallRing::result(uint64_t after, size_t limit, const json &wanted)
{
    std::lock_guard lock(mutex_);
    std::vector<const json *> found; // newest first
    for (auto entry = calls_.rbegin();
         entry != calls_.rend() && entry->number > after && found.size() < limit; ++entry) {
        const json &call = taken_apart(*entry);
        if (is_wanted(call, wanted)) found.push_back(&call);
    }
    json list = json::array();
    std::for_each(found.rbegin(), found.rend(), [&](const json *call) { list.push_back(*call); });
    return {{"calls", list}, {"lost", lost_}, {"next", last_number_}};
}

void CallRing::keep_collecting()
{
    bool begins = false;
    {
        std::lock_guard lock(mutex_);
        asked_at_ = std::chrono::steady_clock::now();
        begins = !following_;
    }
    if (begins) follow(true);
}

json CallRing::asked(const json &parameters)
{
    keep_collecting();
    return result(parameters.at("after"), parameters.at("limit"), parameters);
}

json CallRing::newer(uint64_t after)
{
    {
        std::lock_guard lock(mutex_);
        if (last_number_ <= after) return {};
    }
    return result(after, kCallsAtOnce, json::object());
}

void CallRing::add(const json &data)
{
    std::lock_guard lock(mutex_);
    lost_ += data.value("lost", uint64_t{0});
    const auto calls = data.find("calls");
    if (calls == data.end() || !calls->is_array()) return;
    for (const json &call : *calls) {
        if (!call.is_object()) continue;
        calls_.push_back({++last_number_, call, {}});
    }
    while (calls_.size() > kKept) {
        calls_.pop_front();
        ++lost_;
    }
}

void CallRing::started_again()
{
    std::lock_guard lock(mutex_);
    following_ = false;
}

void CallRing::look_at_time()
{
    bool ends = false;
    {
        std::lock_guard lock(mutex_);
        ends = following_ && std::chrono::steady_clock::now() - asked_at_ > kPatience;
    }
    if (!ends) return;
    try {
        follow(false);
    } catch (const RequestError &) {
        // The program has ended, and its calls with it.
    }
}

void CallRing::follow(bool on)
{
    std::lock_guard turn(follow_mutex_);
    {
        std::lock_guard lock(mutex_);
        if (following_ == on) return;
    }
    board_.request("calls.follow", {{"on", on}});
    std::lock_guard lock(mutex_);
    following_ = on;
}

uint64_t CallRing::newest() const
{
    std::lock_guard lock(mutex_);
    return last_number_;
}

} // namespace vboard_app
