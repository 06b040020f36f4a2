/* overlay_input.cpp - keys and mouse in the overlay; see overlay.h. */
#include "screen/overlay.h"

#include "console/exit_code.h"
#include "wall/session.h"

namespace nvrec
{
namespace
{

constexpr uint32_t kLeftButton = 1, kRightButton = 2;

} // namespace

/* An open menu gets keys before all else; a closed one only needs its own key. */
InputLayer Overlay::input_layer() const
{
    const bool first = (menu_ && menu_->is_open()) || (question_ && question_->is_open());
    return first ? InputLayer::kMenu : InputLayer::kTools;
}

bool Overlay::on_key(Key key)
{
    if (!drawing_) return false;
    const bool taken = question_ && question_->is_open() ? question_key(key)
                       : menu_ && menu_->is_open()       ? menu_key(key)
                                                         : wall_key(key);
    paint();
    return taken;
}

/* The back and menu keys mean: go on recording. */
bool Overlay::question_key(Key key)
{
    switch (key) {
    case Key::kUp:
    case Key::kDown:
    case Key::kLeft:
    case Key::kRight: damage(question_->step()); return true;
    case Key::kEnter: answer(question_->is_yes()); return true;
    case Key::kMenu:
    case Key::kBack: answer(false); return true;
    default: return key >= Key::kDigit0 && key <= Key::kDigit9;
    }
}

bool Overlay::question_pointer(const PointerEvent &event)
{
    damage(question_->point_at(event.x, event.y));
    if ((event.pressed & kLeftButton) != 0 && question_->is_on_answer(event.x, event.y))
        answer(question_->is_yes());
    else if ((event.pressed & kRightButton) != 0)
        answer(false);
    return true;
}

void Overlay::answer(bool yes)
{
    damage(question_->close());
    if (!yes) return;
    wall_->end(kExitDone);
    wall_->wake();
}

/* Keys that select panes and cameras are not the overlay's. */
bool Overlay::wall_key(Key key)
{
    if (key == Key::kMenu && menu_) {
        open_menu(nullptr);
        return true;
    }
    if (key != Key::kBack || !address_shown_) return false;
    show_address(false);
    return true;
}

/* An open menu also takes the keys that otherwise select panes and cameras. */
bool Overlay::menu_key(Key key)
{
    switch (key) {
    case Key::kUp: damage(menu_->step(-1)); return true;
    case Key::kDown: damage(menu_->step(1)); return true;
    case Key::kLeft:
    case Key::kRight: return true;
    case Key::kEnter: choose(); return true;
    case Key::kMenu:
    case Key::kBack: close_menu(); return true;
    default: return key >= Key::kDigit0 && key <= Key::kDigit9;
    }
}

void Overlay::enlarge_or_return()
{
    wall_->enlarge(wall_->enlarged() >= 0 ? -1 : wall_->selected());
}

void Overlay::open_menu(const PointerEvent *at)
{
    const MenuState state = {wall_->layout(), wall_->enlarged() >= 0, address_shown_};
    if (at) {
        menu_->open_at(canvas_.whole(), state, at->x, at->y);
    } else {
        menu_->open(canvas_.whole(), state);
    }
    damage(menu_->place());
}

void Overlay::close_menu()
{
    damage(menu_->place());
    menu_->close();
}

void Overlay::choose()
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
        wall_->end_by_user();
        wall_->wake();
        break;
    }
}

bool Overlay::on_pointer(const PointerEvent &event)
{
    if (!drawing_) return false;
    cursor_.move(event.x, event.y);
    cursor_moved_ = true;
    cursor_moved_at_ = Clock::now();
    const bool taken = question_ && question_->is_open() ? question_pointer(event)
                       : menu_ && menu_->is_open()       ? menu_pointer(event)
                                                         : wall_pointer(event);
    paint();
    return taken;
}

bool Overlay::wall_pointer(const PointerEvent &event)
{
    if (menu_ && (event.pressed & kRightButton) != 0) {
        open_menu(&event);
        return true;
    }
    if ((event.pressed & kLeftButton) == 0 || !address_shown_ || !address_place_.contains(event.x, event.y))
        return false;
    show_address(false);
    return true;
}

/* A press beside the panel closes it; the right button opens it anew where it is pressed. */
bool Overlay::menu_pointer(const PointerEvent &event)
{
    damage(menu_->point_at(event.x, event.y));
    if ((event.pressed & kRightButton) != 0) {
        close_menu();
        open_menu(&event);
    } else if ((event.pressed & kLeftButton) != 0) {
        if (menu_->is_on_row(event.x, event.y)) {
            choose();
        } else if (!menu_->place().contains(event.x, event.y)) {
            close_menu();
        }
    }
    return true;
}

} // namespace nvrec
