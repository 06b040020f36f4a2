/*
 * parameters.h - the parameters of a request, checked as they are taken. The host has checked them
 * against its description; whatever comes in here all the same must not hurt the program.
 */
#ifndef VBOARD_REMOTE_PARAMETERS_H
#define VBOARD_REMOTE_PARAMETERS_H

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

namespace vboard_remote
{

/* A request is not carried out. The code is one of the errors of api/v1.json. */
class RequestFailure : public std::runtime_error
{
public:
    RequestFailure(const char *error_code, const std::string &message, std::string which = {})
        : std::runtime_error(message), code(error_code), parameter(std::move(which))
    {
    }

    const char *const code;
    const std::string parameter; // empty: none in particular
};

class Parameters
{
public:
    explicit Parameters(const nlohmann::json &object) : object_(object) {}

    /* Each throws RequestFailure when the value is missing, of another type or out of range. */
    int64_t integer(const char *name, int64_t least, int64_t most) const;
    int64_t integer_or(const char *name, int64_t least, int64_t most, int64_t otherwise) const;
    uint32_t word(const char *name) const { return static_cast<uint32_t>(integer(name, 0, UINT32_MAX)); }
    std::string text(const char *name) const;
    bool boolean(const char *name) const;
    bool boolean_or(const char *name, bool otherwise) const { return has(name) ? boolean(name) : otherwise; }

    /* Which of the names it is, from 0. */
    size_t one_of(const char *name, std::initializer_list<const char *> names) const;

    /* Present, and not null. */
    bool has(const char *name) const;
    bool is_text(const char *name) const { return value(name).is_string(); }

    /* An array or object of the request, of that type; an empty one when it is not there. */
    nlohmann::json list(const char *name) const;
    nlohmann::json object(const char *name) const;

    /* Those that many requests have. */
    int32_t device(int32_t otherwise = 0) const { return small("device", -1, 2, otherwise); }
    uint32_t audio_device() const { return static_cast<uint32_t>(small("device", 0, 7, 3)); }
    int32_t timeout_ms() const { return small("timeout", 0, 600000, 5000); }
    std::string file() const; // of the host's file system, from its root

private:
    int32_t small(const char *name, int32_t least, int32_t most, int32_t otherwise) const
    {
        return static_cast<int32_t>(integer_or(name, least, most, otherwise));
    }
    const nlohmann::json &value(const char *name) const;

    const nlohmann::json &object_;
};

} // namespace vboard_remote

#endif
