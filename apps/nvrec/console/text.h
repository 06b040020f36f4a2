/* text.h - lines put together as printf does, and letters. */
#pragma once

#include <string>
#include <string_view>

namespace nvrec
{

/** What printf would print, up to 511 bytes of it. */
__attribute__((format(printf, 1, 2))) std::string text(const char *format, ...);

/** With a to z for A to Z. */
std::string small_letters(std::string_view text);

/** What %llu prints. */
using Count = unsigned long long;

} // namespace nvrec
