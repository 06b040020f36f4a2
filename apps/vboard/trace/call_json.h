/* call_json.h - a line of a call trace as JSON, as the request "calls" of api/v1.json gives it. */
#ifndef VBOARD_APP_CALL_JSON_H
#define VBOARD_APP_CALL_JSON_H

#include <nlohmann/json_fwd.hpp>

#include "trace/call_line.h"

namespace vboard_app
{

/* A value: a number where the trace has one, an object for a record, otherwise the text; "-" is null. */
nlohmann::ordered_json field_json(const CallLine &call, const CallField &field);

/* {argument: value, ...} */
nlohmann::ordered_json arguments_json(const CallLine &call);

/*
 * {time_us, duration_us, thread, name, channel, failed, result, text, arguments: [{name, value}]}; what
 * the trace does not have is null. The number of the call is the caller's to add.
 * @param line  the text that `call` was parsed from
 */
nlohmann::json call_json(const CallLine &call, std::string_view line);

} // namespace vboard_app

#endif
