/*
 * check_screen.cpp - the screen, or a part of it, looks like a picture.
 *
 *     screen: menu.png, region: [800, 300, 320, 480], difference: 2%, device: 0
 *
 * The picture is of the whole screen, or of the region alone. Without a device it is what the monitor
 * shows, which is black while it is unplugged.
 */
#include <cstdio>

#include "scenario/check.h"

namespace vboard_app::scenario
{
namespace
{

constexpr double kUsualDifference = 2; // percent

class ScreenCheck final : public Check
{
public:
    ScreenCheck(std::string file, Image expected, std::optional<Region> region, double difference,
                std::optional<int> device)
        : file_(std::move(file)), expected_(std::move(expected)), region_(region), difference_(difference),
          device_(device)
    {
    }

    Verdict judge(Moment &now, int64_t) override
    {
        const Image *screen = device_ ? now.image(*device_) : now.screen();
        if (screen == nullptr) return fails("there is no picture: " + now.why());
        actual_ = *screen;
        wanted_ = expected_;
        if (region_) {
            if (!lies_in(*region_, screen->width, screen->height))
                return fails("the region leaves the screen of " + size_text(*screen));
            if (expected_.width == screen->width && expected_.height == screen->height)
                wanted_ = part_of(expected_, *region_);
            actual_ = part_of(*screen, *region_);
        }
        if (actual_.width != wanted_.width || actual_.height != wanted_.height)
            return fails("the picture is " + size_text(wanted_) + ", what is seen is " + size_text(actual_));
        const double difference = difference_percent(actual_, wanted_);
        if (difference <= difference_) return holds();
        char text[80];
        std::snprintf(text, sizeof text, "%.2f %% of the pixels differ, %g %% may", difference, difference_);
        return fails(text);
    }

    std::string write_evidence(const std::string &path) const override
    {
        if (actual_.rgb.empty()) return {};
        const std::string file = path + ".png";
        return write_png(file, side_by_side(actual_, wanted_)) ? file : std::string();
    }

private:
    static std::string size_text(const Image &image)
    {
        return std::to_string(image.width) + " x " + std::to_string(image.height);
    }

    const std::string file_;
    const Image expected_;
    const std::optional<Region> region_;
    const double difference_;
    const std::optional<int> device_;
    Image actual_, wanted_; // of the last look
};

std::optional<Region> region_of(Reader &reader)
{
    const TreeNode *node = reader.take("region");
    if (node == nullptr) return {};
    std::vector<int> numbers;
    if (node->kind == TreeNode::Kind::list)
        for (const TreeNode &item : node->items)
            if (const auto value = item.kind == TreeNode::Kind::text ? integer_of(item.text) : std::nullopt)
                if (*value >= 0 && *value <= 8192) numbers.push_back(static_cast<int>(*value));
    const bool whole = node->kind == TreeNode::Kind::list && node->items.size() == 4 && numbers.size() == 4;
    if (!whole || numbers[2] == 0 || numbers[3] == 0) {
        reader.problem(node->line, "\"region\" is not [x, y, width, height] in pixels of the screen");
        return {};
    }
    return Region{numbers[0], numbers[1], numbers[2], numbers[3]};
}

} // namespace

std::unique_ptr<Check> read_screen_check(Reader &reader, std::vector<std::string> &keys)
{
    keys.insert(keys.end(), {"region", "difference", "device"});
    const auto name = reader.text("screen");
    const auto region = region_of(reader);
    const auto difference = reader.percent("difference");
    const auto device = reader.integer("device", -1, 2);
    if (!name) return nullptr;
    const std::string file = file_of(*name, reader.context());
    std::string problem;
    std::optional<Image> expected = read_png(file, problem);
    if (!expected) {
        reader.problem(reader.take("screen")->line, "\"screen\": " + file + ": " + problem);
        return nullptr;
    }
    return std::make_unique<ScreenCheck>(
        file, std::move(*expected), region, difference.value_or(kUsualDifference),
        device ? std::optional<int>(static_cast<int>(*device)) : std::nullopt);
}

} // namespace vboard_app::scenario
