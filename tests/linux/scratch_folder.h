/* scratch_folder.h - a folder for a test's files, removed with all that is in it at its end. */
#pragma once

#include <string>
#include <vector>

class ScratchFolder
{
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    std::string path(const std::string &name) const { return folder_ + "/" + name; }

    /** A file with these bytes; its path. */
    std::string file(const std::string &name, const std::string &bytes) const;

private:
    std::string folder_;
};

/** All bytes of a file. */
std::string bytes_of(const std::string &path);
