/*
 * check_pane.cpp - what is seen in the window of an input port of a display device.
 *
 *     pane: 0, channel: 1, stamp: 1, moving: true, over: 1s, shown: true, device: 0
 *
 * channel   the decoder that is bound to the port; when the picture in it carries a stamp
 *           (tools/stamp/stamp.h), that says the same channel
 * stamp     the channel that the picture's stamp says, whatever is bound; without a stamp it fails
 * moving    pictures change within the span `over`: by the number of the frame in their stamps, or else
 *           when the port has got a new picture and the window's pixels have changed
 * shown     the port is on the screen, with a picture
 */
#include <algorithm>
#include <deque>

#include "scenario/check.h"
#include "stamp.h"

namespace vboard_app::scenario
{
namespace
{

constexpr int64_t kUsualSpan_us = 1'000'000;

struct PaneOrders {
    int pane = 0;
    int device = 0;
    std::optional<int64_t> channel, stamp;
    std::optional<bool> moving, shown;
    int64_t span_us = kUsualSpan_us;
};

/* What is in a pane at one time. */
struct PaneLook {
    int64_t at_us = 0;
    std::string missing; // why there is nothing to be seen; empty: there is
    std::optional<int64_t> channel;
    std::optional<stamp::Stamp> stamp;
    uint64_t picture = 0; // time stamp and number of the port's picture
    uint64_t pixels = 0;  // a sum over them
};

uint64_t sum_of(const uint8_t *luma, int stride, const Region &window)
{
    uint64_t sum = 14695981039346656037ull; // FNV-1a
    for (int y = 0; y < window.height; ++y) {
        const uint8_t *row = luma + static_cast<ptrdiff_t>(window.y + y) * stride + window.x;
        for (int x = 0; x < window.width; ++x)
            sum = (sum ^ row[x]) * 1099511628211ull;
    }
    return sum;
}

const nlohmann::json *port_of(const nlohmann::json &state, int device, int pane)
{
    const auto displays = state.find("displays");
    if (displays == state.end()) return nullptr;
    for (const auto &display : *displays) {
        if (display.value("device", 0) != device || !display.contains("ports")) continue;
        for (const auto &port : display.at("ports"))
            if (port.value("port", -1) == pane) return &port;
    }
    return nullptr;
}

bool is_set(const nlohmann::json &port, const char *name)
{
    const auto value = port.find(name);
    if (value == port.end()) return false;
    return value->is_boolean() ? value->get<bool>() : value->is_number() && value->get<double>() != 0;
}

class PaneCheck final : public Check
{
public:
    explicit PaneCheck(PaneOrders orders) : orders_(orders) {}

    int64_t span_us() const override { return orders_.moving ? orders_.span_us : 0; }

    void watch(Moment &now) override
    {
        looks_.push_back(look(now));
        // One that is older than the span stays: it says what was there when the span began.
        while (looks_.size() > 2 && looks_[1].at_us <= now.now_us - orders_.span_us)
            looks_.pop_front();
    }

    Verdict judge(Moment &now, int64_t from_us) override
    {
        if (looks_.empty() || looks_.back().at_us != now.now_us) watch(now);
        const PaneLook &last = looks_.back();
        if (orders_.shown && !*orders_.shown)
            return last.missing.empty() ? fails("it is shown" + channel_text(last)) : holds();
        if (!last.missing.empty()) return fails(last.missing);
        if (orders_.channel) {
            if (last.channel != orders_.channel) return fails("it shows" + channel_text(last));
            if (last.stamp && last.stamp->channel != *orders_.channel)
                return fails("it is bound to" + channel_text(last) +
                             ", but its picture is stamped as channel " +
                             std::to_string(last.stamp->channel));
        }
        if (orders_.stamp) {
            if (!last.stamp) return fails("no stamp can be read in it");
            if (last.stamp->channel != *orders_.stamp)
                return fails("its picture is stamped as channel " + std::to_string(last.stamp->channel));
        }
        return orders_.moving ? judge_moving(now.now_us, from_us) : holds();
    }

private:
    static std::string channel_text(const PaneLook &look)
    {
        return look.channel ? " channel " + std::to_string(*look.channel) : " no channel";
    }

    PaneLook look(Moment &now) const
    {
        PaneLook look;
        look.at_us = now.now_us;
        const auto *state = now.state();
        if (state == nullptr) {
            look.missing = "the board says nothing: " + now.why();
            return look;
        }
        const auto *port = port_of(*state, orders_.device, orders_.pane);
        if (port == nullptr || !is_set(*port, "enabled") || is_set(*port, "hidden")) {
            look.missing = "it is not on the screen";
            return look;
        }
        if (is_set(*port, "bound")) look.channel = port->value("source_channel", int64_t{-1});
        if (!is_set(*port, "has_picture")) {
            look.missing = "it is on the screen without a picture";
            return look;
        }
        look.picture =
            port->value("picture_pts", uint64_t{0}) * 1'000'003 + port->value("taken", uint64_t{0});
        look_at_pixels(now, *port, look);
        return look;
    }

    void look_at_pixels(Moment &now, const nlohmann::json &port, PaneLook &look) const
    {
        const auto place = port.find("window");
        const std::vector<int> numbers =
            place != port.end() && place->is_array() ? place->get<std::vector<int>>() : std::vector<int>();
        if (numbers.size() != 4) {
            look.missing = "it is not on the screen";
            return;
        }
        const Picture *picture = now.picture(orders_.device);
        const Region window = {numbers[0], numbers[1], numbers[2], numbers[3]};
        if (picture == nullptr ||
            !lies_in(window, static_cast<int>(picture->width), static_cast<int>(picture->height))) {
            look.missing =
                picture == nullptr ? "there is no picture: " + now.why() : "it is not on the screen";
            return;
        }
        const int stride = static_cast<int>(picture->width);
        const uint8_t *luma = picture->bytes.data();
        look.stamp = stamp::read(luma + static_cast<ptrdiff_t>(window.y) * stride + window.x, stride,
                                 window.width, window.height);
        look.pixels = sum_of(luma, stride, window);
    }

    static bool same_picture(const PaneLook &one, const PaneLook &other)
    {
        if (one.stamp && other.stamp) return one.stamp->frame == other.stamp->frame;
        return one.picture == other.picture || one.pixels == other.pixels;
    }

    Verdict judge_moving(int64_t now_us, int64_t from_us) const
    {
        const int64_t begin = std::max(from_us, now_us - orders_.span_us);
        const PaneLook *before = nullptr;
        int looks = 0;
        bool moves = false;
        for (const PaneLook &one : looks_) {
            if (one.at_us < begin || !one.missing.empty()) continue;
            if (before != nullptr && !same_picture(*before, one)) moves = true;
            before = &one;
            ++looks;
        }
        if (moves) return *orders_.moving ? holds() : fails("it moves");
        const bool long_enough = looks > 1 && now_us - begin >= orders_.span_us;
        const std::string stands =
            "it stands still" + (before != nullptr && before->stamp
                                     ? " at frame " + std::to_string(before->stamp->frame)
                                     : std::string());
        if (!long_enough) return open(stands, !*orders_.moving);
        return *orders_.moving ? fails(stands) : holds();
    }

    const PaneOrders orders_;
    std::deque<PaneLook> looks_;
};

} // namespace

std::unique_ptr<Check> read_pane_check(Reader &reader, std::vector<std::string> &keys)
{
    keys.insert(keys.end(), {"channel", "stamp", "moving", "over", "shown", "device"});
    PaneOrders orders;
    const auto pane = reader.integer("pane", 0, 15);
    orders.pane = static_cast<int>(pane.value_or(0));
    orders.device = static_cast<int>(reader.integer("device", -1, 2).value_or(0));
    orders.channel = reader.integer("channel", 0, 63);
    orders.stamp = reader.integer("stamp", 0, 63);
    orders.moving = reader.boolean("moving");
    orders.shown = reader.boolean("shown");
    orders.span_us = reader.duration("over").value_or(kUsualSpan_us);
    const bool says_what =
        reader.has("channel") || reader.has("stamp") || reader.has("moving") || reader.has("shown");
    if (!says_what)
        reader.problem(reader.line(),
                       "a pane is to have a \"channel\" or \"stamp\", to be \"moving\" or \"shown\"");
    if (reader.has("over") && !reader.has("moving"))
        reader.problem(reader.take("over")->line, "\"over\" goes with \"moving\"");
    return std::make_unique<PaneCheck>(orders);
}

} // namespace vboard_app::scenario
