/* call_json.cpp - a line of a call trace as JSON. */
#include "trace/call_json.h"

#include <nlohmann/json.hpp>

namespace vboard_app
{
namespace
{

// The text of a checksum may look like a decimal number, and is none.
bool is_checksum(const CallField &field)
{
    return field.name == "crc32";
}

template <typename Json> Json value_json(const CallLine &call, const CallField &field)
{
    if (field.quoted) return std::string(field.text);
    if (field.member_count > 0) {
        Json record = Json::object();
        for (const CallField &member : call.members(field))
            record[std::string(member.name)] = value_json<Json>(call, member);
        return record;
    }
    if (field.text == "-") return nullptr;
    if (const std::optional<int64_t> number = field_number(field.text); number && !is_checksum(field))
        return *number;
    return std::string(field.text);
}

template <typename Number> nlohmann::json or_null(const std::optional<Number> &number)
{
    return number ? nlohmann::json(*number) : nlohmann::json();
}

} // namespace

nlohmann::ordered_json field_json(const CallLine &call, const CallField &field)
{
    return value_json<nlohmann::ordered_json>(call, field);
}

nlohmann::ordered_json arguments_json(const CallLine &call)
{
    nlohmann::ordered_json arguments = nlohmann::ordered_json::object();
    for (const CallField &argument : call.arguments)
        arguments[std::string(argument.name)] = field_json(call, argument);
    return arguments;
}

nlohmann::json call_json(const CallLine &call, std::string_view line)
{
    nlohmann::json arguments = nlohmann::json::array();
    for (const CallField &argument : call.arguments)
        arguments.push_back(
            {{"name", std::string(argument.name)}, {"value", value_json<nlohmann::json>(call, argument)}});
    return {{"time_us", call.time_us},
            {"duration_us", or_null(call.duration_us)},
            {"thread", or_null(call.thread)},
            {"name", (call.event ? "event " : "") + std::string(call.name)},
            {"channel", or_null(call.channel)},
            {"failed", call.failed},
            {"result", std::string(call.result)},
            {"text", std::string(line)},
            {"arguments", std::move(arguments)}};
}

} // namespace vboard_app
