/* text_of.h - JSON as text, whatever bytes its strings hold. */
#ifndef VBOARD_REMOTE_TEXT_OF_H
#define VBOARD_REMOTE_TEXT_OF_H

#include <string>

#include <nlohmann/json.hpp>

namespace vboard_remote
{

/* A path or a refusal may hold bytes that are no UTF-8: they are replaced. */
inline std::string text_of(const nlohmann::json &value)
{
    return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace vboard_remote

#endif
