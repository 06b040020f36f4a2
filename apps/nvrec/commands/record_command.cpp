/* record_command.cpp - "nvrec record": the wall with a recorder beside it. */
#include <charconv>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "commands/wall_options.h"
#include "controls/controls.h"
#include "record/recorder.h"
#include "screen/overlay.h"

namespace nvrec
{
namespace
{

constexpr int kLongestSegment_s = 24 * kHour_s;
constexpr int64_t kKeptFree_bytes =
    64'000'000; /* retention looks every ten seconds; the index needs room, too */

const std::map<std::string, Container> kContainers = {
    {"mp4", Container::kMp4},
    {"mkv", Container::kMkv},
};

/* "CH=ADDRESS" */
std::optional<std::pair<int, std::string>> network_address(const std::string &text)
{
    int channel = -1;
    const char *end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, channel);
    if (error != std::errc{} || channel < 0 || rest == end || *rest != '=' || rest + 1 == end)
        return std::nullopt;
    return std::pair(channel, std::string(rest + 1, end));
}

bool read_network_addresses(const std::vector<std::string> &texts, size_t channels,
                            std::map<int, std::string> *addresses)
{
    for (const std::string &text : texts) {
        const auto address = network_address(text);
        if (address && static_cast<size_t>(address->first) < channels && addresses->insert(*address).second)
            continue;
        std::fprintf(stderr, "nvrec: --network %s: CH=ADDRESS is wanted, once for a channel from 0 to %zu\n",
                     shown_address(text).c_str(), channels - 1);
        return false;
    }
    return true;
}

} // namespace

Command record_command(CLI::App &app)
{
    CLI::App *record = app.add_subcommand("record", "Record 1 to " + std::to_string(kMostRecorded) +
                                                        " cameras, and show them");
    const WallCommandLine line = add_wall_options(*record, kMostRecorded);
    auto options = std::make_shared<RecordOptions>();
    auto network = std::make_shared<std::vector<std::string>>();
    record->add_option("--dir", options->directory, "Where the files go; it is made")
        ->required()
        ->check(directory_problem);
    record->add_option("--format", options->container, "Kind of file: mp4 (in fragments), mkv")
        ->transform(CLI::CheckedTransformer(kContainers, CLI::ignore_case))
        ->default_str("mp4");
    record
        ->add_option("--segment", options->segment_s,
                     "Seconds of local time in one file; the next one begins at a key frame")
        ->check(CLI::Range(1, kLongestSegment_s))
        ->capture_default_str();
    record
        ->add_option(
            "--network", *network,
            "CH=ADDRESS: where the second, smaller stream of a channel comes from, which is recorded "
            "and not shown; may be repeated")
        ->take_all()
        ->allow_extra_args(false);

    auto recycle = std::make_shared<bool>(false);
    record->add_flag(
        "--recycle", *recycle,
        "Delete the oldest recordings of the directory when less than 64 MB of the disk are free");

    return {record, [=] {
                line.options->feed.sound_channels = UINT32_MAX;
                line.options->feed.main_channels =
                    UINT32_MAX; /* what is recorded is read whatever is shown */
                RecorderOptions recorder;
                recorder.record = *options;
                recorder.feed = line.options->feed;
                recorder.recycle = *recycle;
                if (*recycle) recorder.retention.least_free = kKeptFree_bytes;
                if (!read_network_addresses(*network, line.options->inputs.size(), &recorder.network))
                    return static_cast<int>(kExitUsage);
                std::vector<std::unique_ptr<Module>> modules;
                auto records = std::make_unique<Recorder>(std::move(recorder));
                line.controls->hooks.event = [asked = records.get()](int channel, const std::string &kind,
                                                                     const std::string &text) {
                    asked->event(channel, kind, text);
                };
                modules.push_back(std::move(records));
                return line.run(std::move(modules));
            }};
}

} // namespace nvrec
