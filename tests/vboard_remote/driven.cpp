/* driven.cpp - see driven.h. */
#include "driven.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <linux/close_range.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

// Pointers to the texts, and a null at the end.
std::vector<char *> pointers_to(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::string number_bytes(uint32_t number)
{
    std::string bytes;
    for (int byte = 0; byte < 4; ++byte)
        bytes += static_cast<char>(number >> 8 * byte);
    return bytes;
}

bool is_readable(int descriptor, int timeout_ms)
{
    pollfd one = {descriptor, POLLIN, 0};
    return poll(&one, 1, timeout_ms) > 0;
}

bool read_all(int descriptor, void *bytes, size_t size)
{
    auto *at = static_cast<char *>(bytes);
    while (size > 0) {
        const ssize_t got = read(descriptor, at, size);
        if (got <= 0) return false;
        at += got;
        size -= static_cast<size_t>(got);
    }
    return true;
}

std::vector<std::string> names_in(const std::string &folder)
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

Driven::Driven(const How &how)
{
    signal(SIGPIPE, SIG_IGN);
    int channel[2], in[2], out[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, channel) != 0 || pipe2(in, O_CLOEXEC) != 0 ||
        pipe2(out, O_CLOEXEC) != 0)
        abort();
    std::vector<std::string> environment = how.environment;
    if (how.remote) {
        environment.push_back("LD_PRELOAD=" AGENT_LIBRARY + how.preload_more);
        environment.push_back("VBOARD_REMOTE_FD=" +
                              (how.descriptor.empty() ? std::to_string(channel[1]) : how.descriptor));
    }
    environment.push_back(std::string("PATH=") + getenv("PATH"));
    // The sanitizer wants to be the first library of all, which a preloaded one is here.
    environment.push_back("ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0");
    std::vector<std::string> command = how.command;
    const std::vector<char *> arguments = pointers_to(command), variables = pointers_to(environment);
    pid_ = fork();
    if (pid_ == 0) {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        close_range(3, ~0u, CLOSE_RANGE_CLOEXEC); // whatever the test was started with
        if (how.remote) fcntl(channel[1], F_SETFD, 0);
        execve(arguments[0], arguments.data(), variables.data());
        _exit(127);
    }
    close(in[0]);
    close(out[1]);
    close(channel[1]);
    in_ = in[1];
    out_ = out[0];
    channel_ = channel[0];
    if (!how.boot) return;
    if (how.remote) {
        hello = read_message().content;
        EXPECT_TRUE(ask("boot").contains("ok"));
    }
    EXPECT_EQ(read_line(), "ready");
}

Driven::~Driven()
{
    close_channel();
    close(in_);
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        wait();
    }
    close(out_);
}

void Driven::close_channel()
{
    if (channel_ >= 0) close(channel_);
    channel_ = -1;
}

void Driven::write_bytes(const std::string &bytes)
{
    size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t now = ::send(channel_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (now <= 0) return;
        sent += static_cast<size_t>(now);
    }
}

void Driven::write_text(const std::string &text)
{
    write_bytes(number_bytes(static_cast<uint32_t>(text.size())) + number_bytes(0) + text);
}

Message Driven::read_message(int timeout_ms)
{
    Message message;
    uint32_t lengths[2];
    if (!is_readable(channel_, timeout_ms) || !read_all(channel_, lengths, sizeof lengths)) return message;
    std::string text(lengths[0], '\0');
    message.blob.resize(lengths[1]);
    if (!read_all(channel_, text.data(), text.size()) ||
        !read_all(channel_, message.blob.data(), message.blob.size()))
        return {};
    message.content = json::parse(text);
    return message;
}

uint64_t Driven::send(const std::string &name, const json &with)
{
    write_text(json{{"id", next_id_}, {"do", name}, {"with", with}}.dump());
    return next_id_++;
}

json Driven::answer(uint64_t id)
{
    for (;;) {
        if (const auto found = answers_.find(id); found != answers_.end()) {
            json early = found->second;
            answers_.erase(found);
            return early;
        }
        Message message = read_message();
        if (message.content.is_null()) return nullptr;
        if (message.content.contains("event")) {
            events_.push_back(message.content);
            continue;
        }
        const uint64_t of = message.content["id"];
        message.content.erase("id");
        answers_[of] = message.content;
        blob = std::move(message.blob);
    }
}

json Driven::ask(const std::string &name, const json &with)
{
    return answer(send(name, with));
}

json Driven::event(const std::string &name, int timeout_ms)
{
    for (;;) {
        const auto found = std::find_if(events_.begin(), events_.end(),
                                        [&](const json &one) { return one["event"] == name; });
        if (found != events_.end()) {
            json data = (*found)["data"];
            events_.erase(found);
            return data;
        }
        const Message message = read_message(timeout_ms);
        if (message.content.is_null()) return nullptr;
        if (message.content.contains("event")) events_.push_back(message.content);
    }
}

void Driven::say(const std::string &command)
{
    const std::string line = command + "\n";
    if (write(in_, line.data(), line.size()) != static_cast<ssize_t>(line.size())) ADD_FAILURE() << command;
}

std::string Driven::read_line()
{
    for (;;) {
        const size_t end = pending_.find('\n');
        if (end != std::string::npos) {
            const std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            return line;
        }
        char bytes[4096];
        if (!is_readable(out_, 20000)) return "(nothing within 20 s)";
        const ssize_t got = read(out_, bytes, sizeof bytes);
        if (got <= 0) return "(end)";
        pending_.append(bytes, static_cast<size_t>(got));
    }
}

std::string Driven::tell(const std::string &command)
{
    say(command);
    return read_line();
}

int Driven::wait()
{
    int status = 0;
    if (pid_ <= 0 || waitpid(pid_, &status, 0) != pid_) return -1;
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::vector<std::string> descriptors_of(pid_t process)
{
    return names_in("/proc/" + std::to_string(process) + "/fd");
}

std::vector<std::string> threads_of(pid_t process)
{
    return names_in("/proc/" + std::to_string(process) + "/task");
}
