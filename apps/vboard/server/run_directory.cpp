/* run_directory.cpp - see run_directory.h. */
#include "server/run_directory.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

namespace vboard_app
{
namespace
{

namespace fs = std::filesystem;
using nlohmann::json;

constexpr const char *kEnding = ".json";

/* What a file says; nothing: it is no file of a board that runs. */
std::optional<RunningBoard> read_board(const fs::path &path)
{
    std::ifstream file(path);
    const json content = json::parse(file, nullptr, false);
    try {
        RunningBoard board{content.at("name"), content.at("pid"), content.at("url"), content.at("token")};
        if (board.pid <= 0 || (kill(board.pid, 0) != 0 && errno == ESRCH)) return {};
        return board;
    } catch (const json::exception &) {
        return {};
    }
}

bool is_usable_name(const std::string &name)
{
    return !name.empty() && name.size() <= 64 && name.front() != '.' &&
           std::all_of(name.begin(), name.end(), [](unsigned char letter) {
               return std::isalnum(letter) || letter == '-' || letter == '_' || letter == '.' ||
                      letter == '+';
           });
}

/* Bytes at once: nobody finds half a file. */
void replace_file(const std::string &path, const std::string &text)
{
    const std::string made = path + ".new";
    unlink(made.c_str());
    const int file = open(made.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
    const bool written =
        file >= 0 && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (file >= 0) close(file);
    if (!written || rename(made.c_str(), path.c_str()) != 0)
        throw std::runtime_error(path + " cannot be written: " + std::strerror(errno));
}

/* Those that look for a name do so one after the other. */
class Lock
{
public:
    explicit Lock(const std::string &folder)
        : directory_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        if (directory_ < 0 || flock(directory_, LOCK_EX) != 0)
            throw std::runtime_error(folder + " cannot be locked: " + std::strerror(errno));
    }
    ~Lock() { close(directory_); }
    Lock(const Lock &) = delete;
    Lock &operator=(const Lock &) = delete;

private:
    const int directory_;
};

} // namespace

std::string run_directory()
{
    const char *given = std::getenv("XDG_RUNTIME_DIR"); // NOLINT(concurrency-mt-unsafe): nobody sets it here
    std::string path = given != nullptr && *given == '/' ? std::string(given) + "/vboard"
                                                         : "/tmp/vboard-" + std::to_string(getuid());
    if (mkdir(path.c_str(), 0700) != 0 && errno != EEXIST)
        throw std::runtime_error(path + " cannot be made: " + std::strerror(errno));
    struct stat entry = {};
    if (lstat(path.c_str(), &entry) != 0 || !S_ISDIR(entry.st_mode) || entry.st_uid != getuid() ||
        (entry.st_mode & 077) != 0)
        throw std::runtime_error(path + " is not a directory of this user alone");
    return path;
}

std::vector<RunningBoard> running_boards()
{
    std::vector<RunningBoard> boards;
    std::error_code error;
    for (const fs::directory_entry &entry : fs::directory_iterator(run_directory(), error)) {
        if (entry.path().extension() != kEnding) continue;
        std::optional<RunningBoard> board = read_board(entry.path());
        if (board && !board->url.empty()) boards.push_back(std::move(*board)); // without: it is starting
    }
    std::sort(boards.begin(), boards.end(),
              [](const auto &one, const auto &other) { return one.name < other.name; });
    return boards;
}

RunFile::RunFile(const std::string &wanted, bool exactly)
{
    if (!is_usable_name(wanted))
        throw std::runtime_error("\"" + wanted +
                                 "\" is no name for a board: letters, digits and - _ . + only");
    const std::string folder = run_directory();
    const Lock lock(folder); // until the name is taken
    for (int number = 1; number < 1000; ++number) {
        name_ = number == 1 ? wanted : wanted + "-" + std::to_string(number);
        path_ = folder + "/" + name_ + kEnding;
        // An address is there when the server is; until then nobody else takes the name.
        if (!read_board(path_)) { // there is none, or it is of a board that is gone
            write("", "");
            return;
        }
        if (exactly) break;
    }
    const std::string taken = name_;
    name_.clear();
    path_.clear();
    throw std::runtime_error("a board named \"" + taken + "\" runs already");
}

RunFile::~RunFile()
{
    if (!path_.empty()) unlink(path_.c_str());
}

void RunFile::write(const std::string &url, const std::string &token)
{
    replace_file(path_,
                 json{{"name", name_}, {"pid", getpid()}, {"url", url}, {"token", token}}.dump() + "\n");
}

} // namespace vboard_app
