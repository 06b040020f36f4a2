/*
 * emulated_node.h - a device node that umockdev emulates: the program opens its path, issues requests and
 * reads, all through the C library's functions, and a test answers in the driver's place. The machine's
 * node of that name, if it has one, is not touched while the emulated one is there.
 */
#pragma once

#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

struct _UMockdevIoctlBase;
struct _UMockdevIoctlClient;
struct _UMockdevTestbed;

/** One request, as a driver meets it. */
class NodeRequest
{
public:
    NodeRequest(unsigned long code, _UMockdevIoctlClient *client) : code_(code), client_(client) {}

    uint32_t code() const { return static_cast<uint32_t>(code_); }

    /** The argument itself, where the driver takes a plain value. */
    uintptr_t value() const;

    /** The record that the argument points at, as a driver copies it in, and out again. */
    template <typename Record> Record record() const
    {
        Record copy;
        copy_in(&copy, sizeof copy);
        return copy;
    }
    template <typename Record> void fill(const Record &record) const { copy_out(&record, sizeof record); }

private:
    void copy_in(void *record, size_t size) const;
    void copy_out(const void *record, size_t size) const;

    unsigned long code_;
    _UMockdevIoctlClient *client_;
};

class EmulatedNode
{
public:
    /** 0 or more = the result; below 0 = the negative number of the error. Called on umockdev's thread. */
    using Driver = std::function<int(const NodeRequest &request)>;

    explicit EmulatedNode(const std::string &path, Driver driver = nullptr);
    ~EmulatedNode();
    EmulatedNode(const EmulatedNode &) = delete;
    EmulatedNode &operator=(const EmulatedNode &) = delete;

    /** An event that a read takes whole; a read without one gives 0 bytes. */
    template <typename Event> void post(const Event &event)
    {
        const auto *bytes = reinterpret_cast<const uint8_t *>(&event);
        const std::lock_guard guard(mutex_);
        events_.emplace_back(bytes, bytes + sizeof event);
    }

    /** From now on reads fail with this error. */
    void fail_reads(int error);

    // For umockdev.
    int answer(const NodeRequest &request) const { return driver_(request); }
    int read(_UMockdevIoctlClient *client);

private:
    Driver driver_;
    std::mutex mutex_; // guards what follows
    std::deque<std::vector<uint8_t>> events_;
    int read_error_ = 0;

    _UMockdevTestbed *testbed_;
    _UMockdevIoctlBase *handler_;
};
