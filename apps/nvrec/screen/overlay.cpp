/* overlay.cpp - see overlay.h: the life of the overlay, and its painting. */
#include "screen/overlay.h"

#include <algorithm>
#include <utility>

#include "camera/address.h"
#include "console/terminal.h"
#include "host/host.h"
#include "screen/pane_texts.h"
#include "screen/qr_code.h"
#include "wall/session.h"

namespace nvrec
{
namespace
{

constexpr auto kCursorRests = std::chrono::seconds(5); /* after that the cursor disappears */
constexpr Colour kCardGround = 0xFFFFFF, kCardLetters = 0x202428, kCardEdge = 0x4A5460;

} // namespace

Overlay::Overlay(OverlayOptions options) : options_(std::move(options)), names_(options_.names) {}
Overlay::~Overlay() = default;

/* The wall runs without a framebuffer or a font, too. */
bool Overlay::start(WallControl &wall)
{
    wall_ = &wall;
    for (const auto &camera : wall.cameras())
        if (!camera->source().name.empty()) names_.name(camera->channel(), camera->source().name);
    if (!is_drawn(options_.mode, wall)) return true;
    const std::string problem = canvas_.open();
    if (!problem.empty()) {
        wall.terminal().error("no screen overlay: " + problem);
        return true;
    }
    drawing_ = true;
    watch_.start(wall, [&wall] { wall.wake(); });
    running_ = true;
    open_font();
    make_parts();
    damage(canvas_.whole());
    if (options_.show_address && options_.address.empty())
        wall.terminal().error(
            "no QR code: --qr was given no text, and nothing listens at an address of its own");
    if (options_.show_address) show_address(true);
    paint();
    return true;
}

void Overlay::open_font()
{
    const std::string path = options_.font_path.empty() ? find_font() : options_.font_path;
    font_ = std::make_unique<Font>();
    const std::string problem = path.empty() ? "this machine has no font" : font_->open(path);
    if (!problem.empty()) {
        wall_->terminal().error("no names, clock and menu: " + problem +
                                " (package fonts-wqy-microhei has Chinese and Latin letters)");
        font_.reset();
        return;
    }
    constexpr char16_t kAnyHanzi = u'通';
    if (!font_->has(kAnyHanzi))
        wall_->terminal().error("no Chinese letters in " + path + " (package fonts-wqy-microhei has them)");
}

void Overlay::make_parts()
{
    panes_ = std::make_unique<PaneMarks>(font_.get(), names_);
    const ClockFace::Time time = options_.wall_time();
    tell_cameras(Clock::now(), std::chrono::system_clock::to_time_t(time));
    panes_->lay(wall_->session().panes(), wall_->session().unused_panes());
    panes_->select(wall_->selected());
    if (!font_) return;
    const int size = text_size_px();
    clock_ = std::make_unique<ClockFace>(*font_, names_.language, size);
    find_room_for_clock();
    clock_->set(time, canvas_.whole());
    line_ = std::make_unique<NoticeLine>(*font_, names_.script, size);
    menu_ = std::make_unique<Menu>(*font_, names_.language, names_.script, size, !options_.address.empty());
    question_ = std::make_unique<Question>(question_of_ending(*font_, names_, size));
}

/* Size of the letters of clock, menu and card. */
int Overlay::text_size_px() const
{
    return screen_text_size_px(canvas_.height());
}

void Overlay::tell_cameras(Clock::time_point now, std::time_t wall_s)
{
    watch_.look(now);
    for (const auto &camera : wall_->cameras())
        damage(panes_->set_state(camera->channel(), watch_.state_of(*camera, now), wall_s));
}

/* It leaves room for the clock, when that is in the corner. */
void Overlay::tell_alarms(Clock::time_point now)
{
    if (!line_) return;
    const int most = canvas_.width() - (clock_ ? clock_->place().w : 0) - 3 * text_size_px();
    std::vector<int> without_main;
    for (const auto &camera : wall_->cameras()) {
        if (camera->status().main_is_lost(now)) without_main.push_back(camera->channel());
    }
    damage(line_->set(alarm_text(wall_->recorder(), wall_->alarm(), names_, without_main), most));
}

/* Offer the clock an unused pane, or a bar beside the picture in the upper right corner. */
void Overlay::find_room_for_clock()
{
    std::vector<Rect> free = {panes_->unused_pane()};
    const Session &session = wall_->session();
    const int corner = channel_at(session.panes(), canvas_.width() - 1, 0);
    const auto picture = corner >= 0 ? session.picture_of(corner) : std::nullopt;
    if (picture) {
        const Rect pane = panes_->pane_of(corner);
        free.push_back({pane.x, pane.y, pane.w, picture->y - pane.y});
        const int right = picture->x + picture->w;
        free.push_back({right, pane.y, pane.right() - right, pane.h});
    }
    clock_->offer(free);
}

/* On a camera's thread. Before start() and after stop() nothing is done. */
void Overlay::on_unit(int channel, const AccessUnit &unit, const StreamFacts &facts)
{
    if (running_) watch_.on_unit(channel, unit, facts);
}

Clock::time_point Overlay::take_turn(Clock::time_point now)
{
    if (!drawing_) return Clock::time_point::max();
    const ClockFace::Time time = options_.wall_time();
    tell_cameras(now, std::chrono::system_clock::to_time_t(time));
    if (clock_) damage(clock_->set(time, canvas_.whole()));
    tell_alarms(now);
    if (cursor_.wanted() && now - cursor_moved_at_ >= kCursorRests) {
        cursor_.hide();
        cursor_moved_ = true;
    }
    paint();
    const Clock::time_point tick = now + std::chrono::ceil<Clock::duration>(ClockFace::until_next(time));
    return std::min(tick, watch_.next_change(now));
}

void Overlay::on_layout()
{
    if (!drawing_) return;
    if (std::exchange(layout_comes_, false)) watch_.on_layout(Clock::now());
    for (const Rect &edge : panes_->select(wall_->selected()))
        damage(edge);
    if (panes_->lay(wall_->session().panes(), wall_->session().unused_panes())) damage(canvas_.whole());
    if (clock_) {
        find_room_for_clock();
        damage(clock_->set(options_.wall_time(), canvas_.whole()));
    }
    paint();
}

/* Panes whose decoders were still busy at the last turn have their pictures by now. */
void Overlay::before_last_pictures()
{
    if (!drawing_) return;
    tell_cameras(Clock::now(), std::chrono::system_clock::to_time_t(options_.wall_time()));
    paint();
}

bool Overlay::ask_whether_to_end()
{
    if (!drawing_ || !question_ || question_->is_open()) return false;
    if (menu_->is_open()) close_menu();
    damage(question_->open(canvas_.whole()));
    paint();
    return true;
}

/* Leave the screen empty for its next user. */
void Overlay::stop()
{
    if (!drawing_) return;
    drawing_ = running_ = false;
    if (!canvas_.begin()) return;
    canvas_.clear(canvas_.whole());
    canvas_.end();
}

void Overlay::on_camera_replaced(int channel)
{
    watch_.forget(channel);
    name_camera(channel, wall_->cameras()[static_cast<size_t>(channel)]->source().name);
}

void Overlay::name_camera(int channel, const std::string &name)
{
    names_.name(channel, name);
    if (!drawing_) return;
    damage(panes_->name_camera(channel, name));
    paint();
}

void Overlay::damage(const Rect &rect)
{
    if (!rect.empty()) damage_.push_back(rect);
}

void Overlay::paint()
{
    if (!drawing_ || (damage_.empty() && !cursor_moved_)) return;
    if (!canvas_.begin()) return; /* the damage stays noted for the next try */
    cursor_.lift(canvas_);
    for (const Rect &rect : damage_)
        paint_within(rect);
    damage_.clear();
    canvas_.clip(canvas_.whole());
    cursor_.drop(canvas_);
    cursor_moved_ = false;
    canvas_.end();
}

void Overlay::paint_within(const Rect &rect)
{
    canvas_.clip(rect);
    canvas_.clear(rect);
    panes_->paint(canvas_);
    if (clock_) clock_->paint(canvas_);
    if (line_) line_->paint(canvas_);
    if (address_shown_) paint_address();
    if (menu_) menu_->paint(canvas_);
    if (question_) question_->paint(canvas_);
}

/* The code is made when it is first needed: most walls never show it. */
void Overlay::make_card()
{
    const std::string &address = options_.address;
    card_ = Card{qr_tile(address), {}, {}};
    if (card_->code.width == 0) {
        wall_->terminal().error("no QR code of the address: " + shown_text(address)); /* a token is in it */
        return;
    }
    const int margin = text_size_px();
    const bool chinese = names_.language == Language::kChinese;
    int width = card_->code.width, height = card_->code.height;
    if (font_) {
        auto text = [&](const std::string &line, int size) {
            const std::u16string units = units_of(line, names_.script);
            return flat(font_->render(units, size, std::max(width, canvas_.width() / 4)), kCardLetters,
                        kCardGround);
        };
        card_->title = text(chinese ? "扫描二维码" : "Scan this code", text_size_px() * 3 / 4);
        card_->text = text(address, text_size_px() * 5 / 8);
        width = std::max({width, card_->title.width, card_->text.width});
        height += card_->title.height + card_->text.height;
    }
    width += margin;
    height += margin;
    address_place_ = {canvas_.width() - margin - width, canvas_.height() - margin - height, width, height};
}

void Overlay::show_address(bool shown)
{
    if (options_.address.empty()) return;
    if (!card_) make_card();
    if (card_->code.width == 0 || shown == address_shown_) return;
    address_shown_ = shown;
    damage(address_place_);
}

void Overlay::paint_address()
{
    const Rect &place = address_place_;
    canvas_.fill(place, kCardGround);
    canvas_.frame(place, 2, kCardEdge);
    int y = place.y + text_size_px() / 2;
    for (const Tile *tile :
         {&std::as_const(card_->title), &std::as_const(card_->code), &std::as_const(card_->text)}) {
        canvas_.draw(*tile, place.x + (place.w - tile->width) / 2, y);
        y += tile->height;
    }
}

} // namespace nvrec
