/* versions.h - what runs here: the recorder's version, and the library's as it was found. */
#pragma once

#include <string>

namespace nvrec
{

/** "1.0" */
std::string nvrec_version();

/** As the name of the file says that the library was loaded from; "unknown" where that says nothing. */
std::string library_version();

} // namespace nvrec
