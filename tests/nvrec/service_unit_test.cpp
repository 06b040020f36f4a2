/* The recorder's unit for the service manager, against what the recorder itself waits for. */
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "record/disk_writer.h"
#include "record/recorder_index.h"

namespace
{

/* -1 = it has no such key. */
long seconds_of(const std::string &key)
{
    std::ifstream unit(NVREC_SERVICE_UNIT);
    for (std::string line; std::getline(unit, line);) {
        if (line.starts_with(key + "=")) return std::strtol(line.c_str() + key.size() + 1, nullptr, 10);
    }
    return -1;
}

TEST(ServiceUnit, WaitsForTheEndOfARecorderWithASlowDisk)
{
    const auto longest = nvrec::kLongestDiskEnd + nvrec::kLongestIndexEnd;
    EXPECT_GT(std::chrono::seconds(seconds_of("TimeoutStopSec")), longest + std::chrono::seconds(10));
}

} // namespace
