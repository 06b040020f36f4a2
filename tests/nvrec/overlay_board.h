/*
 * overlay_board.h - the overlay on the board's framebuffer, pixel by pixel, with a wall that notes what
 * it is asked and a wall clock that the test sets. For tests.
 */
#pragma once

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvrhal.h"
#include "screen/overlay.h"
#include "stand_in_wall.h"

namespace nvrec_test
{

using namespace nvrec; // NOLINT(google-build-using-namespace): for tests

constexpr int kCameras = 4;
constexpr auto kSomeTime = std::chrono::seconds(1790000000); /* whole seconds of the epoch */

/* A wall whose layouts are on the board's screen. */
class NotingWall final : public nvrec_test::StandInWall
{
public:
    void show_layout(Layout layout) override
    {
        StandInWall::show_layout(layout);
        lay_out();
    }
    void enlarge(int channel) override
    {
        StandInWall::enlarge(channel);
        lay_out();
    }
    void select(int channel) override
    {
        StandInWall::select(channel);
        if (module) module->on_layout();
    }
    void wake() override { ++wakes; }
    std::string alarm() const override { return said_alarm; }

    void lay_out()
    {
        ASSERT_TRUE(enlarged() >= 0 ? session().apply_single(enlarged()) : session().apply(layout()));
        if (module) module->on_layout();
    }

    Module *module = nullptr;
    std::string said_alarm;
    int wakes = 0;
};

class OverlayOnBoard : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(wall_.session().start(*output_mode_named("1920x1080"), kCameras));
        wall_.lay_out();
        options_.mode = OverlayMode::kOn;
        options_.address = "http://192.0.2.10/";
        options_.wall_time = [this] { return time_; };
    }

    void start()
    {
        overlay_ = std::make_unique<Overlay>(options_);
        ASSERT_TRUE(overlay_->start(wall_));
        wall_.module = overlay_.get();
    }

    static uint16_t pixel(int x, int y)
    {
        uint16_t value = 0;
        const auto *memory = static_cast<const uint8_t *>(g_osd_info.mapped_address);
        std::memcpy(&value, memory + static_cast<size_t>(y) * g_osd_info.fixed.line_length + 2 * x,
                    sizeof value);
        return value;
    }

    static std::vector<uint16_t> screen()
    {
        std::vector<uint16_t> pixels;
        for (int y = 0; y < 1080; ++y)
            for (int x = 0; x < 1920; ++x)
                pixels.push_back(pixel(x, y));
        return pixels;
    }

    /* Where two pictures of the screen differ. */
    static Rect difference(const std::vector<uint16_t> &a, const std::vector<uint16_t> &b)
    {
        Rect all;
        for (int y = 0; y < 1080; ++y)
            for (int x = 0; x < 1920; ++x) {
                const auto at = static_cast<size_t>(y * 1920 + x);
                if (a[at] != b[at]) all = around(all, {x, y, 1, 1});
            }
        return all;
    }

    static bool inside(const Rect &inner, const Rect &outer) { return intersection(inner, outer) == inner; }

    static void expect_frame(const Rect &pane, int thickness, Colour colour)
    {
        const int middle_x = pane.x + pane.w / 2, middle_y = pane.y + pane.h / 2;
        for (int deep = 0; deep < thickness; ++deep) {
            EXPECT_EQ(pixel(pane.x + deep, middle_y), pixel_of(colour));
            EXPECT_EQ(pixel(pane.right() - 1 - deep, middle_y), pixel_of(colour));
            EXPECT_EQ(pixel(middle_x, pane.y + deep), pixel_of(colour));
            EXPECT_EQ(pixel(middle_x, pane.bottom() - 1 - deep), pixel_of(colour));
        }
        EXPECT_EQ(pixel(pane.x + thickness, middle_y), 0) << "the video begins here";
        EXPECT_EQ(pixel(middle_x, pane.bottom() - 1 - thickness), 0);
    }

    void press(std::initializer_list<Key> keys)
    {
        for (const Key key : keys)
            EXPECT_TRUE(overlay_->on_key(key));
    }

    /* Light that row of the open menu with the arrow keys. */
    void light(MenuAction action, Layout layout = {})
    {
        const Menu &menu = *overlay_->menu();
        for (size_t steps = 0; steps < menu.items().size(); ++steps) {
            if (menu.chosen().action == action &&
                (action != MenuAction::kLayout || menu.chosen().layout == layout))
                return;
            press({Key::kDown});
        }
        FAIL() << "the menu has no such row";
    }

    NotingWall wall_;
    OverlayOptions options_;
    ClockFace::Time time_{kSomeTime};
    std::unique_ptr<Overlay> overlay_;
};

} // namespace nvrec_test
