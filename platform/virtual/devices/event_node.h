/*
 * event_node.h - a node that is read: every opening has a queue of its own and is given every
 * event. A read waits on the board clock for a while and then gives nothing.
 */
#ifndef VBOARD_EVENT_NODE_H
#define VBOARD_EVENT_NODE_H

#include <cerrno>
#include <cstring>
#include <deque>
#include <memory>
#include <vector>

#include "devices/device_node.h"
#include "media/call.h"
#include "media/clock.h"

namespace vboard
{

template <typename Record> class EventNode : public DeviceNode
{
public:
    EventNode(const char *path, int64_t patience_us) : path_(path), patience_us_(patience_us) {}

    const char *path() const override { return path_; }

    std::shared_ptr<OpenNode> open(int) override
    {
        auto opening = std::make_shared<Opening>(*this);
        const std::lock_guard guard(shared_.mutex);
        std::erase_if(openings_, [](const auto &known) { return known.expired(); });
        openings_.push_back(opening);
        return opening;
    }

    void reset() override
    {
        const std::lock_guard guard(shared_.mutex);
        openings_.clear();
    }

    /* Give an event to every opening. */
    void post(const Record &record)
    {
        std::vector<std::shared_ptr<Opening>> given;
        {
            const std::lock_guard guard(shared_.mutex);
            for (const auto &known : openings_) {
                std::shared_ptr<Opening> opening = known.lock();
                if (opening == nullptr) continue;
                if (opening->events.size() == kMostEvents) opening->events.pop_front();
                opening->events.push_back(record);
                given.push_back(std::move(opening));
            }
            shared_.changed.notify_all();
        }
        for (const auto &opening : given)
            opening->tell_follower();
    }

    virtual int request(unsigned long code, void *)
    {
        refuse_plainly("%s does not know request 0x%lx", path_, code);
        errno = ENOTTY;
        return -1;
    }

private:
    static constexpr size_t kMostEvents = 64;

    class Opening : public OpenNode
    {
    public:
        explicit Opening(EventNode &node) : node_(node) {}

        int read(void *buffer, size_t size) override
        {
            if (buffer == nullptr || size < sizeof(Record)) {
                refuse_plainly("%s: a read takes %zu bytes", node_.path_, sizeof(Record));
                errno = EINVAL;
                return -1;
            }
            std::unique_lock lock(node_.shared_.mutex);
            const int64_t until_us = clock_now_us() + node_.patience_us_;
            if (!wait_until(node_.shared_, lock, until_us, [&] { return !events.empty(); })) return 0;
            memcpy(buffer, &events.front(), sizeof(Record));
            events.pop_front();
            return sizeof(Record);
        }

        int ioctl(unsigned long code, void *argument) override { return node_.request(code, argument); }

        bool is_pending() override
        {
            const std::lock_guard guard(node_.shared_.mutex);
            return !events.empty();
        }

        bool follow(std::function<void()> follower) override
        {
            const std::lock_guard guard(follower_mutex_);
            if (follower && follower_) return false;
            follower_ = std::move(follower);
            return true;
        }

        void tell_follower()
        {
            const std::lock_guard guard(follower_mutex_);
            if (follower_) follower_();
        }

        std::deque<Record> events; // guarded by the node's mutex

    private:
        EventNode &node_;
        std::mutex follower_mutex_; // held during a call
        std::function<void()> follower_;
    };

    const char *path_;
    const int64_t patience_us_;
    Waitable shared_;
    std::vector<std::weak_ptr<Opening>> openings_;
};

} // namespace vboard

#endif
