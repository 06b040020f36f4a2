/*
 * stand_in_wall.h - what a module of the recorder knows of the wall, without the wall: it
 * takes down what it is asked for. For tests of a single module.
 */
#pragma once

#include <memory>
#include <vector>

#include "camera/feeder.h"
#include "console/terminal.h"
#include "wall/module.h"
#include "wall/report.h"
#include "wall/session.h"

namespace nvrec_test
{

class StandInWall : public nvrec::WallControl
{
public:
    explicit StandInWall(int cameras = 0) { add_cameras(cameras); }

    /** So many, which are never opened. */
    void add_cameras(int cameras)
    {
        for (int channel = 0; channel < cameras; ++channel)
            cameras_.push_back(std::make_unique<nvrec::Feeder>(channel, "none", nvrec::FeedOptions()));
    }

    nvrec::Session &session() override { return session_; }
    nvrec::Terminal &terminal() override { return terminal_; }
    nvrec::Reporter &reporter() override { return reporter_; }
    const std::vector<std::unique_ptr<nvrec::Feeder>> &cameras() const override { return cameras_; }
    void show_layout(nvrec::Layout layout) override
    {
        layout_ = layout;
        enlarged_ = -1;
    }
    nvrec::Layout layout() const override { return layout_; }
    void enlarge(int channel) override { enlarged_ = channel; }
    int enlarged() const override { return enlarged_; }
    void select(int channel) override { selected_ = channel; }
    int selected() const override { return selected_; }
    void key(nvrec::Key key) override { keys.push_back(key); }
    void pointer(const nvrec::PointerEvent &event) override { pointers.push_back(event); }
    void wake() override {}
    void set_recording(bool on) override { recording_ = on; }
    bool recording() const override { return recording_; }
    void end(int exit_code) override { ends.push_back(exit_code); }

    std::vector<nvrec::Key> keys;
    std::vector<nvrec::PointerEvent> pointers;
    std::vector<int> ends;

private:
    nvrec::Session session_;
    nvrec::Terminal terminal_;
    std::vector<std::unique_ptr<nvrec::Feeder>> cameras_;
    nvrec::Reporter reporter_{cameras_};
    nvrec::Layout layout_ = nvrec::Layout::kGrid2;
    int enlarged_ = -1;
    int selected_ = 0;
    bool recording_ = false;
};

} // namespace nvrec_test
