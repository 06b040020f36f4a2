/* check.cpp - see check.h: the values of a request's parameters against their types and ranges. */
#include "api/check.h"

#include <vector>

#include <nlohmann/json.hpp>

#include "api/description.h"
#include "api/nearest.h"
#include "board/board.h"

namespace vboard_app::api
{
namespace
{

using nlohmann::json;

constexpr int kMostNested = 16; // objects and arrays within each other; copying them takes stack for each

[[noreturn]] void refuse(const std::string &name, const std::string &why)
{
    throw RequestError("bad_parameter", "\"" + name + "\" " + why, name);
}

std::vector<std::string> keys_of(const json &object)
{
    std::vector<std::string> keys;
    for (const auto &[key, value] : object.items())
        keys.push_back(key);
    return keys;
}

bool has_type(const json &value, const std::string &type)
{
    if (type == "integer") return value.is_number_integer();
    if (type == "number") return value.is_number();
    if (type == "boolean") return value.is_boolean();
    if (type == "string") return value.is_string();
    if (type == "array") return value.is_array();
    if (type == "string|integer") return value.is_string() || value.is_number_integer();
    return false;
}

std::string type_in_words(const std::string &type)
{
    if (type == "string|integer") return "a text or an integer";
    return (type == "integer" || type == "array" ? "an " : "a ") + (type == "string" ? "text" : type);
}

void check_range(const std::string &name, const json &description, const json &value)
{
    // JSON compares integers of either sign and numbers with a fraction by their values.
    const auto minimum = description.find("minimum");
    const auto maximum = description.find("maximum");
    const bool below = minimum != description.end() && value < *minimum;
    const bool above = maximum != description.end() && value > *maximum;
    if (!below && !above) return;
    std::string range = minimum == description.end()   ? "at most " + maximum->dump()
                        : maximum == description.end() ? "at least " + minimum->dump()
                                                       : minimum->dump() + " to " + maximum->dump();
    refuse(name, "is " + value.dump() + ", not " + range);
}

void check_values(const std::string &name, const json &description, const std::string &value)
{
    const auto values = description.find("values");
    if (values == description.end()) return;
    const std::vector<std::string> known = *values;
    std::string all;
    for (const std::string &one : known) {
        if (one == value) return;
        all += (all.empty() ? "" : ", ") + one;
    }
    refuse(name, "is \"" + value + "\", not one of " + all + did_you_mean(value, known));
}

void check_array(const std::string &name, const json &description, const json &value)
{
    if (description.contains("length") && value.size() != description.at("length").get<size_t>())
        refuse(name,
               "has " + std::to_string(value.size()) + " elements, not " + description.at("length").dump());
    for (const json &element : value)
        if (!has_type(element, description.value("items", "integer")))
            refuse(name,
                   "has an element that is not " + type_in_words(description.value("items", "integer")));
}

void check_text(const std::string &name, const json &description, const std::string &text)
{
    if (text.find('\0') != std::string::npos) refuse(name, "has a zero byte in it");
    if (text.size() > 4096) refuse(name, "is longer than 4096 bytes");
    if (text.empty()) refuse(name, "is empty");
    check_values(name, description, text);
}

void check_value(const std::string &name, const json &description, const json &value)
{
    const std::string type = description.at("type");
    if (!has_type(value, type)) refuse(name, "is not " + type_in_words(type));
    if (value.is_string()) check_text(name, description, value.get<std::string>());
    if (value.is_number()) check_range(name, description, value);
    if (value.is_array()) check_array(name, description, value);
}

const json &request_of(const std::string &name)
{
    if (const json *request = find_request(name)) return *request;
    throw RequestError("not_found",
                       "there is no request \"" + name + "\"" + did_you_mean(name, request_names()));
}

} // namespace

json object_from_text(const std::string &text, const std::string &what)
{
    const auto limit_depth = [&what](int depth, json::parse_event_t, const json &) {
        if (depth <= kMostNested) return true;
        throw RequestError("bad_json", what + " is nested deeper than " + std::to_string(kMostNested) +
                                           " objects and arrays");
    };
    json content = json::parse(text, limit_depth, false);
    if (!content.is_object()) throw RequestError("bad_json", what + " is no JSON object");
    return content;
}

json check(const std::string &name, const json &parameters)
{
    const json &known = parameters_of(request_of(name));
    if (!parameters.is_object()) throw RequestError("bad_json", "the parameters are no JSON object");
    json checked = json::object();
    for (const auto &[key, value] : parameters.items()) {
        const auto description = known.find(key);
        if (description == known.end())
            refuse(key, "is no parameter of \"" + name + "\"" + did_you_mean(key, keys_of(known)));
        if (value.is_null() && description->value("optional", false)) continue;
        check_value(key, *description, value);
        checked[key] = value;
    }
    for (const auto &[key, description] : known.items()) {
        if (checked.contains(key)) continue;
        if (description.contains("default"))
            checked[key] = description.at("default");
        else if (!description.value("optional", false))
            refuse(key, "is missing");
    }
    return checked;
}

json check_texts(const std::string &name, const std::map<std::string, std::string> &texts)
{
    const json &known = parameters_of(request_of(name));
    json parameters = json::object();
    for (const auto &[key, text] : texts) {
        const auto description = known.find(key);
        if (description == known.end())
            refuse(key, "is no parameter of \"" + name + "\"" + did_you_mean(key, keys_of(known)));
        parameters[key] = value_from_text(key, *description, text);
    }
    return check(name, parameters);
}

} // namespace vboard_app::api
