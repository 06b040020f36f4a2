/*
 * description.h - the description of every request and event, api/v1.json, as the program carries it in
 * itself. Any thread; nothing here changes after the first use.
 */
#ifndef VBOARD_APP_API_DESCRIPTION_H
#define VBOARD_APP_API_DESCRIPTION_H

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace vboard_app::api
{

/* The whole description, and its text as it stands in the file. */
const nlohmann::json &description();
std::string_view description_text();

/* A request of that name; null: there is none. */
const nlohmann::json *find_request(std::string_view name);

/* The parameters of a request with what their types ("is") bring: an object by name, possibly empty. */
const nlohmann::json &parameters_of(const nlohmann::json &request);

/* The HTTP status of an error's code; 500 for a code that the description does not have. */
int status_of(std::string_view error_code);

std::vector<std::string> request_names();
std::vector<std::string> event_names();

} // namespace vboard_app::api

#endif
