/*
 * golden.h - traces kept as plain text in tests/trace/golden, reviewed as a diff.
 *
 * NVRHAL_REWRITE_GOLDEN=1 in the environment writes what the test saw. A missing file is written
 * and the test fails once, so that somebody looks at it. A mismatch leaves NAME.actual beside it.
 */
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace recording
{

testing::AssertionResult matches_golden(const std::string &name, const std::string &text);

} // namespace recording

#define EXPECT_GOLDEN(name, text) EXPECT_TRUE(recording::matches_golden(name, text))
