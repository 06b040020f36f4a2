/* finding.h - what a check found, and why it does not hold. Needs no test framework. */
#pragma once

#include <string>

namespace recording
{

struct Finding {
    bool holds = false;
    std::string why_not; // empty when it holds

    explicit operator bool() const { return holds; }
};

} // namespace recording
