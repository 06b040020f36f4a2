/* source_options.cpp - see source_options.h. */
#include "commands/source_options.h"

#include <charconv>
#include <cstdio>
#include <map>

#include <CLI/CLI.hpp>

namespace nvrec
{
namespace
{

const std::map<std::string, Transport> kTransports = {
    {"auto", Transport::kAuto}, {"tcp", Transport::kTcp}, {"udp", Transport::kUdp}};
const std::map<std::string, bool> kLinks = {{"none", false}, {"measured", true}};

} // namespace

std::shared_ptr<SourceOptions> add_source_options(CLI::App &command, FeedOptions &feed)
{
    auto options = std::make_shared<SourceOptions>();
    command
        .add_option("--transport", options->transport,
                    "How packets of network cameras travel: tcp, udp, or auto: TCP first, then UDP for those "
                    "that offer nothing else")
        ->transform(CLI::CheckedTransformer(kTransports, CLI::ignore_case))
        ->default_str("auto");
    command
        .add_option("--sub", options->subs,
                    "CH=ADDRESS: a channel's smaller stream, which is shown in small panes; may be repeated")
        ->take_all()
        ->allow_extra_args(false);
    command
        .add_option("--link", feed.link_measured,
                    "Whether the library is told the quality of the camera links as it was measured, which "
                    "bounds the backlog: none, measured")
        ->transform(CLI::CheckedTransformer(kLinks, CLI::ignore_case))
        ->default_str("none");
    return options;
}

bool apply_source_options(const SourceOptions &options, std::vector<CameraSource> *cameras)
{
    for (CameraSource &camera : *cameras)
        camera.transport = options.transport;
    for (const std::string &text : options.subs) {
        size_t channel = 0;
        const char *end = text.data() + text.size();
        const auto [rest, error] = std::from_chars(text.data(), end, channel);
        const bool fits = error == std::errc{} && rest != end && *rest == '=' && rest + 1 != end &&
                          channel < cameras->size() && (*cameras)[channel].sub_address.empty();
        if (!fits) {
            std::fprintf(stderr, "nvrec: --sub %s: CH=ADDRESS is wanted, once for a channel from 0 to %zu\n",
                         shown_address(text).c_str(), cameras->empty() ? 0 : cameras->size() - 1);
            return false;
        }
        (*cameras)[channel].sub_address.assign(rest + 1, end);
    }
    return true;
}

} // namespace nvrec
