/*
 * printed.h - standard output as the library wrote it, line by line.
 *
 * While a capture runs, descriptor 1 goes to a file in memory. The tests that include
 * recording_expect.h capture from the start to the end of every test; other programs start and stop
 * the capture themselves.
 *
 * In an expected text `#` stands for any decimal number and `@` for any source or function name (or
 * each for itself), so that places in the source stay free. Expected texts without an error prefix
 * fit lines with and without one. A last line that was not ended carries "<no line end>", and so fits
 * only an expectation that says so.
 */
#pragma once

#include <string>
#include <vector>

#include "finding.h"

namespace recording
{

/** Everything printed since the capture began or the platform was told to forget. */
std::string printed_text();

/** The same as lines, the number in "[file.c]-123: " replaced by '#'. */
std::vector<std::string> printed_lines();

/** How often `line` was printed as a whole line. */
unsigned times_printed(const std::string &line);

Finding printed(const std::string &line);
Finding not_printed(const std::string &line);
/** Printed behind the prefix "[source]-#: ". */
Finding printed_as_error(const std::string &source, const std::string &line);
/** Printed at least once, and every time without an error prefix. */
Finding printed_without_prefix(const std::string &line);
/** The lines appear in this order; others may stand between. Blank lines and leading blanks do not count. */
Finding printed_in_order(const std::string &lines);

void forget_printed();

/** Send standard output to a fresh file in memory, or back to where it was. */
void start_capture();
void stop_capture();

/** Let somebody speak to the real standard output in the middle of a capture. */
void pause_capture();
void resume_capture();

} // namespace recording
