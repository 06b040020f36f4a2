/* text.h - a line put together as printf does. */
#pragma once

#include <string>

namespace nvrec
{

/** What printf would print, up to 511 bytes of it. */
__attribute__((format(printf, 1, 2))) std::string text(const char *format, ...);

/** What %llu prints. */
using Count = unsigned long long;

} // namespace nvrec
