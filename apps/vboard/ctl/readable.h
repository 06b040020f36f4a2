/* readable.h - results as people read them: lines, and tables for what there is several of. */
#ifndef VBOARD_APP_CTL_READABLE_H
#define VBOARD_APP_CTL_READABLE_H

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace vboard_app
{

/*
 * Names that end in a unit bring it into the value: 12345678 of "remaining_us" is "12.346 s", of "wall_us"
 * a time of the day. Names stand in the order of the description: an object of names, or a text in which
 * they occur.
 */
std::string readable(const nlohmann::json &result, const nlohmann::ordered_json &described);

} // namespace vboard_app

#endif
