/* report.cpp - see report.h. */
#include "wall/report.h"

#include <fstream>

#include "console/text.h"
#include "console/utf8.h"

namespace nvrec
{

std::string json_string(const std::string &value)
{
    std::string quoted = "\"";
    for (const char letter : valid_utf8(value)) {
        const auto code = static_cast<unsigned char>(letter);
        if (letter == '"' || letter == '\\') {
            quoted += '\\';
            quoted += letter;
        } else if (code < 0x20) {
            quoted += text("\\u%04x", code);
        } else {
            quoted += letter;
        }
    }
    return quoted + '"';
}

namespace
{

host::DecoderCounters counters_now(int channel)
{
    return host::decoder_counters(channel).value_or(host::DecoderCounters{});
}

/* A decoder's counter in the table and in JSON; empty where it is not known. */
std::string in_table(const ChannelReport &channel, uint64_t count)
{
    return channel.counted ? text("%llu", static_cast<Count>(count)) : "-";
}

/* Frames that resets and layouts threw away. */
uint64_t discarded(const ChannelReport &channel)
{
    return channel.decoder.discarded(channel.backlog);
}

std::string in_json(const ChannelReport &channel, uint64_t count)
{
    return channel.counted ? text("%llu", static_cast<Count>(count)) : "null";
}

} // namespace

void Reporter::mark()
{
    baselines_.clear();
    for (const auto &feeder : feeders_)
        baselines_.push_back(counters_now(feeder->channel()));
}

void Reporter::begin_anew(int channel)
{
    const host::DecoderCounters now = counters_now(channel);
    const auto index = static_cast<size_t>(channel);
    if (index < baselines_.size()) baselines_[index] = now;
    begun_.insert_or_assign(channel, now);
}

std::optional<host::DecoderCounters> Reporter::decoder_of(int channel) const
{
    const auto now = host::decoder_counters(channel);
    const auto from = begun_.find(channel);
    return now && from != begun_.end() ? *now - from->second : now;
}

void Reporter::leave_out(int channel, const host::DecoderCounters &foreign)
{
    const auto index = static_cast<size_t>(channel);
    if (index < baselines_.size()) baselines_[index] += foreign;
}

std::vector<ChannelReport> Reporter::collect() const
{
    std::vector<ChannelReport> channels;
    for (size_t i = 0; i < feeders_.size(); ++i) {
        const Feeder &feeder = *feeders_[i];
        if (!feeder.has_camera()) continue;
        const host::DecoderCounters from = i < baselines_.size() ? baselines_[i] : host::DecoderCounters{};
        ChannelReport report;
        report.channel = feeder.channel();
        report.address = feeder.shown_address();
        report.status = feeder.status(&report.at);
        report.opened = feeder.opened();
        report.facts = feeder.facts();
        report.fed = feeder.counters();
        const auto counters = host::decoder_counters(feeder.channel());
        report.counted = counters.has_value();
        if (counters) report.decoder = *counters - from;
        report.backlog = host::decoder_backlog(feeder.channel()).value_or(host::DecoderBacklog());
        report.trouble = feeder.trouble();
        channels.push_back(std::move(report));
    }
    return channels;
}

std::string Reporter::progress_line(double seconds) const
{
    ChannelReport sum;
    int live = 0, cameras = 0;
    std::string missing;
    for (const ChannelReport &channel : collect()) {
        ++cameras;
        sum.fed.sent += channel.fed.sent;
        sum.decoder += channel.decoder;
        sum.counted &= channel.counted;
        live += channel.status.state == CameraState::kLive;
        if (channel.status.state != CameraState::kLive && channel.status.state != CameraState::kEnded)
            missing += (missing.empty() ? ", none from " : " ") + std::to_string(channel.channel);
    }
    const double rate = seconds > 0 ? static_cast<double>(sum.fed.sent) / seconds : 0;
    std::string line = text("%7.1f s  %d of %d cameras", seconds, live, cameras) + missing +
                       text("  sent %llu (%.1f/s)", static_cast<Count>(sum.fed.sent), rate);
    if (sum.counted)
        line += text("  decoded %llu  shown %llu  dropped %llu  resets %llu",
                     static_cast<Count>(sum.decoder.decoded), static_cast<Count>(sum.decoder.shown),
                     static_cast<Count>(sum.decoder.dropped), static_cast<Count>(sum.decoder.resets));
    return line;
}

namespace
{

/* The state of a camera at the end, and its last error; empty = all is well. */
std::string remark_of(const ChannelReport &channel)
{
    const CameraStatus &status = channel.status;
    std::string remark;
    if (status.state == CameraState::kSilent)
        remark = text("silent for %.0f s", std::chrono::duration<double>(channel.at - status.since).count());
    if (status.state == CameraState::kRefused) remark = "refused";
    if (remark.empty() && status.main_is_lost(channel.at)) remark = "main stream lost";
    if (!channel.trouble.empty()) remark += (remark.empty() ? "" : ": ") + channel.trouble;
    return remark.empty() ? "" : " (" + remark + ")";
}

} // namespace

std::vector<std::string> table_of(const std::vector<ChannelReport> &channels)
{
    std::vector<std::string> lines;
    lines.push_back(text("%3s  %-5s  %-9s  %6s  %8s %8s %8s %8s %8s %7s %9s  %s", "ch", "codec", "size",
                         "rate", "sent", "refused", "decoded", "shown", "dropped", "resets", "discarded",
                         "input"));
    for (const ChannelReport &channel : channels) {
        if (!channel.opened) {
            lines.push_back(text("%3d  %-5s  %-9s  %6s  %8s %8s %8s %8s %8s %7s %9s  ", channel.channel, "-",
                                 "-", "-", "-", "-", "-", "-", "-", "-", "-") +
                            channel.address + " (" + channel.trouble + ")");
            continue;
        }
        const std::string size = text("%ux%u", channel.facts.width_px, channel.facts.height_px);
        lines.push_back(text("%3d  %-5s  %-9s  %6.2f  %8llu %8llu %8s %8s %8s %7s %9s  ", channel.channel,
                             codec_name(channel.facts.codec), size.c_str(), channel.facts.frame_rate,
                             static_cast<Count>(channel.fed.sent), static_cast<Count>(channel.fed.refused),
                             in_table(channel, channel.decoder.decoded).c_str(),
                             in_table(channel, channel.decoder.shown).c_str(),
                             in_table(channel, channel.decoder.dropped).c_str(),
                             in_table(channel, channel.decoder.resets).c_str(),
                             in_table(channel, discarded(channel)).c_str()) +
                        channel.address + remark_of(channel));
    }
    return lines;
}

std::string json_of(const std::vector<ChannelReport> &channels, const std::string &layout,
                    const std::string &output, double seconds, const std::vector<std::string> &more)
{
    std::string json = "{\n  \"layout\": " + json_string(layout) + ",\n  \"output\": " + json_string(output) +
                       text(",\n  \"seconds\": %.3f,\n  \"channels\": [", seconds);
    const char *separator = "\n";
    for (const ChannelReport &channel : channels) {
        json += separator;
        separator = ",\n";
        json += text("    {\"channel\": %d, \"input\": ", channel.channel) + json_string(channel.address);
        json += text(", \"opened\": %s, \"state\": ", channel.opened ? "true" : "false") +
                json_string(camera_state_name(channel.status.state));
        if (channel.opened) {
            json += ", \"codec\": " + json_string(codec_name(channel.facts.codec));
            json += text(", \"width\": %u, \"height\": %u, \"frame_rate\": %.3f", channel.facts.width_px,
                         channel.facts.height_px, channel.facts.frame_rate);
        }
        json += text(
            ", \"sent\": %llu, \"refused\": %llu, \"bytes\": %llu, \"passes\": %llu, \"reconnects\": %llu",
            static_cast<Count>(channel.fed.sent), static_cast<Count>(channel.fed.refused),
            static_cast<Count>(channel.fed.bytes), static_cast<Count>(channel.fed.passes),
            static_cast<Count>(channel.fed.reconnects));
        json += ", \"decoded\": " + in_json(channel, channel.decoder.decoded) +
                ", \"shown\": " + in_json(channel, channel.decoder.shown) +
                ", \"dropped\": " + in_json(channel, channel.decoder.dropped) +
                ", \"damaged\": " + in_json(channel, channel.decoder.damaged) +
                ", \"resets\": " + in_json(channel, channel.decoder.resets) +
                ", \"discarded\": " + in_json(channel, discarded(channel));
        json +=
            text(", \"jitter_ms\": %.1f, \"loss\": %.4f, \"link_quality\": %d, \"clock_jumps\": %llu, "
                 "\"stream\": \"%s\"",
                 channel.status.jitter_ms, channel.status.loss, channel.status.link_quality,
                 static_cast<Count>(channel.status.clock_jumps), channel.status.sub_stream ? "sub" : "main");
        json += ", \"trouble\": " + json_string(channel.trouble) + "}";
    }
    json += "\n  ]";
    for (const std::string &member : more)
        json += ",\n  " + member;
    return json + "\n}\n";
}

bool write_text(const std::string &path, const std::string &text)
{
    std::ofstream file(path);
    file << text;
    file.close();
    return bool(file);
}

} // namespace nvrec
