/* parameters.cpp - see parameters.h. */
#include "parameters.h"

namespace vboard_remote
{

using nlohmann::json;

namespace
{

[[noreturn]] void refuse(const char *name, const std::string &why)
{
    throw RequestFailure("bad_parameter", "\"" + std::string(name) + "\" " + why, name);
}

} // namespace

bool Parameters::has(const char *name) const
{
    const auto found = object_.find(name);
    return found != object_.end() && !found->is_null();
}

const json &Parameters::value(const char *name) const
{
    if (!has(name)) refuse(name, "is missing");
    return *object_.find(name);
}

int64_t Parameters::integer(const char *name, int64_t least, int64_t most) const
{
    const json &given = value(name);
    if (!given.is_number_integer()) refuse(name, "is no integer");
    const bool too_large = given.is_number_unsigned() &&
                           given.get<uint64_t>() > static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
    if (too_large || given.get<int64_t>() < least || given.get<int64_t>() > most)
        refuse(name, "is not within " + std::to_string(least) + " to " + std::to_string(most));
    return given.get<int64_t>();
}

int64_t Parameters::integer_or(const char *name, int64_t least, int64_t most, int64_t otherwise) const
{
    return has(name) ? integer(name, least, most) : otherwise;
}

std::string Parameters::text(const char *name) const
{
    const json &given = value(name);
    if (!given.is_string()) refuse(name, "is no text");
    std::string text = given.get<std::string>();
    if (text.find('\0') != std::string::npos) refuse(name, "holds a zero byte");
    return text;
}

bool Parameters::boolean(const char *name) const
{
    const json &given = value(name);
    if (!given.is_boolean()) refuse(name, "is neither true nor false");
    return given.get<bool>();
}

size_t Parameters::one_of(const char *name, std::initializer_list<const char *> names) const
{
    const std::string given = text(name);
    size_t index = 0;
    std::string all;
    for (const char *known : names) {
        if (given == known) return index;
        all += (index++ == 0 ? "" : ", ") + std::string(known);
    }
    refuse(name, "is none of " + all);
}

json Parameters::list(const char *name) const
{
    if (!has(name)) return json::array();
    if (!value(name).is_array()) refuse(name, "is no list");
    return value(name);
}

json Parameters::object(const char *name) const
{
    if (!has(name)) return json::object();
    if (!value(name).is_object()) refuse(name, "is no object");
    return value(name);
}

std::string Parameters::file() const
{
    std::string path = text("file");
    if (path.empty() || path.front() != '/') refuse("file", "is no path from the root");
    return path;
}

} // namespace vboard_remote
