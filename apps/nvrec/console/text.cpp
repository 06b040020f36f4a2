/* text.cpp - see text.h. */
#include "console/text.h"

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstdio>

namespace nvrec
{

std::string text(const char *format, ...)
{
    char line[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    return line;
}

std::string small_letters(std::string_view text)
{
    std::string small(text);
    std::ranges::transform(small, small.begin(), [](unsigned char letter) { return std::tolower(letter); });
    return small;
}

} // namespace nvrec
