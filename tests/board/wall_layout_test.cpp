/*
 * wall_layout_test.cpp - changes of layout under cameras that never stop sending: no pane shows
 * another channel's picture or an older one than before, and what is hidden shows nothing.
 */
#include <dlfcn.h>

#include <array>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <optional>

#include "wall_session.h"

using namespace wall;
using rig::look;
using rig::Picture;

namespace
{

constexpr uint32_t kPanes = 4;
constexpr unsigned kFramesOfACamera = 600;
constexpr unsigned kShare = 22; // of them between beginnings and ends of changes: four key frames
using Owners = std::array<std::optional<uint32_t>, kPanes>; // channel of each pane of the grid; none = dark

/*
 * Looks at the wall all the time. Of every look it knows which layouts were in force: the one, or
 * the old and the new one while the library changes from one to the other.
 */
class Watcher
{
public:
    Watcher() : thread_([this] { run(); }) {}
    ~Watcher() { end(); }

    void end()
    {
        done_ = true;
        if (thread_.joinable()) thread_.join();
    }

    void begin_change(const Owners &next)
    {
        const std::lock_guard guard(mutex_);
        next_ = next;
        changing_ = true;
        ++version_;
    }

    void end_change()
    {
        const std::lock_guard guard(mutex_);
        now_ = next_;
        changing_ = false;
        since_change_ = {};
        ++version_;
    }

    /* Wait until every pane of the layout has shown a picture newer than all before the change. */
    bool wait_for_new_pictures()
    {
        std::unique_lock lock(mutex_);
        return looked_.wait_for(lock, std::chrono::milliseconds(rig::kPatience_ms), [&] {
            for (uint32_t place = 0; place < kPanes; ++place)
                if (now_[place] && !since_change_[place]) return false;
            return true;
        });
    }

    /*
     * For the cameras' pace: wait until the wall has been looked at once more. A camera that has sent
     * its share since the last change began or ended waits for the next one, so that its stream lasts
     * however long the changes take.
     */
    struct Share {
        uint64_t version = 0;
        unsigned sent = 0;
    };
    void wait_for_a_look(Share *share)
    {
        std::unique_lock lock(mutex_);
        const uint64_t before = looks_;
        ++share->sent;
        looked_.wait(lock, [&] {
            if (share->version != version_) *share = {version_, 0};
            return done_ || (looks_ > before && share->sent < kShare);
        });
    }

private:
    void run()
    {
        while (!done_) {
            Owners from, to;
            uint64_t version = 0;
            bool settled = false;
            {
                const std::lock_guard guard(mutex_);
                from = now_;
                to = changing_ ? next_ : now_;
                settled = !changing_;
                version = version_;
            }
            const Picture picture = look();
            const std::lock_guard guard(mutex_);
            if (version != version_) { // a change began or ended meanwhile
                settled = false;
                to = changing_ ? next_ : now_;
            }
            for (uint32_t place = 0; place < kPanes; ++place)
                judge(picture, place, from[place], to[place], settled);
            ++looks_;
            looked_.notify_all();
        }
        const std::lock_guard guard(mutex_); // nobody is between looking at done_ and waiting
        looked_.notify_all();
    }

    void judge(const Picture &picture, uint32_t place, std::optional<uint32_t> from,
               std::optional<uint32_t> to, bool settled)
    {
        const auto seen = stamp_in(picture, grid_place(2, place));
        if (!seen) {
            EXPECT_TRUE(part_of(picture, grid_place(2, place)).is_black()) << "pane " << place;
            return;
        }
        EXPECT_TRUE(seen->channel == from || seen->channel == to)
            << "channel " << seen->channel << " in pane " << place;
        EXPECT_GE(seen->frame, newest_[seen->channel]) << "channel " << seen->channel;
        if (settled && seen->frame > newest_[seen->channel]) since_change_[place] = true;
        newest_[seen->channel] = std::max(newest_[seen->channel], seen->frame);
    }

    std::mutex mutex_;
    std::condition_variable looked_;
    std::atomic<bool> done_{false};
    Owners now_ = {}, next_ = {};
    bool changing_ = false;
    uint64_t version_ = 0, looks_ = 0;
    std::array<bool, kPanes> since_change_ = {};
    std::array<uint32_t, 64> newest_ = {};
    std::thread thread_;
};

class LayoutOfTheWall : public Wall
{
protected:
    void SetUp() override { start(4); }

    static std::vector<DispAttrib> layout_of(const Owners &owners)
    {
        std::vector<DispAttrib> panes;
        for (uint32_t place = 0; place < kPanes; ++place)
            if (owners[place]) panes.push_back(pane(*owners[place], grid_place(2, place)));
        return panes;
    }
};

TEST_F(LayoutOfTheWall, NoChangeShowsAnOlderPictureOrAnotherChannels)
{
    std::vector<Camera> cameras;
    for (uint32_t channel = 0; channel < 4; ++channel)
        cameras.emplace_back("wall_run_" + std::to_string(channel) + (channel % 2 != 0 ? "_h265" : "_h264"));
    meet(cameras);
    Watcher watcher;
    std::atomic<bool> done{false};
    std::atomic<unsigned> ran_dry{0};
    std::vector<std::thread> senders;
    for (uint32_t channel = 0; channel < 4; ++channel)
        senders.emplace_back([&, channel] {
            Watcher::Share share;
            for (const rig::Bytes &frame : cameras[channel].stream.frames) {
                if (done) return;
                session::send_live(channel, frame, cameras[channel].codec()); // refused in mid-change
                watcher.wait_for_a_look(&share);
            }
            ++ran_dry;
        });
    const Owners layouts[] = {{0, 1, 2, 3},
                              {3, 2, 1, 0},
                              {1, std::nullopt, std::nullopt, 0},
                              {2, 3, 0, 1},
                              {std::nullopt, 3, 2, std::nullopt},
                              {0, 2, 1, 3}};
    constexpr unsigned kRounds = 2;
    static_assert((2 * kRounds * std::size(layouts) + 1) * (kShare + 1) <= kFramesOfACamera);
    for (unsigned round = 0; round < kRounds; ++round)
        for (const Owners &layout : layouts) {
            watcher.begin_change(layout);
            EXPECT_EQ(lay_out(layout_of(layout)), 0);
            watcher.end_change();
            EXPECT_TRUE(watcher.wait_for_new_pictures());
        }
    EXPECT_EQ(ran_dry, 0u) << "a camera's stream was too short for this test";
    done = true;
    watcher.end(); // nobody waits for a look any more
    for (std::thread &sender : senders)
        sender.join();
}

TEST_F(LayoutOfTheWall, AHiddenChannelShowsNothing)
{
    std::vector<Camera> cameras;
    for (uint32_t channel = 0; channel < 4; ++channel)
        cameras.emplace_back("session_live_" + std::to_string(channel) + "_h265");
    const auto send_everywhere = [&](size_t frame) {
        for (uint32_t channel = 0; channel < 4; ++channel)
            send(channel, cameras[channel].stream.frames[frame], cameras[channel].codec());
    };
    ASSERT_EQ(lay_out(grid(2, 4)), 0);
    send_everywhere(0);
    const std::vector<DispAttrib> with_hidden = {pane(0, grid_place(2, 0)), pane(1, grid_place(2, 1), 2),
                                                 pane(2, grid_place(2, 2), 3)};
    ASSERT_EQ(lay_out(with_hidden), 0);
    const uint64_t sent_before = rig::counters(3).frames_sent;
    send_everywhere(0);
    send_everywhere(1);

    const Picture picture = look();
    EXPECT_EQ(stamp_in(picture, grid_place(2, 0)), (stamp::Stamp{0, 1}));
    EXPECT_EQ(stamp_in(picture, grid_place(2, 1)), (stamp::Stamp{1, 1})) << "2 shows as 1 does";
    EXPECT_TRUE(picture.part(0, 540, 1920, 540).is_black());
    EXPECT_GT(rig::counters(2).decoded, 0u) << "a hidden pane's channel is decoded";
    EXPECT_EQ(rig::port_state(2).enabled, 0u);
    EXPECT_EQ(rig::counters(3).frames_sent, sent_before) << "a channel without a pane is not";
}

/* A single pane of a channel that does not exist is taken, and then no single pane can be flushed. */
TEST_F(LayoutOfTheWall, AnAbsentSingleChannelBarsSinglePanesUntilALayoutOfSeveral)
{
    const Camera camera("wall_1_h265");
    const Place screen = {0, 0, session::kWallWidth, session::kWallHeight};
    ASSERT_EQ(lay_out({pane(9, screen)}), 0);
    EXPECT_TRUE(look().is_black());
    for (int again = 0; again < 2; ++again) {
        EXPECT_EQ(lay_out({pane(1, screen)}), rig::code(MI_MODULE_VDEC, MI_REASON_ABSENT));
        EXPECT_EQ(session::send_live(1, camera.stream.frames[0]), 0) << "dropped";
        EXPECT_TRUE(look().is_black());
    }
    ASSERT_EQ(lay_out(grid(2, 4)), 0);
    ASSERT_EQ(lay_out({pane(1, screen)}), 0);
    send(1, camera.stream.frames[0], session::kH265);
    EXPECT_EQ(stamp_in(look(), screen), (stamp::Stamp{1, 0}));
}

/* A single pane has the decoder's largest size: anywhere but at 0,0 it leaves the output. */
TEST_F(LayoutOfTheWall, ASinglePaneAwayFromTheCornerIsRefusedAndKeepsTheLock)
{
    EXPECT_EQ(lay_out({pane(1, {640, 360, 640, 360})}), -1);
    EXPECT_EQ(pthread_mutex_trylock(&global_bindargLock), EBUSY);
    EXPECT_NE(rig::last_refusal().find("MI_DISP_SetInputPortAttr"), std::string::npos);
    EXPECT_EQ(pthread_mutex_unlock(&global_bindargLock), 0); // as an application gets out of it
    EXPECT_EQ(lay_out({pane(1, {0, 0, 640, 360})}), 0);
}

/* As the library itself knows its saved layouts: the secondary output's stands before the exported three. */
TEST(SavedLayouts, OfTheSecondaryOutputStandsDirectlyBeforeTheExportedOnes)
{
    DeviceParams params = {};
    params.vi_chn_num = 4;
    params.vo_dev_type = 3; // no local output: the secondary device is current
    params.gui_width = session::kWallWidth;
    params.gui_height = session::kWallHeight;
    ASSERT_EQ(ext_device_init(&params), 0);
    DispAttrib panes[] = {pane(2, {0, 0, 640, 360}), pane(3, {640, 0, 640, 360}, 3)};
    ASSERT_EQ(ext_change_display_slave(panes, 2), 0);

    void *library = dlopen("libnvrhal.so.1", RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto *exported = static_cast<const char *>(dlsym(library, "old_global_bindarg"));
    ASSERT_NE(exported, nullptr);
    BindArgs saved;
    memcpy(&saved, exported - sizeof saved, sizeof saved);
    EXPECT_EQ(saved.vo_dev, static_cast<uint32_t>(-1));
    EXPECT_EQ(saved.chn_num, 4u);
    EXPECT_EQ(saved.chn[2], 2u);
    EXPECT_EQ(saved.chn[3], 3u);
    EXPECT_EQ(saved.bind_status[2], 1u);
    EXPECT_EQ(saved.bind_status[3], 3u);
    const BindArgs none = {};
    for (const BindArgs &other : old_global_bindarg)
        EXPECT_EQ(memcmp(&other, &none, sizeof none), 0);

    params.vi_chn_num = 0; // fails at once, but the saved layouts are cleared before anything else
    EXPECT_EQ(ext_device_init(&params), -1);
    memcpy(&saved, exported - sizeof saved, sizeof saved);
    EXPECT_EQ(memcmp(&saved, &none, sizeof none), 0) << "a start clears it with the others";
    EXPECT_EQ(dlclose(library), 0);
}

} // namespace
