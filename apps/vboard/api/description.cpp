/* description.cpp - see description.h. */
#include "api/description.h"

#include <map>

#include <nlohmann/json.hpp>

#include "embedded.h"

namespace vboard_app::api
{
namespace
{

using nlohmann::json;

/* The description, and beside it each request by name with its parameters resolved. */
struct Loaded {
    json whole;
    std::map<std::string, const json *, std::less<>> requests;
    std::map<std::string, json, std::less<>> parameters; // by the request's name

    Loaded()
    {
        whole = json::parse(description_text());
        for (const json &request : whole.at("requests")) {
            const std::string name = request.at("name");
            requests[name] = &request;
            parameters[name] = resolve(request);
        }
    }

    /* What stands at a parameter itself goes before what its type says. */
    json resolve(const json &request) const
    {
        json resolved = json::object();
        if (!request.contains("parameters")) return resolved;
        for (const auto &[name, parameter] : request.at("parameters").items()) {
            json whole_parameter = json::object();
            if (parameter.contains("is")) whole_parameter = whole.at("types").at(parameter.at("is"));
            whole_parameter.update(parameter);
            resolved[name] = whole_parameter;
        }
        return resolved;
    }
};

const Loaded &loaded()
{
    static const Loaded once;
    return once;
}

} // namespace

std::string_view description_text()
{
    const EmbeddedFile &file = description_files()[0];
    return {reinterpret_cast<const char *>(file.bytes), file.size};
}

const json &description()
{
    return loaded().whole;
}

const json *find_request(std::string_view name)
{
    const auto found = loaded().requests.find(name);
    return found == loaded().requests.end() ? nullptr : found->second;
}

const json &parameters_of(const json &request)
{
    return loaded().parameters.at(request.at("name"));
}

int status_of(std::string_view error_code)
{
    const json &errors = description().at("errors");
    const auto found = errors.find(std::string(error_code));
    return found == errors.end() ? 500 : found->at("status").get<int>();
}

std::vector<std::string> request_names()
{
    std::vector<std::string> names;
    for (const auto &[name, request] : loaded().requests)
        names.push_back(name);
    return names;
}

std::vector<std::string> event_names()
{
    std::vector<std::string> names;
    for (const json &event : description().at("events"))
        names.push_back(event.at("name"));
    return names;
}

} // namespace vboard_app::api
