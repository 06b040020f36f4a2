/*
 * printed.h - standard output as the library wrote it, line by line.
 *
 * From the start to the end of every test, descriptor 1 goes to a file in memory. GoogleTest's own
 * lines still reach the real standard output; when a test fails, the captured text follows them.
 *
 * In an expected text `#` stands for any decimal number and `@` for any source or function name (or
 * each for itself), so that places in the source stay free. Expected texts without an error prefix
 * fit lines with and without one. A last line that was not ended carries "<no line end>", and so fits
 * only an expectation that says so.
 */
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace recording
{

/** Everything printed since the test began or the platform was told to forget. */
std::string printed_text();

/** The same as lines, the number in "[file.c]-123: " replaced by '#'. */
std::vector<std::string> printed_lines();

/** How often `line` was printed as a whole line. */
unsigned times_printed(const std::string &line);

testing::AssertionResult printed(const std::string &line);
testing::AssertionResult not_printed(const std::string &line);
/** Printed behind the prefix "[source]-#: ". */
testing::AssertionResult printed_as_error(const std::string &source, const std::string &line);
/** Printed at least once, and every time without an error prefix. */
testing::AssertionResult printed_without_prefix(const std::string &line);
/** The lines appear in this order; others may stand between. Blank lines and leading blanks do not count. */
testing::AssertionResult printed_in_order(const std::string &lines);

void forget_printed();

/** Send standard output to a fresh file in memory, or back to where it was. */
void start_capture();
void stop_capture();

} // namespace recording

#define EXPECT_PRINTED(line)                  EXPECT_TRUE(recording::printed(line))
#define EXPECT_NOT_PRINTED(line)              EXPECT_TRUE(recording::not_printed(line))
#define EXPECT_PRINTED_AS_ERROR(source, line) EXPECT_TRUE(recording::printed_as_error(source, line))
#define EXPECT_PRINTED_WITHOUT_PREFIX(line)   EXPECT_TRUE(recording::printed_without_prefix(line))
#define EXPECT_PRINTED_IN_ORDER(lines)        EXPECT_TRUE(recording::printed_in_order(lines))
