/* Who of the recorder's modules gets a key or a mouse event first, and what a second click is. */
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "stand_in_wall.h"
#include "wall/double_click.h"
#include "wall/module_list.h"

namespace
{

using namespace nvrec;
using namespace std::chrono_literals;

/* Says that it was asked, and takes what it is told to. */
class Asked final : public Module
{
public:
    Asked(std::string name, InputLayer in, std::vector<std::string> &log)
        : layer(in), name_(std::move(name)), log_(log)
    {
    }

    bool start(WallControl &) override { return starts; }
    InputLayer input_layer() const override { return layer; }
    bool on_key(Key) override
    {
        log_.push_back(name_);
        return takes;
    }
    bool on_pointer(const PointerEvent &) override
    {
        log_.push_back(name_);
        return takes;
    }
    void stop() override { log_.push_back("stop " + name_); }

    InputLayer layer;
    bool takes = false;
    bool starts = true;

private:
    const std::string name_;
    std::vector<std::string> &log_;
};

class NvrecModuleList : public testing::Test
{
protected:
    Asked &add(const std::string &name, InputLayer layer)
    {
        auto module = std::make_unique<Asked>(name, layer, log_);
        Asked &added = *module;
        modules_.add(std::move(module));
        return added;
    }

    std::vector<std::string> log_;
    nvrec_test::StandInWall wall_;
    ModuleList modules_;
};

using Names = std::vector<std::string>;

TEST_F(NvrecModuleList, MenuBeforeZoomBeforePlaybackBeforeTheWallInWhateverOrderTheyWereAdded)
{
    add("wall", InputLayer::kWall);
    add("menu", InputLayer::kMenu);
    add("playback", InputLayer::kPlayback);
    add("volume", InputLayer::kTools);
    add("snapshot", InputLayer::kTools);
    add("zoom", InputLayer::kZoom);
    ASSERT_TRUE(modules_.start(wall_));
    modules_.key(Key::kUp);
    EXPECT_EQ(log_, (Names{"menu", "zoom", "playback", "snapshot", "volume", "wall"}));
    log_.clear();
    modules_.pointer({});
    EXPECT_EQ(log_, (Names{"menu", "zoom", "playback", "snapshot", "volume", "wall"}));
}

TEST_F(NvrecModuleList, WhoHasAUseForItEndsTheAsking)
{
    add("wall", InputLayer::kWall);
    add("zoom", InputLayer::kZoom).takes = true;
    Asked &menu = add("menu", InputLayer::kTools);
    ASSERT_TRUE(modules_.start(wall_));
    modules_.key(Key::kUp);
    EXPECT_EQ(log_, Names{"zoom"});
    log_.clear();
    menu.layer = InputLayer::kMenu; /* it was opened */
    modules_.key(Key::kUp);
    EXPECT_EQ(log_, (Names{"menu", "zoom"}));
}

TEST_F(NvrecModuleList, OneThatDoesNotStartIsStoppedAndThoseBehindItAreNot)
{
    add("first", InputLayer::kTools);
    add("second", InputLayer::kTools).starts = false;
    add("third", InputLayer::kTools);
    EXPECT_FALSE(modules_.start(wall_));
    modules_.stop();
    EXPECT_EQ(log_, (Names{"stop second", "stop first"}));
}

TEST(NvrecDoubleClick, IsTheSecondOneOnTheSamePictureWithinHalfASecond)
{
    DoubleClick clicks;
    const Clock::time_point begin = Clock::time_point() + 1h;
    EXPECT_FALSE(clicks.is_second(2, begin));
    EXPECT_TRUE(clicks.is_second(2, begin + 500ms));
    EXPECT_FALSE(clicks.is_second(2, begin + 600ms)) << "a third one begins anew";
    EXPECT_FALSE(clicks.is_second(3, begin + 700ms));
    EXPECT_FALSE(clicks.is_second(3, begin + 1201ms));
    EXPECT_FALSE(clicks.is_second(-1, begin + 1300ms));
    EXPECT_FALSE(clicks.is_second(-1, begin + 1400ms)) << "beside the pictures";
}

} // namespace
