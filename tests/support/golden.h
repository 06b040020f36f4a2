/*
 * golden.h - traces kept as plain text in tests/trace/golden, reviewed as a diff.
 *
 * NVRHAL_REWRITE_GOLDEN=1 in the environment writes what the test saw. A missing file is written
 * and the test fails once, so that somebody looks at it. A mismatch leaves NAME.actual beside it.
 */
#pragma once

#include <string>

#include "finding.h"

namespace recording
{

Finding matches_golden(const std::string &name, const std::string &text);

} // namespace recording
