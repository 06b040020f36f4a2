/*
 * run_directory.h - how `vboard ctl` finds the boards of this user: one file a board, NAME.json, in
 * $XDG_RUNTIME_DIR/vboard or else /tmp/vboard-UID, both the user's own and closed to others.
 *
 *     {"name": "nvrec", "pid": 4711, "url": "http://127.0.0.1:8090/", "token": "..."}
 *
 * A file whose process is gone does not count, and is removed.
 */
#ifndef VBOARD_APP_SERVER_RUN_DIRECTORY_H
#define VBOARD_APP_SERVER_RUN_DIRECTORY_H

#include <string>
#include <vector>

#include <sys/types.h>

namespace vboard_app
{

struct RunningBoard {
    std::string name;
    pid_t pid = -1; // of `vboard run`
    std::string url;
    std::string token;
};

/* The directory; made when it is not there. @throws std::runtime_error: it is not safe, or not to be had */
std::string run_directory();

/* All boards that run, by name. */
std::vector<RunningBoard> running_boards();

/* The file of a board that runs here; removed with the object. */
class RunFile
{
public:
    /*
     * @param name    wanted; when it is taken: with "-2", "-3", ... behind it, unless `exactly`
     * @throws std::runtime_error  the name is taken, or none; the file cannot be written
     */
    RunFile(const std::string &name, bool exactly);
    ~RunFile();
    RunFile(const RunFile &) = delete;
    RunFile &operator=(const RunFile &) = delete;

    const std::string &name() const { return name_; }

    /* What others need to find the board. */
    void write(const std::string &url, const std::string &token);

private:
    std::string name_, path_;
};

} // namespace vboard_app

#endif
