/* board_process.cpp - see board_process.h: what is called from outside. */
#include "board/board_process.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include <sys/eventfd.h>
#include <unistd.h>

#include "api/check.h"
#include "api/description.h"
#include "board/agent_path.h"
#include "board/board_file.h"
#include "board/board_process_self.h"

namespace vboard_app
{
namespace
{

using namespace std::chrono_literals;

constexpr auto kPatience = 10s; // a program that was stopped, or a machine under load

BoardOptions completed(BoardOptions options)
{
    if (options.name.empty() && !options.program.empty())
        options.name = std::filesystem::path(options.program.front()).filename().string();
    if (options.agent.empty()) options.agent = agent_path();
    std::error_code error;
    options.folder = std::filesystem::absolute(options.folder, error).lexically_normal().string();
    if (options.folder.size() > 1 && options.folder.back() == '/') options.folder.pop_back();
    return options;
}

/* Names of files become whole paths within the board's folder. */
json with_whole_paths(const std::string &folder, const json &request, json parameters)
{
    for (const auto &[name, description] : api::parameters_of(request).items())
        if (description.value("is", "") == "file" && parameters.contains(name))
            parameters[name] = file_within(folder, parameters[name], name);
    return parameters;
}

std::chrono::milliseconds patience_for(const json &parameters)
{
    return kPatience + std::chrono::milliseconds(parameters.value("timeout", int64_t{0}));
}

} // namespace

int Ending::exit_status() const
{
    switch (how) {
    case How::exited: return status;
    case How::signalled: return 128 + status;
    case How::watchdog:
    case How::power: return 124;
    case How::stopped: return 0;
    case How::not_linked:
    case How::failed: break;
    }
    return 125;
}

BoardProcess::BoardProcess(BoardOptions options) : self_(std::make_unique<Self>(std::move(options))) {}

BoardProcess::~BoardProcess() = default;

void BoardProcess::start()
{
    self_->start();
}

bool BoardProcess::wait_booted(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(self_->mutex);
    self_->changed.wait_for(
        lock, timeout, [&] { return self_->phase == Self::Phase::on || self_->phase == Self::Phase::ended; });
    return self_->phase == Self::Phase::on;
}

std::optional<Ending> BoardProcess::wait_ended(std::optional<std::chrono::milliseconds> timeout)
{
    std::unique_lock lock(self_->mutex);
    const auto ended = [&] { return self_->ending.has_value(); };
    if (!timeout)
        self_->changed.wait(lock, ended);
    else
        self_->changed.wait_for(lock, *timeout, ended);
    return self_->ending;
}

void BoardProcess::send_signal(int signal)
{
    std::lock_guard lock(self_->mutex);
    if (self_->pid > 0) kill(self_->pid, signal);
}

void BoardProcess::stop()
{
    self_->stop();
}

json BoardProcess::request(const std::string &name, const json &parameters)
{
    if (name == "calls.follow" || name == "refusals.follow")
        return self_->call(name, parameters, kPatience, nullptr);
    const json checked = api::check(name, parameters);
    if (name == "board") return self_->told();
    if (name == "power") return self_->power(checked.at("to"));
    if (name == "description") return api::description();
    const json &request = *api::find_request(name);
    if (request.at("at") != "board") throw RequestError("not_found", "\"" + name + "\" is not served here");
    return self_->call(name, with_whole_paths(self_->options.folder, request, checked), patience_for(checked),
                       nullptr);
}

Picture BoardProcess::picture(const int *device, bool settled)
{
    json with = {{"settled", settled}};
    if (device != nullptr) with["device"] = *device;
    Picture picture;
    const json size = self_->call("picture", with, kPatience, &picture.bytes);
    picture.width = size.value("width", 0u);
    picture.height = size.value("height", 0u);
    picture.blank = size.value("blank", false);
    const uint64_t pixels = static_cast<uint64_t>(picture.width) * picture.height;
    if (pixels == 0 || picture.width % 2 != 0 || picture.height % 2 != 0 ||
        picture.bytes.size() != pixels * 3 / 2)
        throw RequestError("refused", "the board gave a picture that is none");
    return picture;
}

void BoardProcess::listen(Listener listener)
{
    std::lock_guard lock(self_->listener_mutex);
    self_->listener = std::move(listener);
}

BoardProcess::Self::Self(BoardOptions chosen)
    : options(completed(std::move(chosen))), inherited(Inherited::now()),
      wakeup(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    monitor_plugged = options.monitor_plugged;
    battery = options.rtc_battery;
    for (const BootInput &one : options.analog)
        analog.push_back({{"input", one.input}, {"lost", one.lost}, {"moving", one.moving}});
}

BoardProcess::Self::~Self()
{
    stop();
}

void BoardProcess::Self::start()
{
    if (options.program.empty()) throw StartError(125, "there is no program to run");
    if (options.agent.empty()) throw StartError(125, "libvboard-remote.so is not where it was installed");
    if (options.agent.find_first_of(" :") != std::string::npos) // the loader takes them for the end of a name
        throw StartError(125,
                         "\"" + options.agent + "\" cannot be preloaded: a folder has a blank or a colon");
    // Signals are for the threads of the application; the program gets the mask that it would have had.
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    thread = std::thread([this] { live(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);

    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return starts > 0 || ending.has_value(); });
    if (starts == 0) throw StartError(start_failure_status, start_failure);
}

void BoardProcess::Self::stop()
{
    wish_for(Wish::stop);
    std::lock_guard lock(stop_mutex);
    if (thread.joinable()) thread.join();
}

void BoardProcess::Self::wish_for(Wish what)
{
    {
        std::lock_guard lock(mutex);
        if (wish != Wish::stop) wish = what;
    }
    changed.notify_all();
    wake();
}

void BoardProcess::Self::wake()
{
    const uint64_t one = 1;
    (void)!write(wakeup.get(), &one, sizeof one);
}

json BoardProcess::Self::call(const std::string &name, const json &with, std::chrono::milliseconds patience,
                              std::vector<uint8_t> *blob)
{
    constexpr size_t kMost = 1 << 20; // bytes of requests that the program has not read yet
    const auto deadline = Clock::now() + patience;
    std::unique_lock lock(mutex);
    changed.wait_until(lock, deadline, [&] { return phase != Phase::starting; });
    if (phase == Phase::starting)
        throw RequestError("timed_out", "the program has not reached the board yet");
    if (phase == Phase::off) throw RequestError("power_off", "the board has no power");
    if (phase == Phase::left)
        throw RequestError("power_off", "the program has left the board for another one");
    if (phase == Phase::ended) throw RequestError("power_off", "the program has ended");
    if (outbox.size() > kMost) throw RequestError("busy", "the program takes no requests");

    const auto answer = std::make_shared<Pending>();
    const uint64_t id = send(name, with);
    pending[id] = answer;
    wake();
    changed.wait_until(lock, deadline, [&] { return answer->done; });
    if (!answer->done) {
        pending.erase(id);
        throw RequestError("timed_out", "the program did not answer in time");
    }
    if (!answer->error_code.empty())
        throw RequestError(answer->error_code, answer->error_message, answer->error_parameter);
    if (blob != nullptr) *blob = std::move(answer->blob);
    return std::move(answer->ok);
}

json BoardProcess::Self::power(const std::string &to)
{
    std::unique_lock lock(mutex);
    if (phase == Phase::ended) throw RequestError("power_off", "the program has ended");
    const bool is_off = phase == Phase::off;
    const uint64_t starts_before = starts;
    if (to == "off" && is_off) return json::object();
    if (to == "on" && !is_off) return json::object();
    lock.unlock();
    wish_for(to == "off" ? Wish::off : is_off ? Wish::on : Wish::cycle);
    lock.lock();
    const bool in_time = changed.wait_for(lock, kPatience, [&] {
        if (phase == Phase::ended) return true;
        return to == "off" ? phase == Phase::off : phase == Phase::on && starts > starts_before;
    });
    if (!in_time) throw RequestError("timed_out", "the program did not come so far in time");
    if (phase == Phase::ended && to != "off") throw RequestError("power_off", "the program has ended");
    return json::object();
}

json BoardProcess::Self::told()
{
    std::lock_guard lock(mutex);
    const bool has_power = phase != Phase::off && phase != Phase::ended;
    json board = {{"name", options.name},
                  {"program", options.program},
                  {"pid", pid > 0 ? json(pid) : json()},
                  {"power", has_power ? "on" : "off"},
                  {"starts", starts},
                  {"boot_reason", watchdog_boot ? "watchdog" : "power"},
                  {"version", VBOARD_VERSION},
                  {"api", api::description().at("version")},
                  {"folder", options.folder},
                  {"recording", nullptr},
                  {"stepped", options.stepped.has_value()},
                  {"exit", last_exit}};
    return board;
}

} // namespace vboard_app
