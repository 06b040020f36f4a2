/* moment.cpp - see moment.h. */
#include "scenario/moment.h"

#include <csignal>
#include <cstdio>

namespace vboard_app::scenario
{
namespace
{

struct SignalName {
    const char *name;
    int number;
};

constexpr SignalName kSignals[] = {
    {"HUP", SIGHUP},   {"INT", SIGINT},   {"QUIT", SIGQUIT}, {"ILL", SIGILL},   {"ABRT", SIGABRT},
    {"BUS", SIGBUS},   {"FPE", SIGFPE},   {"KILL", SIGKILL}, {"USR1", SIGUSR1}, {"SEGV", SIGSEGV},
    {"USR2", SIGUSR2}, {"PIPE", SIGPIPE}, {"ALRM", SIGALRM}, {"TERM", SIGTERM}, {"CONT", SIGCONT},
    {"STOP", SIGSTOP}, {"TRAP", SIGTRAP}, {"SYS", SIGSYS},
};

} // namespace

std::string signal_name(int number)
{
    for (const SignalName &one : kSignals)
        if (one.number == number) return one.name;
    return std::to_string(number);
}

std::optional<int> signal_number(const std::string &name)
{
    for (const SignalName &one : kSignals)
        if (name == one.name || name == std::string("SIG") + one.name) return one.number;
    return {};
}

const std::vector<std::string> &signal_names()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const SignalName &one : kSignals)
            all.emplace_back(one.name);
        return all;
    }();
    return names;
}

std::string time_text(int64_t microseconds)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.2f s", static_cast<double>(microseconds) / 1e6);
    return text;
}

std::string ProgramEnd::text() const
{
    if (killed) return "was killed, because it did not end";
    if (status) return "ended with status " + std::to_string(*status);
    return "was ended by signal " + signal_name(signal);
}

std::string Call::text() const
{
    std::string line = name;
    for (const auto &[key, value] : arguments)
        line.append(" ").append(key).append("=").append(value);
    return line + " = " + result;
}

const nlohmann::json *Moment::state()
{
    if (state_) return &*state_;
    if (!why_.empty()) return nullptr;
    try {
        state_ = board_.request("state", nlohmann::json::object());
        return &*state_;
    } catch (const RequestError &error) {
        why_ = error.what();
        return nullptr;
    }
}

const Image *Moment::screen()
{
    if (screen_) return &*screen_;
    try {
        screen_ = image_of(board_.picture());
        return &*screen_;
    } catch (const RequestError &error) {
        why_ = error.what();
        return nullptr;
    }
}

const Picture *Moment::picture(int device)
{
    const auto known = pictures_.find(device);
    if (known != pictures_.end()) return &known->second;
    try {
        return &pictures_.emplace(device, board_.picture(&device)).first->second;
    } catch (const RequestError &error) {
        why_ = error.what();
        return nullptr;
    }
}

const Image *Moment::image(int device)
{
    const auto known = images_.find(device);
    if (known != images_.end()) return &known->second;
    const Picture *from = picture(device);
    if (from == nullptr) return nullptr;
    return &images_.emplace(device, image_of(*from)).first->second;
}

} // namespace vboard_app::scenario
