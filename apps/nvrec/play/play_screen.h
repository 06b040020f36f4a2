/*
 * play_screen.h - what the recorder draws over recordings that play: the time line, every camera's name
 * and the mouse's cursor.
 *
 * Mouse: a press on the time line goes there, and so does dragging; the wheel shows a longer or
 * shorter time. Keys: menu takes the time line away and brings it back; up and down show a longer or
 * shorter time. All other keys go to the player; its keys left and right jump by a step of the time line.
 *
 * Threads: main thread.
 */
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "play/line_drag.h"
#include "play/player.h"
#include "screen/canvas.h"
#include "screen/cursor.h"
#include "screen/font.h"
#include "screen/overlay.h"
#include "screen/time_line.h"
#include "wall/module.h"

namespace nvrec
{

struct PlayScreenOptions {
    OverlayMode mode = OverlayMode::kAuto; /* auto = with a window      */
    Language language = Language::kEnglish;
    std::string font_path; /* empty = the host's        */
};

class PlayScreen final : public Module
{
public:
    /** @param player  lives as long as the wall */
    PlayScreen(PlayScreenOptions options, Player &player) : options_(std::move(options)), player_(player) {}

    bool start(WallControl &wall) override;
    Clock::time_point take_turn(Clock::time_point now) override;
    void on_layout() override;
    InputLayer input_layer() const override { return InputLayer::kMenu; }
    bool on_key(Key key) override;
    bool on_pointer(const PointerEvent &event) override;
    void stop() override;

    /** For tests: where the time line is; null = nothing is drawn. */
    const TimeLine *time_line() const { return line_.get(); }

private:
    struct Name {
        Tile tile;
        int x = 0, y = 0;
        Rect place() const { return {x, y, tile.width, tile.height}; }
    };

    bool shown() const { return wanted_ && player_.playing(); }
    TimeLineState state() const;
    void go_to(std::optional<int64_t> place_us);
    void set_key_step();
    void step_span(int steps);
    void lay_names();
    void damage(const Rect &rect);
    void paint();

    const PlayScreenOptions options_;
    Player &player_;
    WallControl *wall_ = nullptr;
    bool drawing_ = false;
    bool wanted_ = true; /* the time line, by the menu key */
    bool was_shown_ = false;
    LineDrag drag_;
    Canvas canvas_;
    std::unique_ptr<Font> font_; /* null = no text */
    std::unique_ptr<TimeLine> line_;
    std::vector<Name> names_;
    Cursor cursor_;
    bool cursor_moved_ = false;
    std::vector<Rect> damage_;
};

} // namespace nvrec
