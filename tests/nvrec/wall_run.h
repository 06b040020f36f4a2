/* wall_run.h - "nvrec wall" as a process, and panes of its screen by the colours of the cameras. For tests.
 */
#pragma once

#include <array>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "nvrec_run.h"

namespace nvrec_test
{

constexpr int kClipFrames = 30;

inline std::string clip(const std::string &name)
{
    return std::string(NVREC_CLIPS) + "/" + name;
}

/* What the cameras of colour0 to colour5 see. */
inline constexpr std::array<std::array<int, 3>, 6> kColours = {
    {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 0}, {0, 255, 255}, {255, 0, 255}}};

inline bool near(const std::array<int, 3> &seen, const std::array<int, 3> &expected)
{
    constexpr int kCodecAndRangeError = 8;
    for (size_t i = 0; i < 3; ++i)
        if (std::abs(seen[i] - expected[i]) > kCodecAndRangeError) return false;
    return true;
}

struct Pane {
    int x, y, w, h;
};

/* The whole pane shows one camera: its middle, and just inside its corners. */
inline void expect_pane_shows(const Picture &picture, const Pane &pane, size_t colour)
{
    constexpr int kInside_px =
        3; /* the scaler mixes nothing in from outside, but rows 0 and 1 share chroma */
    const int left = pane.x + kInside_px, right = pane.x + pane.w - 1 - kInside_px;
    const int top = pane.y + kInside_px, bottom = pane.y + pane.h - 1 - kInside_px;
    for (const auto &[x, y] : {std::pair(pane.x + pane.w / 2, pane.y + pane.h / 2),
                               {left, top},
                               {right, top},
                               {left, bottom},
                               {right, bottom}}) {
        const auto seen = picture.at(x, y);
        EXPECT_TRUE(near(seen, kColours[colour])) << "camera " << colour << " at " << x << "," << y << ": "
                                                  << seen[0] << " " << seen[1] << " " << seen[2];
    }
}

class NvrecWall : public testing::Test
{
protected:
    /* Runs "nvrec wall" without a window, log, report and pictures in the scratch directory. The clips have
     * another shape than the panes, which they are to fill. */
    int wall(std::vector<std::string> arguments)
    {
        Process process(command(std::move(arguments)));
        const int status = process.wait();
        output_ = process.output;
        errors_ = process.errors;
        json_ = file_text(scratch_.file("report.json"));
        return status;
    }

    std::vector<std::string> command(std::vector<std::string> arguments) const
    {
        std::vector<std::string> whole = {NVREC_PROGRAM, "wall",
                                          "--window",    "off",
                                          "--log",       scratch_.file("log"),
                                          "--json",      scratch_.file("report.json"),
                                          "--aspect",    "stretch"};
        whole.insert(whole.end(), arguments.begin(), arguments.end());
        return whole;
    }

    std::string last_words() const { return output_ + errors_; }

    ScratchDirectory scratch_;
    std::string output_, errors_, json_;
};

} // namespace nvrec_test
