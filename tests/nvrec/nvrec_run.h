/*
 * nvrec_run.h - the recorder as its user runs it: a process with arguments, texts, files, an exit
 * status. For tests.
 */
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

/** A started program whose output is collected. */
class Process
{
public:
    /** Start it. Its standard input is a pipe that closes with this object. */
    explicit Process(const std::vector<std::string> &command);
    ~Process();
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;

    /** Wait for its next line of standard output; empty at the end. */
    std::string read_line();

    pid_t id() const { return pid_; }

    /** Send a signal. */
    void signal(int number) const;

    /** Wait for its end. @return exit status, or 128 + signal. */
    int wait();

    /** Its standard output and standard error, whole after wait(). */
    std::string output, errors;

private:
    void drain();

    pid_t pid_ = -1;
    int in_ = -1, out_ = -1, err_ = -1;
    std::string pending_; /* of standard output, not yet read as lines */
};

/** A directory of its own for a test, removed at the end. */
class ScratchDirectory
{
public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory &) = delete;
    ScratchDirectory &operator=(const ScratchDirectory &) = delete;
    std::string file(const std::string &name) const { return path_ + "/" + name; }
    const std::string &path() const { return path_; }

    /** Sleep until a file of that name has been written and closed here; false after a minute. */
    bool wait_for(const std::string &name) const;

private:
    std::string path_;
    int watch_ = -1;
};

/** A decoded picture, read by the ffmpeg tool and not by the code under test. */
struct Picture {
    int width = 0, height = 0;
    std::vector<uint8_t> rgb;
    std::array<int, 3> at(int x, int y) const;
};

/** Empty when it cannot be read. */
Picture read_picture(const std::string &path);

/** A number in the report of --json: the value of `name` of that channel; -1 when absent. */
double reported(const std::string &json, int channel, const std::string &name);

/** The whole file as text. */
std::string file_text(const std::string &path);
