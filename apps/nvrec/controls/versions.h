/* versions.h - the versions of the recorder and of the library that it found. */
#pragma once

#include <string>

namespace nvrec
{

/** "1.0" */
std::string nvrec_version();

/** From the name of the file that the library was loaded from; "unknown" if the name does not tell it. */
std::string library_version();

} // namespace nvrec
