/*
 * failure_sweep.h - run an action once for every platform call it makes, with that call failing.
 *
 * Every run is a process of its own. Up to the failing call nothing may differ from the undisturbed
 * run; what may follow, the result and the text are what the test expects of that place.
 */
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "recording_expect.h"

namespace sweep
{

/** The code that a failing call of the media interface gives, and as %x prints it. */
constexpr int32_t kFailure = static_cast<int32_t>(0xA00900EE);
inline const std::string kFailureText = "a00900ee";

using Names = std::vector<std::string>;

/** What the library owes after a failure. */
struct Expectation {
    int64_t result = 0;
    Names following; // names of the calls after the failing one, in order
    // Texts that stand in one printed line together, one that ends with \n at its end; none = no text owed.
    std::vector<std::string> pieces;
    bool anything = false; // only that it ends by itself, with 0 or -1
};

struct Undisturbed {
    std::vector<std::string> calls;
    Names names;

    /** Names from call `index` on: what follows when the library goes on. */
    Names from(size_t index) const
    {
        return index >= names.size() ? Names{} : Names(names.begin() + static_cast<long>(index), names.end());
    }
};

using Expect = std::function<Expectation(const Undisturbed &run, size_t index)>;

inline Names names_of(const std::vector<std::string> &calls)
{
    Names names;
    for (const std::string &call : calls)
        names.push_back(call.substr(0, call.find(' ')));
    return names;
}

inline bool printed_together(const std::vector<std::string> &lines, const std::vector<std::string> &pieces)
{
    for (const std::string &line : lines) {
        bool all = true;
        for (const std::string &piece : pieces)
            all = all && (line + "\n").find(piece) != std::string::npos;
        if (all) return true;
    }
    return false;
}

/** @return how many calls were made to fail. */
inline unsigned fail_every_call(const std::function<void()> &prepare, const std::function<int64_t()> &act,
                                const Expect &expect)
{
    recording::Outcome calm = recording::in_fresh_process([&] {
        prepare();
        recording::platform.forget();
        return act();
    });
    EXPECT_TRUE(calm.finished) << calm.death;
    EXPECT_EQ(calm.result, 0) << "the undisturbed run must succeed";
    for (const std::string &line : calm.printed) // about a node that the test left out, it may
        EXPECT_TRUE(line.find("fail") == std::string::npos || line.find("/dev/") != std::string::npos)
            << "nothing failed, and still: " << line;
    Undisturbed run = {calm.calls, names_of(calm.calls)};

    unsigned failures = 0;
    for (size_t index = 0; index < run.calls.size(); ++index) {
        if (run.names[index] == "board_sleep_us" || run.names[index] == "board_time_us") continue;
        ++failures;
        SCOPED_TRACE("failing call " + std::to_string(index) + ": " + run.calls[index]);
        recording::Outcome outcome = recording::in_fresh_process([&] {
            prepare();
            recording::platform.forget();
            recording::platform.fail_call(failures, kFailure);
            return act();
        });
        EXPECT_TRUE(outcome.finished) << outcome.death;
        if (!outcome.finished) continue;
        EXPECT_EQ(outcome.failed_call, run.calls[index]);
        for (const std::string &line : outcome.printed)
            EXPECT_EQ(line.find("(null)"), std::string::npos) << "a text without its source: " << line;

        Expectation expected = expect(run, index);
        if (expected.anything) {
            EXPECT_TRUE(outcome.result == 0 || outcome.result == -1) << outcome.result;
            continue;
        }
        EXPECT_EQ(outcome.result, expected.result);
        EXPECT_TRUE(expected.pieces.empty() || printed_together(outcome.printed, expected.pieces))
            << "not printed: " << expected.pieces.at(0);
        if (outcome.calls.size() <= index) {
            ADD_FAILURE() << "the failing call was not reached";
            continue;
        }
        auto after = outcome.calls.begin() + static_cast<long>(index) + 1;
        EXPECT_EQ(
            std::vector<std::string>(outcome.calls.begin(), after),
            std::vector<std::string>(run.calls.begin(), run.calls.begin() + static_cast<long>(index) + 1));
        EXPECT_EQ(names_of({after, outcome.calls.end()}), expected.following);
    }
    return failures;
}

/** The same failures with a code above 0, which is a failure as well, must lead the same way. */
inline void fail_every_call_positively(const std::function<void()> &prepare,
                                       const std::function<int64_t()> &act)
{
    constexpr int32_t kPositive = 0x2A0900EE;
    const auto run = [&](unsigned failure, int32_t code) {
        return recording::in_fresh_process([&] {
            prepare();
            recording::platform.forget();
            recording::platform.fail_call(failure, code);
            return act();
        });
    };
    for (unsigned failure = 1;; ++failure) {
        recording::Outcome negative = run(failure, kFailure);
        EXPECT_TRUE(negative.finished) << negative.death;
        if (negative.failed_call.empty()) {
            EXPECT_GT(failure, 1u) << "no call was made";
            return;
        }
        SCOPED_TRACE("failing with a positive code: " + negative.failed_call);
        recording::Outcome positive = run(failure, kPositive);
        if (negative.result == kFailure) negative.result = kPositive;
        for (std::string &line : negative.printed)
            for (const auto &[from, to] : {std::pair{kFailureText, std::string("2a0900ee")},
                                           std::pair{std::to_string(kFailure), std::to_string(kPositive)}})
                if (size_t at = line.find(from); at != std::string::npos) line.replace(at, from.size(), to);
        EXPECT_TRUE(positive.finished) << positive.death;
        EXPECT_EQ(positive.result, negative.result);
        EXPECT_EQ(positive.calls, negative.calls);
        EXPECT_EQ(positive.printed, negative.printed);
    }
}

} // namespace sweep
