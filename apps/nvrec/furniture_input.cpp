/* furniture_input.cpp - what keys and the mouse do with the furniture; see furniture.h. */
#include "furniture.h"

#include "command.h"
#include "session.h"

namespace nvrec
{
namespace
{

constexpr auto kDoubleClick = std::chrono::milliseconds(400);
constexpr uint32_t kLeftButton = 1, kRightButton = 2;

} // namespace

bool Furniture::on_key(Key key)
{
    if (!drawing_) return false;
    const bool taken = menu_key(key);
    paint();
    return taken;
}

/* A menu that is open takes every key that it knows, and keeps the others from the wall's keys. */
bool Furniture::menu_key(Key key)
{
    const bool open = menu_ && menu_->is_open();
    switch (key) {
    case Key::kMenu:
        if (!menu_) return false;
        open ? close_menu() : open_menu(nullptr);
        return true;
    case Key::kUp:
    case Key::kDown:
        if (!open) return move_selection(0, key == Key::kUp ? -1 : 1);
        soil(menu_->step(key == Key::kUp ? -1 : 1));
        return true;
    case Key::kLeft:
    case Key::kRight: return open || move_selection(key == Key::kLeft ? -1 : 1, 0);
    case Key::kEnter: open ? choose() : enlarge_or_return(); return true;
    case Key::kBack:
        if (!open) return step_back();
        close_menu();
        return true;
    default: break;
    }
    if (key < Key::kDigit0 || key > Key::kDigit9) return false;
    /* 1 to 9 are the cameras of these numbers, 0 is the tenth. */
    const int digit = static_cast<int>(key) - static_cast<int>(Key::kDigit0);
    return open || pick_camera(digit == 0 ? 9 : digit - 1);
}

/* Among the panes; with one camera alone on the screen, among the cameras. */
bool Furniture::move_selection(int dx, int dy)
{
    const int cameras = wall_->session().channels();
    if (wall_->enlarged() >= 0) return pick_camera((wall_->enlarged() + dx + dy + cameras) % cameras);
    const int next = panes_->neighbour(dx, dy);
    if (next >= 0) wall_->select(next);
    return true;
}

bool Furniture::pick_camera(int channel)
{
    if (channel >= wall_->session().channels()) return false;
    if (wall_->enlarged() >= 0) {
        wall_->enlarge(channel);
    } else {
        wall_->select(channel);
    }
    return true;
}

bool Furniture::step_back()
{
    if (address_shown_) {
        show_address(false);
        return true;
    }
    if (wall_->enlarged() < 0) return false;
    wall_->enlarge(-1);
    return true;
}

void Furniture::enlarge_or_return()
{
    wall_->enlarge(wall_->enlarged() >= 0 ? -1 : wall_->selected());
}

void Furniture::open_menu(const PointerEvent *at)
{
    const MenuState state = {wall_->layout(), wall_->enlarged() >= 0, address_shown_};
    if (at) {
        menu_->open_at(canvas_.whole(), state, at->x, at->y);
    } else {
        menu_->open(canvas_.whole(), state);
    }
    soil(menu_->place());
}

void Furniture::close_menu()
{
    soil(menu_->place());
    menu_->close();
}

void Furniture::choose()
{
    const MenuAction action = menu_->chosen().action;
    const Layout layout = menu_->chosen().layout;
    close_menu();
    paint(); /* a new layout takes its time; the menu is gone at once */
    switch (action) {
    case MenuAction::kLayout: wall_->show_layout(layout); break;
    case MenuAction::kEnlarge: enlarge_or_return(); break;
    case MenuAction::kZoom: wall_->key(Key::kZoom); break;
    case MenuAction::kAddress: show_address(!address_shown_); break;
    case MenuAction::kQuit:
        wall_->end(kExitDone);
        wall_->ring();
        break;
    }
}

bool Furniture::on_pointer(const PointerEvent &event)
{
    if (!drawing_) return false;
    cursor_.move(event.x, event.y);
    cursor_moved_ = true;
    cursor_moved_at_ = Clock::now();
    const bool open = menu_ && menu_->is_open();
    if (open) soil(menu_->point_at(event.x, event.y));
    if (menu_ && (event.pressed & kRightButton) != 0) {
        if (open) close_menu();
        open_menu(&event);
    } else if ((event.pressed & kLeftButton) != 0) {
        press_left(event);
    }
    paint();
    return open || event.pressed != 0;
}

void Furniture::press_left(const PointerEvent &event)
{
    if (menu_ && menu_->is_open()) {
        if (menu_->is_on_row(event.x, event.y)) {
            choose();
        } else if (!menu_->place().contains(event.x, event.y)) {
            close_menu();
        }
        return;
    }
    if (address_shown_ && address_place_.contains(event.x, event.y)) return show_address(false);

    const int channel = panes_->channel_at(event.x, event.y);
    const Clock::time_point now = Clock::now();
    const bool twice = channel >= 0 && channel == clicked_ && now - clicked_at_ <= kDoubleClick;
    clicked_ = twice ? -1 : channel;
    clicked_at_ = now;
    if (channel < 0) return;
    wall_->select(channel);
    if (twice) enlarge_or_return();
}

} // namespace nvrec
