/*
 * check.h - the parameters of a request against its description: from JSON, and from text as it stands
 * on a command line or in the query of an address. Any thread.
 *
 * Text is read as the parameter's type says:
 *   integer        12, -1, 0x619EFF00
 *   duration       40ms, 2s, 1m, 3h, 250us; a bare number is microseconds
 *   seconds (rtc)  also 2026-03-29T01:59:00Z; without the Z it is UTC all the same
 *   boolean        on, off, true, false, yes, no, 1, 0
 *   region         x,y,width,height
 *   button         a name, or a code of two digits and more or with 0x in front
 */
#ifndef VBOARD_APP_API_CHECK_H
#define VBOARD_APP_API_CHECK_H

#include <map>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace vboard_app::api
{

/*
 * A JSON object from what a client has sent; nesting that no request has is refused before it is built up.
 * @param what  it is, for the message: "the body"
 * @throws RequestError bad_json
 */
nlohmann::json object_from_text(const std::string &text, const std::string &what);

/*
 * Check the parameters of a request, and add the defaults of those that are left out.
 * @throws RequestError  not_found: no such request; bad_json: no object; bad_parameter
 */
nlohmann::json check(const std::string &request, const nlohmann::json &parameters);

/*
 * One value from text; its range is left to check().
 * @param name         of the parameter, for the message
 * @param description  of the parameter, its type resolved (parameters_of)
 * @throws RequestError bad_parameter
 */
nlohmann::json value_from_text(const std::string &name, const nlohmann::json &description,
                               const std::string &text);

/* The parameters of a request from texts by name, then as check(). */
nlohmann::json check_texts(const std::string &request, const std::map<std::string, std::string> &texts);

/* Microseconds from 40ms, 2s, 1.5s, 1m, 3h, 250us, or a bare number of them; false: it is none. */
bool duration_from_text(const std::string &text, int64_t *microseconds);

} // namespace vboard_app::api

#endif
