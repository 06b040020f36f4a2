/* counters.cpp - numbers that move while a recorder runs. */
#include "trace/counters.h"

#include <algorithm>

namespace vboard_app
{
namespace
{

std::string numbered(const char *kind, const CallField *number, const char *what)
{
    std::string name(kind);
    name += ' ';
    if (number != nullptr) name += number->text;
    return name + " " + what;
}

constexpr double kBitsPerByte = 8;

} // namespace

void Counters::set(const std::string &name, int64_t at_us, double value)
{
    const auto [found, added] = values_.try_emplace(name, value);
    if (!added && found->second == value) return;
    found->second = value;
    tell_(name, at_us, value);
}

void Counters::add(const std::string &name, double amount)
{
    Rate &rate = rates_[name];
    rate.amounts[rate.at] += amount;
    rate.sum += amount;
}

// A step is told when it is over. After a pause the rates are 0: the steps in between say nothing.
void Counters::advance(int64_t to_us)
{
    const int64_t to_step = to_us / kStep_us;
    if (!begun_ || to_step < step_) { // a clock that was set back begins anew
        for (auto &[name, rate] : rates_)
            rate = {};
        step_ = to_step;
        begun_ = true;
        return;
    }
    const int64_t steps = std::min<int64_t>(to_step - step_, kSteps + 1);
    for (int64_t done = 0; done < steps; ++done) {
        for (auto &[name, rate] : rates_) {
            set(name, (step_ + done + 1) * kStep_us, rate.sum);
            rate.at = (rate.at + 1) % kSteps;
            rate.amounts[rate.at] = 0;
            rate.sum = 0;
            for (const double amount : rate.amounts)
                rate.sum += amount;
        }
    }
    step_ = to_step;
}

void Counters::count_decoder(const CallLine &call)
{
    const CallField *channel = call.find("channel");
    if (call.name == "MI_VDEC_SendStream") {
        const std::optional<int64_t> bytes = call.number("stream.length");
        if (!bytes) return;
        add(numbered("VDEC", channel, "sent, kbit/s"), static_cast<double>(*bytes) * kBitsPerByte / 1000);
        add(numbered("VDEC", channel, "sends/s"), 1);
        return;
    }
    // A stopped channel has nothing left.
    const bool emptied = call.name == "MI_VDEC_StopChn" || call.name == "MI_VDEC_DestroyChn";
    if (!emptied && call.name != "MI_VDEC_GetChnStat") return;
    constexpr std::pair<const char *, const char *> kShown[] = {{"stat.bytes", "backlog, bytes"},
                                                                {"stat.frames", "backlog, frames"},
                                                                {"stat.pictures", "pictures waiting"}};
    for (const auto &[path, what] : kShown) {
        const std::string name = numbered("VDEC", channel, what);
        const std::optional<int64_t> number = emptied ? 0 : call.number(path);
        if (number && (!emptied || values_.contains(name)))
            set(name, call.time_us, static_cast<double>(*number));
    }
}

void Counters::count_display(const CallLine &call)
{
    const std::optional<int64_t> device = call.number("device"), port = call.number("port");
    if (!device || !port) return;
    auto &[enabled, hidden] = ports_[*device][*port];
    if (call.name == "MI_DISP_EnableInputPort")
        enabled = true;
    else if (call.name == "MI_DISP_DisableInputPort")
        enabled = false;
    else if (call.name == "MI_DISP_ShowInputPort")
        hidden = false;
    else if (call.name == "MI_DISP_HideInputPort")
        hidden = true;
    else
        return;
    const auto &ports = ports_[*device];
    const auto shown = std::count_if(ports.begin(), ports.end(),
                                     [](const auto &one) { return one.second.first && !one.second.second; });
    set(numbered("DISP", call.find("device"), "ports shown"), call.time_us, static_cast<double>(shown));
}

void Counters::count(const CallLine &call)
{
    advance(call.time_us);
    if (call.event || call.failed) return;
    if (call.name.starts_with("MI_VDEC_")) count_decoder(call);
    if (call.name.starts_with("MI_DISP_")) count_display(call);
    if (call.name == "MI_AO_SendFrame") {
        const std::optional<int64_t> bytes = call.number("frame.length");
        if (bytes)
            add(numbered("AO", call.find("device"), "sent, kbit/s"),
                static_cast<double>(*bytes) * kBitsPerByte / 1000);
    }
    if (call.name == "MI_VENC_GetStream") {
        const std::string name = numbered("VENC", call.find("channel"), "pictures");
        const auto found = values_.find(name);
        set(name, call.time_us, found == values_.end() ? 1 : found->second + 1);
    }
}

void Counters::finish()
{
    if (begun_) advance((step_ + 1) * kStep_us);
}

} // namespace vboard_app
