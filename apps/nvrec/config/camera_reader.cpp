/* camera_reader.cpp - see camera_reader.h. */
#include "config/camera_reader.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>

#include "camera/address.h"
#include "config/quantity.h"

namespace nvrec::config
{
namespace
{

constexpr double kLongestBefore_s = 60; /* is kept in memory */
constexpr double kLongestAfter_s = 3600;
constexpr size_t kLongestName = 64;

constexpr Choice<Transport> kTransports[] = {
    {"auto", Transport::kAuto}, {"tcp", Transport::kTcp}, {"udp", Transport::kUdp}};
constexpr Choice<Aspect> kAspects[] = {{"fit", Aspect::kFit}, {"stretch", Aspect::kStretch}};
constexpr Choice<RecordMode> kModes[] = {{"always", RecordMode::kAlways},
                                         {"hours", RecordMode::kHours},
                                         {"event", RecordMode::kEvent},
                                         {"never", RecordMode::kNever}};

/* Decode "%40" to "@"; all else stays as it is. */
std::string decoded(const std::string &text)
{
    std::string plain;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto is_digit = [&](size_t at) {
            return at < text.size() && std::isxdigit(static_cast<unsigned char>(text[at])) != 0;
        };
        if (text[i] == '%' && is_digit(i + 1) && is_digit(i + 2)) {
            plain += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

/* Take "user:password@" out of an address. @return whether it was there. */
bool take_credentials(std::string *address, std::string *user, std::string *password)
{
    const size_t begin = address->find("://") + 3;
    const size_t end = std::min(address->find_first_of("/?#", begin), address->size());
    const size_t at = address->rfind('@', end);
    if (at == std::string::npos || at < begin || at >= end) return false;
    const std::string both = address->substr(begin, at - begin);
    const size_t colon = std::min(both.find(':'), both.size());
    *user = decoded(both.substr(0, colon));
    *password = colon < both.size() ? decoded(both.substr(colon + 1)) : "";
    address->erase(begin, at + 1 - begin);
    return true;
}

/* Control letters, such as %00: no camera has them, and C code reads a text only up to a zero. */
bool has_control_character(const std::string &text)
{
    return std::ranges::any_of(text, [](unsigned char letter) { return letter < ' ' || letter == 0x7f; });
}

/* Behind the host, where there is a colon. */
bool has_port(const std::string &address)
{
    const size_t begin = address.find("://") + 3;
    const size_t end = std::min(address.find_first_of("/?#", begin), address.size());
    const size_t host_end = address[begin] == '[' ? address.find(']', begin) : begin;
    const size_t colon = address.find(':', std::min(host_end, end));
    if (colon >= end) return true;
    uint16_t port = 0;
    const auto [rest, error] = std::from_chars(address.data() + colon + 1, address.data() + end, port);
    return error == std::errc{} && rest == address.data() + end && port != 0;
}

/* Faults do not repeat an address, since a password may be in a part of it that is not searched. */
void check_address(TableReader &table, std::string_view key, const std::string &address)
{
    const size_t begin = address.find("://") + 3;
    const bool rtsp = address.starts_with("rtsp://") || address.starts_with("rtsps://");
    if (!rtsp) {
        table.fault(key, "cameras are reached at rtsp:// and rtsps:// addresses");
    } else if (begin >= address.size() || address[begin] == '/' || address[begin] == ':') {
        table.fault(key, "the address names no host");
    } else if (!has_port(address)) {
        table.fault(key, "the port has to be a number from 1 to 65535");
    } else if (address.find(' ') != std::string::npos) {
        table.fault(key, "there is a blank in the address");
    }
}

/* @return whether a password is in it. */
bool read_address(TableReader &table, std::string_view key, Camera *camera, std::string *into)
{
    table.text(key, into);
    if (into->empty() || !has_scheme(*into)) return false;
    std::string user;
    std::string password;
    const bool found = take_credentials(into, &user, &password);
    check_address(table, key, *into);
    const bool secret = carries_credentials(*into); /* in its path or its query */
    if (!found) return secret;
    if (has_control_character(user) || has_control_character(password)) {
        table.fault(key, "its user or password holds a control character");
        return true;
    }
    const bool others = !camera->user.empty() || !camera->password.empty();
    if (others && (camera->user != user || camera->password != password))
        table.fault(key, "the address names a user, and the camera has another one already");
    camera->user = user;
    camera->password = password;
    return secret || !password.empty();
}

void read_plan(TableReader table, Plan *plan)
{
    table.choice("mode", kModes, &plan->mode);
    std::vector<std::string> hours;
    table.texts("hours", &hours);
    for (const std::string &text : hours) {
        if (const auto span = hours_of(text)) {
            plan->hours.push_back(*span);
        } else {
            table.fault("hours", "\"" + text + "\" is not like \"Mon-Fri 08:00-18:00\" or \"22:00-06:00\"");
        }
    }
    table.seconds("before", &plan->before_s, 0, kLongestBefore_s);
    table.seconds("after", &plan->after_s, 1, kLongestAfter_s);
    table.flag("alarm", &plan->on_alarm);
    table.flag("motion", &plan->on_motion);
    if (plan->mode == RecordMode::kHours && hours.empty())
        table.fault("hours", "the mode is \"hours\", and there are none");
    if (plan->mode != RecordMode::kHours && !hours.empty())
        table.fault("hours", "they count in the mode \"hours\" alone");
    for (const char *key : {"before", "after", "alarm", "motion"}) {
        if (table.has(key) && plan->mode != RecordMode::kEvent)
            table.fault(key, "it counts in the mode \"event\" alone");
    }
    table.finish();
}

/* link = "unmeasured", "measured" or 1 to 100. */
void read_link(TableReader &table, Camera *camera)
{
    const Value *value = table.find("link");
    if (!value) return;
    if (value->kind == Value::Kind::kWhole) return table.whole("link", &camera->link_quality, 1, 100);
    if (value->kind == Value::Kind::kText && value->text == "measured") {
        camera->measured_link = true;
    } else if (value->kind != Value::Kind::kText || value->text != "unmeasured") {
        table.fault("link", R"(it has to be "unmeasured", "measured" or a number from 1 to 100)");
    }
}

} // namespace

bool has_scheme(const std::string &address)
{
    const size_t end = address.find("://");
    return end != std::string::npos && end > 0 &&
           std::all_of(address.begin(), address.begin() + static_cast<std::ptrdiff_t>(end),
                       [](unsigned char letter) { return std::isalnum(letter) != 0 || letter == '+'; });
}

bool read_camera(TableReader &table, Camera *camera)
{
    camera->line = table.line();
    if (const Value *main = table.find("main")) camera->main_line = main->line;
    table.text("name", &camera->name);
    if (!table.has("name")) table.fault("name", "a camera needs one");
    if (camera->name.size() > kLongestName)
        table.fault("name", "it has more than " + std::to_string(kLongestName) + " bytes");
    table.text("user", &camera->user);
    table.text("password", &camera->password);
    bool secret = !camera->password.empty();
    secret |= read_address(table, "main", camera, &camera->main);
    if (!table.has("main")) table.fault("main", "a camera needs an address");
    secret |= read_address(table, "sub", camera, &camera->sub);
    const bool network = has_scheme(camera->main);
    if (!camera->main.empty() && !network) {
        for (const char *key : {"sub", "user", "password", "transport", "link"}) {
            if (table.has(key))
                table.fault(key, "it counts for a network camera alone, and this one is a file");
        }
    } else if (!camera->sub.empty() && !has_scheme(camera->sub)) {
        table.fault("sub", "cameras are reached at rtsp:// and rtsps:// addresses");
    }
    table.choice("transport", kTransports, &camera->transport);
    table.choice("aspect", kAspects, &camera->aspect);
    read_link(table, camera);
    table.flag("sound", &camera->sound);
    table.flag("loop", &camera->loop);
    if (network && camera->loop) table.fault("loop", "it counts for a file alone");
    read_plan(table.table("record"), &camera->plan);
    table.finish();
    return secret;
}

} // namespace nvrec::config
