/* diff.h - two call traces compared, and what there is to say about it. */
#ifndef VBOARD_APP_DIFF_H
#define VBOARD_APP_DIFF_H

#include <cstdio>
#include <string>
#include <vector>

#include "trace/line_sequence.h"

namespace vboard_app
{

struct DiffOptions {
    SameLine same;
    bool by_channel = false; // each channel's calls by themselves
    bool all = false;        // show every difference, not only the first
    bool quiet = false;      // show nothing
    uint32_t context = 3;    // lines before a difference
};

/*
 * Compare, and write what differs.
 * @return whether the traces are the same
 * @throws TraceError
 */
bool diff_traces(const std::string &a, const std::string &b, const DiffOptions &options, FILE *output,
                 std::vector<std::string> &complaints);

} // namespace vboard_app

#endif
