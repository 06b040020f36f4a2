/*
 * openings.h - opens cameras, each on a thread of its own, so that a camera that takes long to answer does
 * not delay the others.
 *
 * Threads: the main one, and those started here, which touch nothing but their camera and `woken`.
 */
#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <memory>
#include <thread>
#include <vector>

#include "camera/feeder.h"

namespace nvrec
{

class Openings
{
public:
    /** @param woken  called by a thread that has done its work */
    explicit Openings(std::function<void()> woken) : woken_(std::move(woken)) {}
    ~Openings() { wait_for_all(); }
    Openings(const Openings &) = delete;
    Openings &operator=(const Openings &) = delete;

    /** Begin to open a camera, which has to outlive this object. */
    void start(Feeder &camera);

    /** The cameras that have been opened since the last call, or could not be. */
    std::vector<Feeder *> take_finished();

    /** Wait for those that are still being opened. @return how many they were. */
    size_t wait_for_all();

    bool empty() const { return openings_.empty(); }
    bool contains(const Feeder &camera) const;

    /** Whether all of them are network cameras; files are waited for. */
    bool only_live() const;

private:
    struct Opening {
        Feeder *camera = nullptr;
        std::thread thread;
        std::atomic<bool> done = false;
    };

    const std::function<void()> woken_;
    std::list<Opening> openings_; /* not finished yet */
};

} // namespace nvrec
