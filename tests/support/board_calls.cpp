/*
 * The operating system of the recording platform: device nodes by path, a stepped clock.
 *
 * An open descriptor is recorded as its node's path, any other as its number; what is asked of the
 * latter fails with EBADF, unless a script answers.
 */
#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "board_io.h"
#include "node_answers.h"
#include "recording_platform.h"

namespace recording
{

namespace
{

constexpr size_t kPageBytes = 4096;

std::string flags_text(int flags)
{
    int access = flags & O_ACCMODE;
    std::string text = access == O_RDWR ? "rdwr" : access == O_WRONLY ? "wronly" : "rdonly";
    if ((flags & O_SYNC) == O_SYNC) text += "+sync";
    if (flags & O_CREAT) text += "+creat";
    if (flags & O_TRUNC) text += "+trunc";
    if (flags & O_NONBLOCK) text += "+nonblock";
    return text;
}

std::string request_text(unsigned long request)
{
    char text[32];
    std::snprintf(text, sizeof text, "0x%lx", request);
    return text;
}

/* The arguments for a filler, and its word on the result. */
int32_t after_filler(const Platform::Verdict &verdict, std::vector<Args::Argument> arguments, int32_t result)
{
    if (!verdict.filler) return result;
    Args args(std::move(arguments));
    args.result = result;
    verdict.filler(args);
    return args.result;
}

int refuse_descriptor()
{
    errno = EBADF;
    return -1;
}

} // namespace

void Node::fails_to_open()
{
    platform.script("board_open").with(path_).returns(-1);
}

void Node::opens_as(int descriptor)
{
    platform.script("board_open").with(path_).returns(descriptor);
}

void Node::reads(std::vector<uint8_t> bytes)
{
    std::lock_guard lock(platform.mutex);
    platform.queued_reads[path_].emplace_back(std::move(bytes));
    platform.reads_moved.notify_all();
}

void Node::read_fails()
{
    std::lock_guard lock(platform.mutex);
    platform.queued_reads[path_].emplace_back(std::nullopt);
    platform.reads_moved.notify_all();
}

void Node::makes_reads_wait()
{
    std::lock_guard lock(platform.mutex);
    platform.waiting_nodes.insert(path_);
}

void Node::lets_readers_go()
{
    std::lock_guard lock(platform.mutex);
    platform.waiting_nodes.erase(path_);
    platform.reads_moved.notify_all();
}

bool Node::wait_for_readers(unsigned threads)
{
    std::unique_lock lock(platform.mutex);
    return platform.reads_moved.wait_for(lock, std::chrono::seconds(10), [&] {
        return platform.queued_reads[path_].empty() && platform.waiting_readers[path_] >= threads;
    });
}

Script &Node::ioctl(unsigned long request)
{
    return platform.script("board_ioctl").with(path_ + " " + request_text(request));
}

std::pair<uint8_t *, size_t> Node::memory()
{
    std::lock_guard lock(platform.mutex);
    for (auto &[address, mapping] : platform.mappings)
        if (mapping.path == path_) return {static_cast<uint8_t *>(address), mapping.size};
    return {nullptr, 0};
}

unsigned Node::open_count()
{
    std::lock_guard lock(platform.mutex);
    return static_cast<unsigned>(std::count_if(platform.descriptors.begin(), platform.descriptors.end(),
                                               [&](const auto &open) { return open.second == path_; }));
}

} // namespace recording

using recording::after_filler;
using recording::platform;
using recording::Platform;

extern "C" {

int board_open(const char *path, int flags)
{
    std::string name = path ? path : "null";
    Platform::Verdict verdict = platform.record("board_open", name + " " + recording::flags_text(flags));
    std::lock_guard lock(platform.mutex);
    int descriptor = verdict.value ? *verdict.value : platform.next_descriptor++;
    if (descriptor >= 0) platform.descriptors[descriptor] = name;
    return after_filler(verdict, {{}, {flags, nullptr}}, descriptor);
}

int board_close(int descriptor)
{
    Platform::Verdict verdict = platform.record("board_close", platform.node_name(descriptor));
    std::lock_guard lock(platform.mutex);
    bool was_open = platform.descriptors.erase(descriptor) != 0;
    int result = verdict.value.value_or(0);
    if (!verdict.value && !was_open) result = recording::refuse_descriptor();
    return after_filler(verdict, {{descriptor, nullptr}}, result);
}

int board_read(int descriptor, void *buffer, size_t size)
{
    std::string name = platform.node_name(descriptor);
    Platform::Verdict verdict = platform.record("board_read", name + " " + std::to_string(size));
    int result = verdict.value.value_or(0);
    if (!verdict.value) {
        if (!platform.is_open(descriptor)) return recording::refuse_descriptor();
        auto bytes = platform.next_read(name);
        result = bytes ? static_cast<int>(std::min(size, bytes->size())) : -1;
        if (result > 0) std::memcpy(buffer, bytes->data(), static_cast<size_t>(result));
    }
    return after_filler(verdict, {{descriptor, nullptr}, {0, buffer}, {static_cast<int64_t>(size), nullptr}},
                        result);
}

int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    std::string name = platform.node_name(descriptor);
    std::string text = name + " " + recording::request_text(request);
    std::string shown = platform.describe_argument(request, argument);
    if (!shown.empty()) text += " " + shown;
    Platform::Verdict verdict = platform.record("board_ioctl", text);
    auto value = static_cast<int64_t>(reinterpret_cast<uintptr_t>(argument));
    const std::vector<recording::Args::Argument> arguments = {
        {descriptor, nullptr}, {static_cast<int64_t>(request), nullptr}, {value, argument}};
    if (verdict.seer) {
        recording::Args args(arguments);
        verdict.seer(args);
    }
    if (!verdict.value) {
        if (!platform.is_open(descriptor)) return recording::refuse_descriptor();
        recording::answer_request(name, request, argument);
    }
    return after_filler(verdict, arguments, verdict.value.value_or(0));
}

/* A scripted value other than 0 makes the mapping fail. */
void *board_map(int descriptor, size_t size)
{
    std::string name = platform.node_name(descriptor);
    Platform::Verdict verdict = platform.record("board_map", name + " " + std::to_string(size));
    if (verdict.value.value_or(0) != 0 || size == 0) return nullptr;
    if (!platform.is_open(descriptor)) {
        recording::refuse_descriptor();
        return nullptr;
    }
    size_t whole_pages = (size + recording::kPageBytes - 1) / recording::kPageBytes * recording::kPageBytes;
    void *address = std::aligned_alloc(recording::kPageBytes, whole_pages);
    if (address == nullptr) return nullptr;
    std::memset(address, recording::kHandedOutByte, whole_pages);
    std::lock_guard lock(platform.mutex);
    platform.mappings[address] = {name, size};
    return address;
}

int board_unmap(void *address, size_t size)
{
    std::lock_guard lock(platform.mutex);
    auto mapping = platform.mappings.find(address);
    bool known = mapping != platform.mappings.end();
    Platform::Verdict verdict = platform.record("board_unmap", (known ? mapping->second.path : "unknown") +
                                                                   " " + std::to_string(size));
    if (verdict.value.value_or(0) == 0 && known) {
        platform.mappings.erase(mapping);
        std::free(address);
    }
    return verdict.value.value_or(known ? 0 : -1);
}

int board_run_command(const char *command)
{
    Platform::Verdict verdict = platform.record(
        "board_run_command", command ? std::string("\"").append(command).append("\"") : "null");
    return verdict.value.value_or(0);
}

void board_sleep_us(uint32_t microseconds)
{
    Platform::Verdict verdict = platform.record("board_sleep_us", std::to_string(microseconds));
    platform.sleep_us(microseconds);
    after_filler(verdict, {{microseconds, nullptr}}, 0);
}

int64_t board_time_us(void)
{
    platform.record("board_time_us", "");
    return platform.time_us();
}

} // extern "C"
