/*
 * overlay.h - what the recorder draws over the video, with the menu and the cursor:
 *
 *   panes    borders, the selected one's highlight, camera names (overlay_panes.h), and notices of
 *            cameras without pictures                            (pane_watch.h)
 *   clock    date and time, where no picture is                  (clock_face.h)
 *   line     what is wrong with the recorder, at the top         (notice_line.h)
 *   address  a QR code in the lower right corner                 (qr_code.h)
 *   menu     opened by the menu key or the right mouse button    (menu.h)
 *   question before recording is ended                           (question.h)
 *   cursor   the mouse's arrow, over all else                    (cursor.h)
 *
 * A change damages rectangles. In one drawing job paint() clears each of them and draws all parts that
 * overlap it, in the order above. All of it runs on the main thread, except on_unit().
 */
#pragma once

#include <atomic>
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
#include "screen/notice_line.h"
#include "screen/overlay_mode.h"
#include "screen/overlay_panes.h"
#include "screen/pane_watch.h"
#include "screen/question.h"
#include "wall/module.h"

namespace nvrec
{

struct OverlayOptions {
    OverlayMode mode = OverlayMode::kAuto; /* auto = with a window */
    CameraNames names;
    std::string font_path;     /* empty = the host's font for Chinese  */
    std::string address;       /* what the QR code says; empty = there is none */
    bool show_address = false; /* from the start                       */
    std::function<ClockFace::Time()> wall_time = nvrec::wall_time;
};

class Overlay final : public Module
{
public:
    explicit Overlay(OverlayOptions options);
    ~Overlay() override;

    bool start(WallControl &wall) override;
    void on_unit(int channel, const AccessUnit &unit, const StreamFacts &facts) override;
    Clock::time_point take_turn(Clock::time_point now) override;
    void before_layout() override { layout_comes_ = true; }
    void on_layout() override;
    void on_camera_replaced(int channel) override;
    void before_last_pictures() override;
    bool ask_whether_to_end() override;
    InputLayer input_layer() const override;
    bool on_key(Key key) override;
    bool on_pointer(const PointerEvent &event) override;
    void stop() override;

    /** The camera on a channel has this name; empty = it is called by its number. Main thread. */
    void name_camera(int channel, const std::string &name);

    /** For tests: the places of the parts. */
    const PaneMarks *panes() const { return panes_.get(); }
    const Menu *menu() const { return menu_.get(); }
    const ClockFace *clock() const { return clock_.get(); }
    const NoticeLine *line() const { return line_.get(); }
    const Question *question() const { return question_.get(); }
    const Rect &address_place() const { return address_place_; }

private:
    /* The parts of the address card. */
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
    void tell_cameras(Clock::time_point now, std::time_t wall_s);
    void tell_alarms(Clock::time_point now);
    void find_room_for_clock();
    void answer(bool yes);
    bool question_key(Key key);
    bool question_pointer(const PointerEvent &event);
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
    CameraNames names_; /* as they are called now */
    WallControl *wall_ = nullptr;
    bool drawing_ = false;
    bool layout_comes_ = false; /* the panes change, and not only the selection */
    Canvas canvas_;
    std::unique_ptr<Font> font_; /* null = no text */
    std::unique_ptr<PaneMarks> panes_;
    std::unique_ptr<ClockFace> clock_;
    std::unique_ptr<NoticeLine> line_;
    std::unique_ptr<Menu> menu_;
    std::unique_ptr<Question> question_;
    PaneWatch watch_;
    std::atomic<bool> running_ = false; /* on_unit() may look at it */
    std::optional<Card> card_;          /* made when it is first shown */
    bool address_shown_ = false;
    Rect address_place_;
    Cursor cursor_;
    Clock::time_point cursor_moved_at_;
    bool cursor_moved_ = false;
    std::vector<Rect> damage_;
};

} // namespace nvrec
