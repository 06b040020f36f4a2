/*
 * stores.h - three ways to hand frames from one writer to several readers, behind one interface.
 *
 * A store is written by one thread; take() is called by reader threads, each with its own number.
 */
#pragma once

#include "nvrhal.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

namespace bench_pool
{

/** The main stream's rings, as start-up sizes them. */
constexpr StreamRingSizes kRing = {NVRHAL_MAIN_FRAME_BYTES, NVRHAL_MAIN_RING_BYTES, NVRHAL_MAIN_RING_FRAMES};

class Store
{
public:
    virtual ~Store() = default;
    virtual void write(const uint8_t *bytes, uint32_t length) = 0;
    /** Take the next frame without looking into it. Its bytes, 0 = none. */
    virtual uint32_t take(int reader) = 0;
};

/** Channel 0 of the main pool. */
class PoolStore : public Store
{
public:
    explicit PoolStore(int readers);
    void write(const uint8_t *bytes, uint32_t length) override;
    uint32_t take(int reader) override;
    StreamReader &reader(int number) { return readers_[static_cast<size_t>(number)]; }
    uint8_t *ring() const { return const_cast<uint8_t *>(readers_[0].p_buf_data); }

private:
    StreamProducerFrame frame_{};
    std::vector<StreamReader> readers_;
};

/** memcpy into the pool's own ring by the pool's own rule of wrapping; nobody can read it. */
class PlainCopy : public Store
{
public:
    explicit PlainCopy(uint8_t *ring) : ring_(ring) {}
    void write(const uint8_t *bytes, uint32_t length) override;
    uint32_t take(int) override { return 0; }

private:
    uint8_t *ring_;
    uint32_t position_ = 0;
};

/** A queue of vectors for each reader, each under its mutex; the oldest go when the bytes exceed the ring's.
 */
class QueueStore : public Store
{
public:
    explicit QueueStore(int readers);
    void write(const uint8_t *bytes, uint32_t length) override;
    uint32_t take(int reader) override;

private:
    struct Queue {
        std::mutex mutex;
        std::deque<std::vector<uint8_t>> frames;
        size_t bytes = 0;
    };
    std::vector<std::unique_ptr<Queue>> queues_;
};

} // namespace bench_pool
