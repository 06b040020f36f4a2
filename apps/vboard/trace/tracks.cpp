/* tracks.cpp - what a call is about. */
#include "trace/tracks.h"

#include <iterator>

#include "trace/call_fields.h"

namespace vboard_app
{
namespace
{

constexpr std::string_view kKinds[] = {"events", "SYS", "VDEC", "DISP", "DIVP",
                                       "VENC",   "AO",  "HDMI", "/dev", "system"};
constexpr int kNumbersOfAKind = 100000;

std::string with_number(std::string_view kind, const CallField *number)
{
    std::string track(kind);
    if (number != nullptr) {
        track += ' ';
        track += number->text;
    }
    return track;
}

// The end of a binding: {module=8 device=0 channel=3 port=0}.
std::string end_track(const CallLine &call, const std::string &end)
{
    const std::optional<int64_t> module = call.number(end + ".module");
    const std::string_view name = module && *module >= 0 ? module_name(static_cast<uint64_t>(*module)) : "";
    return name.empty() ? "SYS" : with_number(name, call.find(end + ".channel"));
}

std::string display_track(const CallLine &call)
{
    if (call.find("port") != nullptr)
        return with_number(with_number("DISP", call.find("device")) + " port", call.find("port"));
    if (call.find("layer") != nullptr) return with_number("DISP layer", call.find("layer"));
    return with_number("DISP", call.find("device"));
}

} // namespace

std::string Tracks::node_track(const CallLine &call)
{
    const std::optional<int64_t> result = field_number(call.result);
    if (const CallField *path = call.find("path")) {
        if (!call.failed && result) nodes_[*result] = path->text;
        return std::string(path->text);
    }
    const CallField *descriptor = call.find("descriptor");
    if (descriptor == nullptr) return "system";
    const std::optional<int64_t> number = field_number(descriptor->text);
    const auto found = number ? nodes_.find(*number) : nodes_.end();
    if (found == nodes_.end()) return with_number("descriptor", descriptor);
    std::string path = found->second;
    if (call.name == "board_close" && !call.failed) nodes_.erase(found);
    return path;
}

std::string Tracks::of(const CallLine &call)
{
    if (call.event) return "events";
    const std::string_view name = call.name;
    if (name.starts_with("board_")) return node_track(call);
    if (!name.starts_with("MI_")) return "system";
    const std::string_view module = name.substr(3, name.find('_', 3) - 3);
    if (module == "DISP") return display_track(call);
    if (module == "SYS") {
        if (call.find("source") != nullptr) return end_track(call, "source");
        return call.find("port") != nullptr ? end_track(call, "port") : "SYS";
    }
    return with_number(module, call.find(module == "AO" || module == "HDMI" ? "device" : "channel"));
}

int Tracks::order(const std::string &track)
{
    int kind = 0;
    for (const std::string_view prefix : kKinds) {
        if (track.starts_with(prefix)) break;
        ++kind;
    }
    // "DISP 0" stands before its layers and ports.
    const size_t blank = track.rfind(' ');
    const std::optional<int64_t> number =
        blank != std::string::npos ? field_number(std::string_view(track).substr(blank + 1)) : std::nullopt;
    int within = number && *number >= 0 && *number < 1000 ? static_cast<int>(*number) : 0;
    if (track.find(" layer ") != std::string::npos) within += 10000;
    if (track.find(" port ") != std::string::npos) {
        const std::optional<int64_t> device =
            field_number(std::string_view(track).substr(5, track.find(" port") - 5));
        within +=
            20000 + (device && *device >= -1 && *device < 10 ? (static_cast<int>(*device) + 1) * 1000 : 0);
    }
    return kind * kNumbersOfAKind + within;
}

} // namespace vboard_app
