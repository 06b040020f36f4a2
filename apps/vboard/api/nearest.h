/* nearest.h - the name that was probably meant, for messages about names that there are not. */
#ifndef VBOARD_APP_API_NEAREST_H
#define VBOARD_APP_API_NEAREST_H

#include <string>
#include <string_view>
#include <vector>

namespace vboard_app
{

/* The known name with the fewest letters to change; empty: none is near. */
std::string nearest_name(std::string_view name, const std::vector<std::string> &known);

/* ` (did you mean "NEAREST"?)`, or nothing. */
std::string did_you_mean(std::string_view name, const std::vector<std::string> &known);

} // namespace vboard_app

#endif
