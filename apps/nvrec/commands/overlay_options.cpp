/* overlay_options.cpp - see overlay_options.h. */
#include "commands/overlay_options.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

#include "camera/address.h"
#include "camera/camera_source.h"
#include "console/utf8.h"
#include "nvrhal/limits.h"
#include "screen/qr_code.h"

namespace nvrec
{
namespace
{

const std::map<std::string, OverlayMode> kModes = {
    {"auto", OverlayMode::kAuto},
    {"on", OverlayMode::kOn},
    {"off", OverlayMode::kOff},
};

const std::map<std::string, Language> kLanguages = {
    {"en", Language::kEnglish},
    {"zh", Language::kChinese},
};

/* "CH=TEXT". */
std::optional<std::pair<int, std::string>> camera_name(const std::string &text)
{
    const size_t equals = text.find('=');
    if (equals == std::string::npos) return std::nullopt;
    int channel = -1;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + equals, channel);
    if (error != std::errc() || stop != text.data() + equals) return std::nullopt;
    const std::string name = text.substr(equals + 1);
    if (channel < 0 || channel >= NVRHAL_MAX_CAMERAS || name.empty()) return std::nullopt;
    if (units_of(name, ChineseScript::kAsTyped).empty()) return std::nullopt;
    return std::pair(channel, name);
}

std::string check_camera_name(const std::string &text)
{
    if (camera_name(text)) return "";
    return "'" + text + "' is not CH=TEXT with a channel of 0 to " + std::to_string(NVRHAL_MAX_CAMERAS - 1) +
           " and a text in UTF-8 or GB2312";
}

/* What the parser hands over for an option that was given without its value. */
constexpr char kNoText[] = "true";

/* Whoever forgets the text has the camera's address that stands behind it taken for one. */
std::string check_code(const std::string &text)
{
    if (shown_address(text) != text) return "a QR code would show the password in " + shown_address(text);
    if (!text.empty() && text.size() <= kLongestQrText) return "";
    return "a text of 1 to " + std::to_string(kLongestQrText) + " bytes is needed";
}

} // namespace

Language host_language()
{
    for (const char *name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char *value =
            std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing writes the environment
        if (value && *value)
            return std::string_view(value).starts_with("zh") ? Language::kChinese : Language::kEnglish;
    }
    return Language::kEnglish;
}

void add_language_option(CLI::App &command, Language &language, const std::string &help)
{
    language = host_language();
    command.add_option("--language", language, help)
        ->transform(CLI::CheckedTransformer(kLanguages, CLI::ignore_case))
        ->default_str("locale");
}

bool apply_names(OverlayOptions *options, std::vector<CameraSource> *cameras)
{
    for (const auto &[channel, name] : options->names.given) {
        if (static_cast<size_t>(channel) >= cameras->size()) {
            std::fprintf(stderr, "nvrec: --name %d=%s: channels with a camera are 0 to %zu\n", channel,
                         name.c_str(), cameras->size() - 1);
            return false;
        }
        (*cameras)[static_cast<size_t>(channel)].name =
            is_utf8(name) ? name : utf8_of(units_of(name, ChineseScript::kAsTyped));
    }
    options->names.given.clear();
    return true;
}

std::shared_ptr<OverlayOptions> add_overlay_options(CLI::App &command)
{
    auto options = std::make_shared<OverlayOptions>();
    command
        .add_option("--overlay,--furniture", options->mode,
                    "Borders, names, clock, menu and cursor: auto (when there is a window), on, off")
        ->transform(CLI::CheckedTransformer(kModes, CLI::ignore_case))
        ->default_str("auto");
    command
        .add_option_function<std::vector<std::string>>(
            "--name",
            [options](const std::vector<std::string> &names) {
                for (const std::string &name : names)
                    options->names.given.insert_or_assign(camera_name(name)->first,
                                                          camera_name(name)->second);
            },
            "A camera's name, CH=TEXT; may be repeated")
        ->take_all()
        ->allow_extra_args(false)
        ->check(check_camera_name);
    add_language_option(command, options->names.language, "Language of the overlay: en or zh");
    command.add_flag_callback(
        "--traditional", [options] { options->names.script = ChineseScript::kTraditional; },
        "Show Chinese texts in traditional characters");
    command.add_option("--font", options->font_path, "Font file (default: the system's for Chinese)")
        ->check(CLI::ExistingFile);
    command.add_option("--address", options->address, "A text for the QR code, which the menu shows")
        ->check(check_code);
    command
        .add_option_function<std::string>(
            "--qr",
            [options](const std::string &text) {
                options->show_address = true;
                if (!text.empty() && text != kNoText) options->address = text;
            },
            "Show a QR code of this text from the start; without a text, of --address")
        ->expected(0, 1)
        ->check(check_code);
    return options;
}

} // namespace nvrec
