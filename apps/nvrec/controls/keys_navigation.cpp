/* keys_navigation.cpp - see keys_navigation.h. */
#include "controls/keys_navigation.h"

#include <algorithm>
#include <cstdlib>

#include "nvrhal/input_nodes.h"
#include "wall/session.h"

namespace nvrec
{
namespace
{

constexpr int kSidewaysCost = 2; /* a pane straight ahead is nearer than one to the side of it */

} // namespace

int neighbour(const std::vector<DispAttrib> &panes, int channel, int dx, int dy)
{
    const auto from = std::ranges::find(panes, channel, &DispAttrib::channel);
    if (from == panes.end()) return panes.empty() ? channel : panes.front().channel;
    int best = channel;
    int best_cost = 0;
    for (const DispAttrib &pane : panes) {
        /* Between middles, doubled. */
        const int right = (2 * pane.x + pane.w) - (2 * from->x + from->w);
        const int down = (2 * pane.y + pane.h) - (2 * from->y + from->h);
        const int ahead = right * dx + down * dy;
        if (ahead <= 0) continue;
        const int cost = ahead + kSidewaysCost * std::abs(right * dy + down * dx);
        if (best != channel && cost >= best_cost) continue;
        best = pane.channel;
        best_cost = cost;
    }
    return best;
}

bool Navigation::start(WallControl &wall)
{
    wall_ = &wall;
    return true;
}

bool Navigation::choose(int channel)
{
    const Session &session = wall_->session();
    if (channel >= session.channels() || session.is_free(channel)) return true;
    wall_->enlarge(wall_->enlarged() == channel ? -1 : channel);
    return true;
}

bool Navigation::move(int dx, int dy)
{
    const Session &session = wall_->session();
    if (wall_->enlarged() < 0) {
        wall_->select(neighbour(session.panes(), wall_->selected(), dx, dy));
    } else if (dx != 0) {
        int next = wall_->enlarged();
        do
            next = (next + dx + session.channels()) % session.channels();
        while (session.is_free(next) && next != wall_->enlarged());
        wall_->enlarge(next);
    }
    return true;
}

bool Navigation::next_layout()
{
    const Layout next = layout_after(wall_->layout(), wall_->session().used_channels());
    if (next != wall_->layout() || wall_->enlarged() >= 0) wall_->show_layout(next);
    return true;
}

bool Navigation::on_key(Key key)
{
    if (key >= Key::kDigit0 && key <= Key::kDigit9)
        return choose(key == Key::kDigit0 ? 9 : static_cast<int>(key) - static_cast<int>(Key::kDigit0) - 1);
    switch (key) {
    case Key::kUp: return move(0, -1);
    case Key::kDown: return move(0, 1);
    case Key::kLeft: return move(-1, 0);
    case Key::kRight: return move(1, 0);
    case Key::kEnter: return choose(wall_->enlarged() >= 0 ? wall_->enlarged() : wall_->selected());
    case Key::kBack: wall_->enlarge(-1); return true;
    case Key::kNextLayout: return next_layout();
    default: return false;
    }
}

bool Navigation::on_pointer(const PointerEvent &event)
{
    if (event.pressed & MOUSE_RIGHT_DOWN) wall_->enlarge(-1);
    if (!(event.pressed & MOUSE_LEFT_DOWN)) return event.pressed != 0;
    const int channel = channel_at(wall_->session().panes(), event.x, event.y);
    if (clicks_.is_second(channel, Clock::now())) return choose(channel);
    if (channel >= 0) wall_->select(channel);
    return true;
}

} // namespace nvrec
