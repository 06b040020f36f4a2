/*
 * Storing and taking frames: the pool, plain memcpy into the same ring, queues of vectors.
 *
 * Writing is timed by the writer thread's own CPU time, so that readers which take the CPU away do
 * not count, while what they cost the writer through shared memory does. Contestants take turns and
 * the best turn counts. Reading is timed on one thread over frames that lie ready.
 */
#include "build_kind.h"
#include "stores.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

using namespace bench_pool;

constexpr uint32_t kSizes[] = {2 * 1024, 20 * 1024, 200 * 1024};
constexpr int kReaderCounts[] = {0, 1, 3, 4, 16};
constexpr int kTurns = 15;
constexpr double kBytesPerTurn = 100e6;
constexpr int kSources = 7; // frames come from changing memory, as they do from a network

double thread_cpu_ns()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

class Source
{
public:
    explicit Source(uint32_t length) : length_(length)
    {
        for (int i = 0; i < kSources; ++i)
            buffers_.emplace_back(length, static_cast<uint8_t>(i));
    }
    const uint8_t *next() { return buffers_[next_++ % kSources].data(); }
    uint32_t length() const { return length_; }

private:
    uint32_t length_;
    std::vector<std::vector<uint8_t>> buffers_;
    size_t next_ = 0;
};

/** The writer's CPU time a frame, with so many reader threads taking what comes. */
double write_ns(Store &store, Source &source, int readers)
{
    std::atomic<bool> is_done{false};
    std::atomic<int> running{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < readers; ++i)
        threads.emplace_back([&, i] {
            ++running;
            while (!is_done.load(std::memory_order_relaxed))
                if (store.take(i) == 0) std::this_thread::yield();
        });
    while (running.load() < readers)
        std::this_thread::yield();

    const int frames = static_cast<int>(std::max(200.0, kBytesPerTurn / source.length()));
    const double start = thread_cpu_ns();
    for (int i = 0; i < frames; ++i)
        store.write(source.next(), source.length());
    const double elapsed = thread_cpu_ns() - start;
    is_done.store(true);
    for (std::thread &thread : threads)
        thread.join();
    return elapsed / frames;
}

/**
 * Time to take one frame that lies ready. Few large frames lie ready at once, so each reader goes
 * over them again and again from where it stood; putting it back is in the time.
 */
double read_ns(PoolStore &pool, Source &source, int readers)
{
    constexpr int kPasses = 2000;
    const int ready =
        std::max(1, static_cast<int>(NVRHAL_MAIN_FRAME_BYTES / source.length())); // well within the ring
    for (int reader = 0; reader < readers; ++reader)
        while (pool.take(reader) != 0) {
        }
    for (int i = 0; i < ready; ++i)
        pool.write(source.next(), source.length());
    std::vector<StreamReader> places;
    for (int reader = 0; reader < readers; ++reader)
        places.push_back(pool.reader(reader));

    const double start = thread_cpu_ns();
    for (int pass = 0; pass < kPasses; ++pass) {
        for (int reader = 0; reader < readers; ++reader) {
            pool.reader(reader) = places[static_cast<size_t>(reader)];
            for (int i = 0; i < ready; ++i)
                if (pool.take(reader) != source.length()) std::abort();
        }
    }
    return (thread_cpu_ns() - start) / kPasses / readers / ready;
}

void compare_writing(FILE *report)
{
    std::fprintf(report,
                 "writing, the writer's time\n"
                 "  bytes readers |  memcpy ns   GB/s |    pool ns   GB/s  x memcpy |  queues ns  x pool\n");
    for (uint32_t size : kSizes) {
        for (int readers : kReaderCounts) {
            Source source(size);
            PoolStore pool(readers);
            PlainCopy plain(pool.ring());
            QueueStore queues(readers);
            double plain_ns = 1e300, pool_ns = 1e300, queues_ns = 1e300;
            for (int turn = 0; turn < kTurns; ++turn) {
                plain_ns = std::min(plain_ns, write_ns(plain, source, 0));
                pool_ns = std::min(pool_ns, write_ns(pool, source, readers));
                if (turn < 3) queues_ns = std::min(queues_ns, write_ns(queues, source, readers));
            }
            std::fprintf(report, " %6u %7d | %10.1f %6.2f | %10.1f %6.2f %9.3f | %10.1f %7.2f\n", size,
                         readers, plain_ns, size / plain_ns, pool_ns, size / pool_ns, pool_ns / plain_ns,
                         queues_ns, queues_ns / pool_ns);
            std::fflush(report);
        }
    }
}

void compare_bookkeeping(FILE *report)
{
    Source source(1);
    PoolStore pool(1);
    PlainCopy plain(pool.ring());
    double plain_ns = 1e300, pool_ns = 1e300;
    for (int turn = 0; turn < kTurns; ++turn) {
        for (auto [store, best] : {std::pair<Store *, double *>{&plain, &plain_ns}, {&pool, &pool_ns}}) {
            const double start = thread_cpu_ns();
            for (int i = 0; i < 1000000; ++i)
                store->write(source.next(), 1);
            *best = std::min(*best, (thread_cpu_ns() - start) / 1e6);
        }
    }
    std::fprintf(
        report, "bookkeeping, frames of one byte: memcpy %.1f ns, pool %.1f ns, difference %.1f ns a frame\n",
        plain_ns, pool_ns, pool_ns - plain_ns);
}

void compare_reading(FILE *report)
{
    std::fprintf(report, "reading, one frame that lies ready\n  bytes readers |    pool ns\n");
    for (uint32_t size : kSizes) {
        for (int readers : kReaderCounts) {
            if (readers == 0) continue;
            Source source(size);
            PoolStore pool(readers);
            double best_ns = 1e300;
            for (int turn = 0; turn < 5; ++turn)
                best_ns = std::min(best_ns, read_ns(pool, source, readers));
            std::fprintf(report, " %6u %7d | %10.1f\n", size, readers, best_ns);
        }
    }
}

} // namespace

int main()
{
    require_optimised_build();
    // The library prints each position. That is discarded; the report goes to the original output.
    FILE *report = fdopen(dup(STDOUT_FILENO), "w");
    if (!report || !std::freopen("/dev/null", "w", stdout)) return 1;
    compare_bookkeeping(report);
    compare_writing(report);
    compare_reading(report);
    return std::fclose(report);
}
