/* read_configuration.h - a configuration written for a test and read, and its faults as texts. For tests. */
#pragma once

#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "config/read.h"
#include "nvrec_run.h"

namespace nvrec_test
{

using namespace nvrec::config; // NOLINT(google-build-using-namespace): for tests

class Configuration : public testing::Test
{
protected:
    ScratchDirectory scratch_;

    std::string write(const std::string &name, const std::string &text, mode_t mode = 0600) const
    {
        const std::string path = scratch_.file(name);
        std::ofstream(path) << text;
        chmod(path.c_str(), mode);
        return path;
    }

    Reading read(const std::string &text, mode_t mode = 0600) const
    {
        return read_config(write("nvrec.toml", text, mode));
    }

    /* "LINE KEY" of every fault. */
    static std::vector<std::string> places(const Reading &reading)
    {
        std::vector<std::string> places;
        for (const Fault &fault : reading.faults)
            places.push_back(std::to_string(fault.line) + " " + fault.key);
        return places;
    }

    static std::string all_text(const Reading &reading)
    {
        std::string text;
        for (const Fault &fault : reading.faults)
            text += fault.shown() + "\n";
        return text;
    }
};

using Texts = std::vector<std::string>;

constexpr const char *kOneCamera = "[[camera]]\nname = \"yard\"\nmain = \"rtsp://192.0.2.7/s\"\n";

} // namespace nvrec_test
