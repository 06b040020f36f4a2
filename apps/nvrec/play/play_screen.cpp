/* play_screen.cpp - see play_screen.h. */
#include "play/play_screen.h"

#include <algorithm>

#include "console/terminal.h"
#include "host/host.h"
#include "screen/glyphs.h"
#include "wall/session.h"

namespace nvrec
{
namespace
{

constexpr auto kLookPeriod = std::chrono::milliseconds(250);
constexpr int kSmallestText_px = 16, kLargestText_px = 40; /* of a name in a pane */
constexpr Colour kNameLetters = 0xFFFFFF;
constexpr int64_t kGapBegins_us = 1'000'000; /* a picture may stay as long as that */
constexpr uint32_t kLeft = 1;

} // namespace

bool PlayScreen::start(WallControl &wall)
{
    wall_ = &wall;
    if (!is_drawn(options_.mode, wall)) return true;
    const std::string problem = canvas_.open();
    if (!problem.empty()) {
        wall.terminal().error("no time line: " + problem);
        return true;
    }
    const std::string path = options_.font_path.empty() ? find_font() : options_.font_path;
    font_ = std::make_unique<Font>();
    if (path.empty() || !font_->open(path).empty()) {
        wall.terminal().error("no names and times on the screen: this machine has no font that can be read");
        font_.reset();
    }
    line_ = std::make_unique<TimeLine>(font_.get(), canvas_.whole(), screen_text_size_px(canvas_.height()),
                                       options_.language);
    drawing_ = true;
    damage(canvas_.whole());
    return true;
}

TimeLineState PlayScreen::state() const
{
    const PlayPlan &plan = player_.plan();
    const Playback &playback = player_.playback();
    TimeLineState state;
    state.position_us = drag_.waiting().value_or(playback.position_us());
    if (plan.has_base) state.base_us = plan.base_us;
    state.speed = playback.speed();
    state.paused = playback.paused();
    const size_t first = static_cast<size_t>(player_.page()) * Playback::kPlayers;
    const size_t end = std::min(first + Playback::kPlayers, plan.tracks.size());
    bool any = false, known = false;
    for (size_t i = first; i < end; ++i) {
        TimeLineRow row = {plan.tracks[i].name, {}};
        if (i < plan.recorded.size()) row.recorded = plan.recorded[i];
        known |= !row.recorded.empty();
        any |= std::ranges::any_of(row.recorded, [&](const TimeSpan &span) {
            return span.from_us <= state.position_us && state.position_us < span.to_us + kGapBegins_us;
        });
        state.rows.push_back(std::move(row));
    }
    state.in_gap = known && !any;
    return state;
}

Clock::time_point PlayScreen::take_turn(Clock::time_point now)
{
    if (!drawing_) return Clock::time_point::max();
    if (shown() != was_shown_) {
        was_shown_ = shown();
        set_key_step();
        damage(canvas_.whole());
    }
    go_to(drag_.take_due(now));
    if (shown()) damage(line_->set(state()));
    paint();
    return std::min(now + kLookPeriod, drag_.due_at());
}

void PlayScreen::step_span(int steps)
{
    damage(line_->step_span(steps));
    set_key_step();
}

void PlayScreen::go_to(std::optional<int64_t> place_us)
{
    if (!place_us) return;
    player_.go_to(*place_us);
    drag_.went(Clock::now());
}

/* Recordings without times of day may be far shorter than the time line. */
void PlayScreen::set_key_step()
{
    player_.set_key_step(shown() && player_.plan().has_base ? line_->step_us() : Player::kKeyStep_us);
}

/* Every camera's name in the upper left corner of its pane. */
void PlayScreen::lay_names()
{
    names_.clear();
    if (!font_ || !player_.playing()) return;
    const PlayPlan &plan = player_.plan();
    const size_t first = static_cast<size_t>(player_.page()) * Playback::kPlayers;
    for (const DispAttrib &pane : wall_->session().panes()) {
        const size_t track = first + pane.channel;
        if (track >= plan.tracks.size() || plan.tracks[track].name.empty()) continue;
        const int size_px = std::clamp(pane.h / 16, kSmallestText_px, kLargestText_px);
        Name name;
        name.tile = rimmed(font_->render(units_of(plan.tracks[track].name, ChineseScript::kAsTyped), size_px,
                                         pane.w - size_px),
                           kNameLetters, 2);
        name.x = pane.x + size_px / 2;
        name.y = pane.y + size_px / 4;
        names_.push_back(std::move(name));
    }
}

void PlayScreen::on_layout()
{
    if (!drawing_) return;
    lay_names();
    damage(canvas_.whole());
}

bool PlayScreen::on_key(Key key)
{
    if (!drawing_ || !player_.playing()) return false;
    if (key == Key::kMenu) {
        wanted_ = !wanted_;
        damage(canvas_.whole());
        wall_->wake();
        return true;
    }
    if (!shown() || wall_->enlarged() >= 0 || (key != Key::kUp && key != Key::kDown)) return false;
    step_span(key == Key::kUp ? 1 : -1);
    paint();
    return true;
}

bool PlayScreen::on_pointer(const PointerEvent &event)
{
    if (!drawing_) return false;
    cursor_.move(event.x, event.y);
    cursor_moved_ = true;
    bool taken = false;
    if (shown()) {
        const auto at_us = line_->time_at(event.x, event.y);
        if (drag_.held() && (event.buttons & kLeft) == 0)
            go_to(drag_.release());
        else if (at_us && (event.pressed & kLeft) != 0)
            go_to(drag_.press(*at_us));
        else if (at_us)
            go_to(drag_.move(*at_us, Clock::now()));
        taken = drag_.held() || line_->place().contains(event.x, event.y);
        if (taken) damage(line_->set(state()));
        if (taken && event.wheel != 0) step_span(event.wheel > 0 ? -1 : 1);
    }
    paint();
    return taken;
}

void PlayScreen::stop()
{
    if (!drawing_) return;
    drawing_ = false;
    if (!canvas_.begin()) return;
    canvas_.clear(canvas_.whole());
    canvas_.end();
}

void PlayScreen::damage(const Rect &rect)
{
    if (!rect.empty()) damage_.push_back(rect);
}

void PlayScreen::paint()
{
    if (!drawing_ || (damage_.empty() && !cursor_moved_) || !canvas_.begin()) return;
    cursor_.lift(canvas_);
    for (const Rect &rect : damage_) {
        canvas_.clip(rect);
        canvas_.clear(rect);
        if (!player_.playing()) continue;
        for (const Name &name : names_)
            canvas_.draw(name.tile, name.x, name.y);
        if (shown()) line_->paint(canvas_);
    }
    damage_.clear();
    canvas_.clip(canvas_.whole());
    cursor_.drop(canvas_);
    cursor_moved_ = false;
    canvas_.end();
}

} // namespace nvrec
