/* live_screen.cpp - see live_screen.h. */
#include "server/live_screen.h"

#include <algorithm>
#include <vector>

#include "server/image_file.h"
#include "server/requests.h"

namespace vboard_app
{
namespace
{

using namespace std::chrono_literals;

constexpr int kQuality = 75;   // of JPEG
constexpr auto kAtLatest = 1s; // a picture comes, changed or not
constexpr auto kAfterError = 500ms;

} // namespace

LiveScreen::LiveScreen(Board &board, Deliver deliver)
    : board_(board), deliver_(std::move(deliver)), thread_([this] { run(); })
{
}

LiveScreen::~LiveScreen()
{
    {
        std::lock_guard lock(mutex_);
        ends_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void LiveScreen::add(uint64_t viewer, uint32_t width, uint32_t rate)
{
    std::lock_guard lock(mutex_);
    viewers_[viewer].width = width;
    viewers_[viewer].period = std::chrono::duration_cast<Clock::duration>(1s) / rate;
}

void LiveScreen::next(uint64_t viewer)
{
    {
        std::lock_guard lock(mutex_);
        const auto found = viewers_.find(viewer);
        if (found == viewers_.end()) return;
        found->second.wants = true;
    }
    changed_.notify_all();
}

void LiveScreen::remove(uint64_t viewer)
{
    std::lock_guard lock(mutex_);
    viewers_.erase(viewer);
}

LiveScreen::Clock::time_point LiveScreen::next_look() const
{
    auto soonest = Clock::time_point::max();
    for (const auto &[number, viewer] : viewers_)
        if (viewer.wants) soonest = std::min(soonest, viewer.last + viewer.period);
    return soonest;
}

void LiveScreen::run()
{
    std::unique_lock lock(mutex_);
    auto not_before = Clock::now();
    while (!ends_) {
        const auto due = next_look();
        if (due == Clock::time_point::max()) {
            changed_.wait(lock);
            continue;
        }
        const auto at = std::max(due, not_before);
        if (Clock::now() < at) {
            changed_.wait_until(lock, at);
            continue;
        }
        const auto shortest =
            std::min_element(viewers_.begin(), viewers_.end(), [](const auto &one, const auto &other) {
                return one.second.period < other.second.period;
            })->second.period;
        lock.unlock();
        const auto began = Clock::now();
        not_before = began + shortest;
        try {
            show();
        } catch (const RequestError &) {
            not_before = Clock::now() + kAfterError; // a program that stands still; the last picture stays
        }
        lock.lock();
    }
}

/* Look at the monitor once, and give its picture to those who are to have it. */
void LiveScreen::show()
{
    Picture picture = picture_of(board_, nullptr, false);
    if (sequence_ == 0 || picture.width != shown_.width || picture.bytes != shown_.bytes) {
        shown_ = std::move(picture);
        ++sequence_;
        encoded_.clear();
    }
    struct Due {
        uint64_t number;
        uint32_t width;
    };
    std::vector<Due> due;
    const auto now = Clock::now();
    {
        std::lock_guard lock(mutex_);
        for (auto &[number, viewer] : viewers_) {
            if (!viewer.wants || now + 1ms < viewer.last + viewer.period) continue;
            if (viewer.sequence == sequence_ && now < viewer.last + kAtLatest) continue;
            viewer.wants = false;
            // The rate is kept on average, whenever the thread wakes up.
            viewer.last = now - viewer.last < 2 * viewer.period ? viewer.last + viewer.period : now;
            viewer.sequence = sequence_;
            due.push_back({number, viewer.width});
        }
    }
    for (const Due &viewer : due) {
        std::shared_ptr<const std::string> &jpeg = encoded_[viewer.width];
        if (!jpeg)
            jpeg = std::make_shared<const std::string>(
                as_jpeg(viewer.width == shown_.width ? shown_ : scaled(shown_, viewer.width), kQuality));
        deliver_(viewer.number, jpeg);
    }
}

} // namespace vboard_app
