/* readable.cpp - see readable.h. */
#include "ctl/readable.h"

#include <algorithm>
#include <ctime>
#include <vector>

#include <nlohmann/json.hpp>

namespace vboard_app
{
namespace
{

using nlohmann::json;

bool ends_with(const std::string &text, const std::string &ending)
{
    return text.size() >= ending.size() &&
           text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

std::string formatted(const char *format, double value)
{
    char text[64];
    snprintf(text, sizeof text, format, value);
    return text;
}

std::string point_in_time(int64_t seconds)
{
    const time_t when = seconds;
    std::tm parts = {};
    char text[64];
    if (gmtime_r(&when, &parts) == nullptr ||
        strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S UTC", &parts) == 0)
        return std::to_string(seconds);
    return text;
}

/* The name as a heading, without the unit that its value carries. */
std::string label(std::string name)
{
    if (name == "us") return "time";
    for (const char *unit : {"_us", "_kb", "_hz", "_db", "_dbfs", "_s"})
        if (ends_with(name, unit)) name.resize(name.size() - std::string(unit).size());
    std::replace(name.begin(), name.end(), '_', ' ');
    return name;
}

std::string value_text(const std::string &name, const json &value)
{
    if (value.is_null()) return "-";
    if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
    if (value.is_string()) return value.get<std::string>().empty() ? "-" : value.get<std::string>();
    if (value.is_number()) {
        if (name == "wall_us") return point_in_time(value.get<int64_t>() / 1000000);
        if (name == "seconds") return point_in_time(value.get<int64_t>());
        if (name == "duration_us") return value.dump() + " us";
        if (name == "us" || ends_with(name, "_us")) return formatted("%.3f s", value.get<double>() / 1e6);
        if (ends_with(name, "_kb")) return formatted("%.1f MB", value.get<double>() / 1024);
        if (ends_with(name, "_hz")) return value.dump() + " Hz";
        if (ends_with(name, "_dbfs")) return formatted("%.1f dBFS", value.get<double>());
        if (ends_with(name, "_db")) return value.dump() + " dB";
        if (ends_with(name, "_s")) return value.dump() + " s";
        return value.dump();
    }
    std::string text;
    for (const auto &[key, element] : value.items()) {
        const std::string one = value_text(value.is_object() ? key : name, element);
        text += (text.empty()        ? ""
                 : value.is_object() ? ", "
                                     : " ") +
                (value.is_object() ? label(key) + " " : "") + one;
    }
    return text.empty() ? "none" : text;
}

bool is_table(const json &value)
{
    return value.is_array() && !value.empty() && value.front().is_object();
}

bool has_letters(const std::string &text)
{
    return !text.empty() && text.find_first_not_of("-0123456789. ") != std::string::npos;
}

/* Rows under a heading; columns of numbers to the right. */
std::string table(const json &rows, const std::string &indent)
{
    std::vector<std::string> names;
    for (const json &row : rows)
        for (const auto &[name, value] : row.items())
            if (!is_table(value) && std::find(names.begin(), names.end(), name) == names.end())
                names.push_back(name);
    // What tells the rows apart comes first.
    for (const char *first :
         {"codec", "name", "call", "input", "line", "channel", "port", "device", "time_us", "number"}) {
        const auto found = std::find(names.begin(), names.end(), first);
        if (found != names.end()) std::rotate(names.begin(), found, found + 1);
    }
    std::vector<std::vector<std::string>> cells(1);
    for (const std::string &name : names)
        cells[0].push_back(label(name));
    for (const json &row : rows) {
        cells.emplace_back();
        for (const std::string &name : names)
            cells.back().push_back(row.contains(name) ? value_text(name, row.at(name)) : "");
    }
    std::string text;
    for (size_t row = 0; row < cells.size(); ++row) {
        std::string line = indent;
        for (size_t column = 0; column < names.size(); ++column) {
            size_t width = 0;
            bool left = false;
            for (size_t other = 0; other < cells.size(); ++other) {
                width = std::max(width, cells[other][column].size());
                left = left || (other > 0 && has_letters(cells[other][column]));
            }
            const std::string room(width - cells[row][column].size(), ' ');
            line +=
                (column == 0 ? "" : "  ") + (left ? cells[row][column] + room : room + cells[row][column]);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

std::string block(const json &object, const std::string &indent)
{
    size_t width = 0;
    for (const auto &[name, value] : object.items())
        if (!is_table(value)) width = std::max(width, label(name).size());
    std::string text;
    std::vector<std::pair<std::string, json>> parts; // tables, and what has tables in it
    for (const auto &[name, value] : object.items()) {
        const bool has_table =
            value.is_object() &&
            std::any_of(value.begin(), value.end(), [](const json &part) { return is_table(part); });
        if (is_table(value) || has_table)
            parts.emplace_back(name, value);
        else
            text += indent + label(name) + std::string(width - label(name).size(), ' ') + "  " +
                    value_text(name, value) + "\n";
    }
    for (const auto &[name, value] : parts) {
        text += indent + label(name) + "\n";
        if (value.is_object()) {
            text += block(value, indent + "  ");
            continue;
        }
        text += table(value, indent + "  ");
        for (const json &row : value)
            for (const auto &[inner, rows] : row.items())
                if (is_table(rows))
                    text += indent + "  " + label(inner) + "\n" + table(rows, indent + "    ");
    }
    return text;
}

} // namespace

std::string readable(const json &result)
{
    if (result.is_object()) return block(result, "");
    return is_table(result) ? table(result, "") : value_text("", result) + "\n";
}

} // namespace vboard_app
