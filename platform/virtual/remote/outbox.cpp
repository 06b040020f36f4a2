/* outbox.cpp - see outbox.h. The events' texts are made on the writer's thread. */
#include "outbox.h"

#include <chrono>

#include <nlohmann/json.hpp>

#include "text_of.h"

namespace vboard_remote
{
namespace
{

using nlohmann::json;
using Steady = std::chrono::steady_clock;

constexpr size_t kMostMessageBytes = 64 << 20; // some ten pictures
constexpr size_t kMostCalls = 4096;
constexpr size_t kMostRefusals = 256;
constexpr size_t kCallsAMessage = 200;
constexpr std::chrono::milliseconds kEventsTogether{40}; // calls come in bursts
constexpr std::chrono::milliseconds kFlushTime{500};

json call_json(const EndedCall &call)
{
    const std::string line = std::to_string(call.time_us) + " " + call.name +
                             (call.arguments.empty() ? "" : " " + call.arguments) + " = " + call.result +
                             " ; thread " + std::to_string(call.thread) + ", " +
                             std::to_string(call.duration_us) + " us";
    return {{"time_us", call.time_us}, {"duration_us", call.duration_us},
            {"thread", call.thread},   {"name", call.name},
            {"failed", call.failed},   {"arguments", call.arguments},
            {"result", call.result},   {"text", line}};
}

std::string event_text(const char *name, json data)
{
    return text_of({{"event", name}, {"data", std::move(data)}});
}

} // namespace

void Outbox::send(std::string text, Bytes blob)
{
    std::unique_lock lock(mutex_);
    written_.wait(lock, [&] { return ended_ || message_bytes_ < kMostMessageBytes; });
    if (ended_) return;
    message_bytes_ += text.size() + blob.size();
    messages_.push_back({std::move(text), std::move(blob)});
    changed_.notify_one();
}

void Outbox::add_call(const vboard_call &call)
{
    EndedCall ended = {call.time_us, call.duration_us, call.thread, call.failed != 0,
                       call.name,    call.arguments,   call.result};
    const std::lock_guard guard(mutex_);
    if (ended_) return;
    if (calls_.size() >= kMostCalls) {
        ++lost_calls_;
        return;
    }
    const bool first = !has_events();
    calls_.push_back(std::move(ended));
    if (first) changed_.notify_one();
}

void Outbox::add_refusal(const char *line)
{
    const std::lock_guard guard(mutex_);
    if (ended_) return;
    if (refusals_.size() >= kMostRefusals) {
        ++lost_refusals_;
        return;
    }
    const bool first = !has_events();
    refusals_.emplace_back(line);
    if (first) changed_.notify_one();
}

// Turn what was collected into messages, without the lock while texts are made.
void Outbox::take_events()
{
    std::vector<EndedCall> calls;
    std::vector<std::string> refusals;
    uint64_t lost_calls = 0, lost_refusals = 0;
    {
        const std::lock_guard guard(mutex_);
        calls.swap(calls_);
        refusals.swap(refusals_);
        std::swap(lost_calls, lost_calls_);
        std::swap(lost_refusals, lost_refusals_);
    }
    std::vector<std::string> texts;
    for (size_t first = 0; first < calls.size(); first += kCallsAMessage) {
        json list = json::array();
        for (size_t i = first; i < calls.size() && i < first + kCallsAMessage; ++i)
            list.push_back(call_json(calls[i]));
        const bool is_last = first + kCallsAMessage >= calls.size();
        texts.push_back(
            event_text("calls", {{"calls", std::move(list)}, {"lost", is_last ? lost_calls : 0}}));
    }
    for (size_t i = 0; i < refusals.size(); ++i)
        texts.push_back(event_text(
            "refusal", {{"text", refusals[i]}, {"lost", i + 1 == refusals.size() ? lost_refusals : 0}}));
    const std::lock_guard guard(mutex_);
    for (std::string &text : texts) {
        message_bytes_ += text.size();
        messages_.push_back({std::move(text), {}});
    }
}

void Outbox::write_all(Channel &channel)
{
    Steady::time_point next_events = Steady::now();
    std::unique_lock lock(mutex_);
    for (;;) {
        const auto is_due = [&] { return has_events() && (hurry_ || Steady::now() >= next_events); };
        while (!ended_ && messages_.empty() && !is_due()) {
            writing_ = false;
            if (!has_events()) {
                written_.notify_all();
                changed_.wait(lock);
            } else {
                changed_.wait_until(lock, next_events);
            }
        }
        if (ended_) break;
        writing_ = true;
        if (is_due()) {
            lock.unlock();
            take_events();
            next_events = Steady::now() + kEventsTogether;
            lock.lock();
        }
        if (messages_.empty()) continue;
        const Message message = std::move(messages_.front());
        messages_.pop_front();
        lock.unlock();
        const bool is_there = channel.write(message.text, message.blob);
        lock.lock();
        message_bytes_ -= message.text.size() + message.blob.size();
        written_.notify_all();
        if (!is_there) break;
    }
    ended_ = true;
    writing_ = false;
    written_.notify_all();
}

void Outbox::end()
{
    const std::lock_guard guard(mutex_);
    ended_ = true;
    messages_.clear();
    message_bytes_ = 0;
    calls_.clear();
    refusals_.clear();
    changed_.notify_all();
    written_.notify_all();
}

void Outbox::flush()
{
    std::unique_lock lock(mutex_);
    hurry_ = true;
    changed_.notify_all();
    written_.wait_for(lock, kFlushTime,
                      [&] { return ended_ || (messages_.empty() && !has_events() && !writing_); });
}

} // namespace vboard_remote
