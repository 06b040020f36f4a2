/*
 * overlay.h - what the recorder draws over the video, with the menu and the cursor:
 *
 *   panes    borders, the selected one's highlight, camera names (overlay_panes.h)
 *   clock    date and time in the upper right corner             (clock_face.h)
 *   menu     opened by the menu key or the right mouse button    (menu.h)
 *   address  a QR code in the lower right corner                 (qr_code.h)
 *   cursor   the mouse's arrow, over all else                    (cursor.h)
 *
 * A change damages rectangles; paint() then clears each and draws in it whatever crosses it, in the
 * order above, in one drawing job. All of it runs on the main thread.
 */
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "screen/canvas.h"
#include "screen/clock_face.h"
#include "screen/cursor.h"
#include "screen/font.h"
#include "screen/menu.h"
#include "screen/overlay_panes.h"
#include "wall/module.h"

namespace nvrec
{

enum class OverlayMode { kAuto, kOn, kOff };

struct OverlayOptions {
    OverlayMode mode = OverlayMode::kAuto; /* auto = with a window */
    CameraNames names;
    std::string font_path;     /* empty = the host's font for Chinese  */
    std::string address;       /* empty = this machine's               */
    bool show_address = false; /* from the start                       */
    std::function<ClockFace::Time()> wall_time = nvrec::wall_time;
};

class Overlay final : public Module
{
public:
    explicit Overlay(OverlayOptions options);
    ~Overlay() override;

    bool start(WallControl &wall) override;
    Clock::time_point take_turn(Clock::time_point now) override;
    void on_layout() override;
    InputLayer input_layer() const override;
    bool on_key(Key key) override;
    bool on_pointer(const PointerEvent &event) override;
    void stop() override;

    /** For tests: where things stand. */
    const PaneMarks *panes() const { return panes_.get(); }
    const Menu *menu() const { return menu_.get(); }
    const ClockFace *clock() const { return clock_.get(); }
    const Rect &address_place() const { return address_place_; }

private:
    /* What the address card consists of. */
    struct Card {
        Tile code, title, text;
    };

    void open_font();
    void make_parts();
    void make_card();
    void damage(const Rect &rect);
    void paint();
    void paint_within(const Rect &rect);
    void paint_address();
    void tell_cameras();
    void show_address(bool shown);
    void open_menu(const PointerEvent *at);
    void close_menu();
    void choose();
    void enlarge_or_return();
    bool menu_key(Key key);
    bool wall_key(Key key);
    bool menu_pointer(const PointerEvent &event);
    bool wall_pointer(const PointerEvent &event);
    int text_size_px() const;

    const OverlayOptions options_;
    WallControl *wall_ = nullptr;
    bool drawing_ = false;
    Canvas canvas_;
    std::unique_ptr<Font> font_; /* null = no text */
    std::unique_ptr<PaneMarks> panes_;
    std::unique_ptr<ClockFace> clock_;
    std::unique_ptr<Menu> menu_;
    std::optional<Card> card_; /* made when it is first shown */
    bool address_shown_ = false;
    Rect address_place_;
    Cursor cursor_;
    Clock::time_point cursor_moved_at_;
    bool cursor_moved_ = false;
    std::vector<Rect> damage_;
};

} // namespace nvrec
