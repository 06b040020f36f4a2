/* build_kind.h - figures count only when the compiler optimised what they measure. */
#pragma once

/**
 * Called first by every benchmark. A build without optimisation, or with a sanitizer, ends the process
 * with status 2 and says so on standard error. One that is optimised but no release build goes on, and
 * says that its figures are not to be quoted.
 */
void require_optimised_build();
