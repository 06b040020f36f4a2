/* values.cpp - see values.h. */
#include "scenario/values.h"

#include <charconv>
#include <cmath>
#include <string_view>

#include "api/check.h"

namespace vboard_app::scenario
{
namespace
{

std::string_view trimmed(std::string_view text)
{
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

struct RelationName {
    std::string_view text;
    Comparison::Relation relation;
};

// Longer ones first: "<" begins "<=", too.
constexpr RelationName kRelations[] = {
    {"<=", Comparison::Relation::less_equal}, {">=", Comparison::Relation::greater_equal},
    {"==", Comparison::Relation::equal},      {"!=", Comparison::Relation::unequal},
    {"<", Comparison::Relation::less},        {">", Comparison::Relation::greater},
    {"=", Comparison::Relation::equal},
};

struct Unit {
    std::string_view name;
    double factor;
};

constexpr Unit kUnits[] = {
    {"", 1}, {"kB", 1024}, {"KB", 1024}, {"MB", 1024.0 * 1024}, {"GB", 1024.0 * 1024 * 1024},
};

template <typename Value> std::optional<Value> whole(std::string_view text)
{
    Value value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return {};
    return value;
}

} // namespace

std::optional<int64_t> duration_of(const std::string &text)
{
    if (text == "0") return 0;
    if (text.empty() || text.back() < 'a' || text.back() > 'z') return {}; // "2" could mean anything
    int64_t microseconds = 0;
    if (!api::duration_from_text(text, &microseconds)) return {};
    if (microseconds < 0 || microseconds > kLongest_us) return {};
    return microseconds;
}

std::string duration_text(int64_t microseconds)
{
    if (microseconds % 1'000'000 == 0) return std::to_string(microseconds / 1'000'000) + "s";
    if (microseconds % 1000 == 0) return std::to_string(microseconds / 1000) + "ms";
    return std::to_string(microseconds) + "us";
}

std::optional<double> number_of(const std::string &text)
{
    const std::optional<double> value = whole<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<int64_t> integer_of(const std::string &text)
{
    return whole<int64_t>(text);
}

std::optional<bool> boolean_of(const std::string &text)
{
    for (const char *yes : {"true", "yes", "on"})
        if (text == yes) return true;
    for (const char *no : {"false", "no", "off"})
        if (text == no) return false;
    return {};
}

std::optional<double> percent_of(const std::string &text)
{
    std::string_view rest = trimmed(text);
    if (rest.ends_with('%')) rest = trimmed(rest.substr(0, rest.size() - 1));
    const std::optional<double> value = number_of(std::string(rest));
    return value && *value >= 0 && *value <= 100 ? value : std::nullopt;
}

std::optional<Comparison> comparison_of(const std::string &text)
{
    std::string_view rest = trimmed(text);
    Comparison comparison;
    for (const RelationName &one : kRelations) {
        if (!rest.starts_with(one.text)) continue;
        comparison.relation = one.relation;
        rest = trimmed(rest.substr(one.text.size()));
        break;
    }
    const size_t digits = rest.find_first_not_of("0123456789.+-eE");
    const std::string_view number = trimmed(rest.substr(0, digits));
    const std::string_view unit = digits == std::string_view::npos ? "" : trimmed(rest.substr(digits));
    const std::optional<double> value = number_of(std::string(number));
    if (!value) return {};
    for (const Unit &one : kUnits) {
        if (one.name != unit) continue;
        comparison.value = *value * one.factor;
        return comparison;
    }
    return {};
}

bool Comparison::holds(double seen) const
{
    switch (relation) {
    case Relation::equal: return seen == value;
    case Relation::unequal: return seen != value;
    case Relation::less: return seen < value;
    case Relation::less_equal: return seen <= value;
    case Relation::greater: return seen > value;
    case Relation::greater_equal: return seen >= value;
    }
    return false;
}

} // namespace vboard_app::scenario
