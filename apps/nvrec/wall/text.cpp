/* text.cpp - see text.h. */
#include "wall/text.h"

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

} // namespace nvrec
