/*
 * input_remote_reader.h - a run of the remote-key reader: a receiver that gives what the test says,
 * read by read, and ends the reader's thread when it has nothing more to give.
 */
#pragma once

#include <pthread.h>

#include <cstring>
#include <deque>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "input/key_state.h"
#include "ir_driver.h"
#include "recording_expect.h"

namespace input_test
{

/* One read: its result, and the bytes that it puts into the buffer. */
struct Read {
    int32_t result;
    std::vector<uint8_t> bytes;
};

inline std::vector<uint8_t> frame_bytes(uint32_t code, uint32_t state = 0)
{
    const IrFrame frame = {0xABABABAB, code, state};
    std::vector<uint8_t> bytes(sizeof frame);
    std::memcpy(bytes.data(), &frame, sizeof frame);
    return bytes;
}

class RemoteReader
{
public:
    RemoteReader()
    {
        recording::platform.script("board_read").with(IR_NODE).fills([this](recording::Args &call) {
            give(call);
        });
    }

    RemoteReader &frame(uint32_t code, uint32_t state = 0) { return read({12, frame_bytes(code, state)}); }
    RemoteReader &nothing(int32_t result = 0) { return read({result, {}}); }
    RemoteReader &read(Read next)
    {
        reads_.push_back(std::move(next));
        return *this;
    }

    /** Run the reader on a thread of its own until all reads are used up. */
    void run()
    {
        recording::platform.ignore("board_read");
        pthread_t thread;
        ASSERT_EQ(pthread_create(
                      &thread, nullptr,
                      [](void *) -> void * {
                          hi_remotekey_proc();
                          return nullptr;
                      },
                      nullptr),
                  0);
        ASSERT_EQ(pthread_join(thread, nullptr), 0);
    }

private:
    void give(recording::Args &call)
    {
        if (reads_.empty()) pthread_exit(nullptr);
        const Read next = std::move(reads_.front());
        reads_.pop_front();
        if (!next.bytes.empty()) std::memcpy(call.pointer(1), next.bytes.data(), next.bytes.size());
        call.result = next.result;
    }

    std::deque<Read> reads_; // the test's thread fills it before the reader's thread starts
};

/** The keys from the first slot to the write index: what an empty queue was given. */
inline std::vector<uint32_t> queued_keys()
{
    std::vector<uint32_t> keys;
    for (uint32_t i = 0; i < key_que.write_index; ++i)
        keys.push_back(key_que.slots[i].code);
    return keys;
}

} // namespace input_test
