/* nvrec_run.cpp - see nvrec_run.h. */
#include "nvrec_run.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <unistd.h>

Process::Process(const std::vector<std::string> &command)
{
    int in[2], out[2], err[2];
    if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) std::abort();
    std::vector<char *> arguments;
    for (const std::string &argument : command)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        dup2(err[1], STDERR_FILENO);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    close(in[0]);
    close(out[1]);
    close(err[1]);
    in_ = in[1];
    out_ = out[0];
    err_ = err[0];
}

Process::~Process()
{
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    for (const int descriptor : {in_, out_, err_})
        if (descriptor >= 0) close(descriptor);
}

std::string Process::read_line()
{
    char letter;
    std::string line;
    while (read(out_, &letter, 1) == 1) {
        output += letter;
        if (letter == '\n') return line;
        line += letter;
    }
    return line;
}

void Process::signal(int number) const
{
    kill(pid_, number);
}

void Process::drain()
{
    pollfd sources[] = {{out_, POLLIN, 0}, {err_, POLLIN, 0}};
    std::string *texts[] = {&output, &errors};
    while (sources[0].fd >= 0 || sources[1].fd >= 0) {
        if (poll(sources, 2, -1) < 0 && errno != EINTR) return;
        for (int i = 0; i < 2; ++i) {
            if (sources[i].fd < 0 || sources[i].revents == 0) continue;
            char bytes[4096];
            const ssize_t count = read(sources[i].fd, bytes, sizeof bytes);
            if (count > 0) texts[i]->append(bytes, static_cast<size_t>(count));
            if (count <= 0) sources[i].fd = -1;
        }
    }
}

int Process::wait()
{
    drain();
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

ScratchDirectory::ScratchDirectory()
{
    std::string path = std::filesystem::temp_directory_path() / "nvrec-XXXXXX";
    if (!mkdtemp(path.data())) std::abort();
    path_ = path;
    watch_ = inotify_init1(IN_CLOEXEC);
    inotify_add_watch(watch_, path_.c_str(), IN_CLOSE_WRITE | IN_MOVED_TO);
}

ScratchDirectory::~ScratchDirectory()
{
    close(watch_);
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

bool ScratchDirectory::wait_for(const std::string &name) const
{
    constexpr int kPatience_ms = 60'000;
    alignas(inotify_event) char bytes[4096];
    for (;;) {
        pollfd source = {watch_, POLLIN, 0};
        if (poll(&source, 1, kPatience_ms) <= 0) return false;
        const ssize_t count = read(watch_, bytes, sizeof bytes);
        for (ssize_t at = 0; at < count;) {
            const auto *event = reinterpret_cast<const inotify_event *>(bytes + at);
            if (event->len > 0 && name == event->name) return true;
            at += static_cast<ssize_t>(sizeof(inotify_event)) + event->len;
        }
    }
}

std::array<int, 3> Picture::at(int x, int y) const
{
    const size_t offset = (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 3;
    return {rgb.at(offset), rgb.at(offset + 1), rgb.at(offset + 2)};
}

Picture read_picture(const std::string &path)
{
    Process size(
        {"ffprobe", "-v", "error", "-show_entries", "stream=width,height", "-of", "csv=p=0:s=x", path});
    Process pixels(
        {"ffmpeg", "-nostdin", "-v", "error", "-i", path, "-f", "rawvideo", "-pix_fmt", "rgb24", "-"});
    Picture picture;
    const int size_status = size.wait();
    const int pixels_status = pixels.wait();
    if (size_status != 0 || pixels_status != 0) return {};
    if (std::sscanf(size.output.c_str(), "%dx%d", &picture.width, &picture.height) != 2) return {};
    picture.rgb.assign(pixels.output.begin(), pixels.output.end());
    const size_t expected = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height) * 3;
    return picture.rgb.size() == expected ? picture : Picture{};
}

double reported(const std::string &json, int channel, const std::string &name)
{
    size_t at = json.find("\"channel\": " + std::to_string(channel) + ",");
    if (at == std::string::npos) return -1;
    const size_t end = json.find('\n', at);
    at = json.find("\"" + name + "\": ", at);
    if (at == std::string::npos || at > end) return -1;
    return std::strtod(json.c_str() + at + name.size() + 4, nullptr);
}

std::string file_text(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}
