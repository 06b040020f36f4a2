/*
 * recording_expect.h - the recording platform for GoogleTest.
 *
 * Every test begins with a fresh platform and a fresh capture of what is printed. GoogleTest's own
 * lines still reach the real standard output; when a test fails, the captured text follows them.
 */
#pragma once

#include <gtest/gtest.h>

#include "recording_platform.h"

namespace recording
{

inline testing::AssertionResult assertion(const Finding &finding)
{
    return finding.holds ? testing::AssertionSuccess() : testing::AssertionFailure() << finding.why_not;
}

/** Put the platform's listeners into GoogleTest's list. True, so that a variable can hold it. */
bool listen_to_tests();

/* Every program that includes this header listens, once. */
inline const bool listening_to_tests = listen_to_tests();

} // namespace recording

#define EXPECT_HOLDS(finding)                 EXPECT_TRUE(recording::assertion(finding))
#define EXPECT_PRINTED(line)                  EXPECT_HOLDS(recording::printed(line))
#define EXPECT_NOT_PRINTED(line)              EXPECT_HOLDS(recording::not_printed(line))
#define EXPECT_PRINTED_AS_ERROR(source, line) EXPECT_HOLDS(recording::printed_as_error(source, line))
#define EXPECT_PRINTED_WITHOUT_PREFIX(line)   EXPECT_HOLDS(recording::printed_without_prefix(line))
#define EXPECT_PRINTED_IN_ORDER(lines)        EXPECT_HOLDS(recording::printed_in_order(lines))
#define EXPECT_GOLDEN(name, text)             EXPECT_HOLDS(recording::matches_golden(name, text))
