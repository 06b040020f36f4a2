/*
 * contest.h - several ways to the same result, timed in turns on the same input.
 */
#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace bench_text
{

struct Contestant {
    const char *name;
    // Converts the whole input and returns the bytes written, for comparison.
    std::function<std::string()> convert;
    bool same_result; // must give what the first contestant gives
};

/**
 * Times every contestant in turns and reports the best time of each, by the character, and its
 * ratio to the first one's. @return false when a result that must be the same is not.
 */
bool compare(FILE *report, const char *title, size_t characters, const std::vector<Contestant> &contestants);

// The contests; false when one contestant errs.
bool compare_encodings(FILE *report);
bool compare_scripts(FILE *report);

} // namespace bench_text
