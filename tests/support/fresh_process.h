/*
 * fresh_process.h - run a piece of a test in a process of its own, with fresh library state.
 *
 * The child is a fork of the test that has not touched the library; it records on its own
 * platform and its own captured output.
 */
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace recording
{

struct Outcome {
    bool finished = false; // ran to its end: no signal, no exit, no time-out
    std::string death;     // how it ended otherwise
    int64_t result = 0;    // what the body returned
    std::vector<std::string> calls;
    std::vector<std::string> printed;
    std::string failed_call; // see Platform::fail_call
};

/** Run `body` in a child process, at most `timeout_s` of real time. */
Outcome in_fresh_process(const std::function<int64_t()> &body, unsigned timeout_s = 20);

} // namespace recording
