/* trace_files.h - traces as files of a test. */
#ifndef TESTS_VBOARD_APP_TRACE_FILES_H
#define TESTS_VBOARD_APP_TRACE_FILES_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/* A folder of its own, removed with all that is in it. */
class ScratchFolder
{
public:
    ScratchFolder() { std::filesystem::create_directory(path_); }
    ~ScratchFolder() { std::filesystem::remove_all(path_); }
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    std::string path(const std::string &name) const { return path_ + "/" + name; }
    std::string write(const std::string &name, const std::string &text) const
    {
        std::ofstream(path(name), std::ios::binary) << text;
        return path(name);
    }
    std::string read(const std::string &name) const
    {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

private:
    const std::string path_ = testing::TempDir() + "vboard_trace_" + std::to_string(getpid());
};

#endif
