/* readable.cpp - see readable.h. */
#include "ctl/readable.h"

#include <algorithm>
#include <cctype>
#include <ctime>
#include <vector>

#include <nlohmann/json.hpp>

namespace vboard_app
{
namespace
{

using nlohmann::json;
using nlohmann::ordered_json;

bool is_of_name(char letter)
{
    return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '_';
}

/* Where a name stands in a description of a result; what is not described comes last. */
size_t place_of(const std::string &name, const ordered_json &described)
{
    if (described.is_object()) {
        const auto found = described.find(name);
        return static_cast<size_t>(std::distance(described.begin(), found));
    }
    const std::string text = described.is_string() ? described.get<std::string>() : std::string();
    for (size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + 1)) {
        const size_t end = at + name.size();
        if ((at == 0 || !is_of_name(text[at - 1])) && (end == text.size() || !is_of_name(text[end])))
            return at;
    }
    return std::string::npos;
}

/* The names of an object, or of all rows of a table, in the order of the description. */
std::vector<std::string> names_of(const json &content, const ordered_json &described)
{
    std::vector<std::string> names;
    for (const json &row : content.is_array() ? content : json::array({content}))
        for (const auto &[name, value] : row.items())
            if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    std::stable_sort(names.begin(), names.end(), [&](const std::string &one, const std::string &other) {
        return place_of(one, described) < place_of(other, described);
    });
    return names;
}

/* What is said of a part; in a text of several names that is the whole text. */
const ordered_json &part_of(const ordered_json &described, const std::string &name)
{
    const auto found = described.is_object() ? described.find(name) : described.end();
    return described.is_object() && found != described.end() ? *found : described;
}

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

std::string value_text(const std::string &name, const json &value, const ordered_json &described)
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
    if (value.is_object()) {
        for (const std::string &key : names_of(value, described))
            text += (text.empty() ? "" : ", ") + label(key) + " " +
                    value_text(key, value.at(key), part_of(described, key));
    } else {
        for (const json &element : value)
            text += (text.empty() ? "" : " ") + value_text(name, element, described);
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
std::string table(const json &rows, const ordered_json &described, const std::string &indent)
{
    std::vector<std::string> names = names_of(rows, described);
    names.erase(std::remove_if(names.begin(), names.end(),
                               [&](const std::string &name) {
                                   return std::any_of(rows.begin(), rows.end(), [&](const json &row) {
                                       return row.contains(name) && is_table(row.at(name));
                                   });
                               }),
                names.end());
    std::vector<std::vector<std::string>> cells(1);
    for (const std::string &name : names)
        cells[0].push_back(label(name));
    for (const json &row : rows) {
        cells.emplace_back();
        for (const std::string &name : names)
            cells.back().push_back(row.contains(name) ? value_text(name, row.at(name), described) : "");
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

std::string block(const json &object, const ordered_json &described, const std::string &indent)
{
    size_t width = 0;
    for (const auto &[name, value] : object.items())
        if (!is_table(value)) width = std::max(width, label(name).size());
    std::string text;
    std::vector<std::string> parts; // tables, and what has tables in it
    for (const std::string &name : names_of(object, described)) {
        const json &value = object.at(name);
        const bool has_table =
            value.is_object() &&
            std::any_of(value.begin(), value.end(), [](const json &part) { return is_table(part); });
        if (is_table(value) || has_table)
            parts.push_back(name);
        else
            text += indent + label(name) + std::string(width - label(name).size(), ' ') + "  " +
                    value_text(name, value, part_of(described, name)) + "\n";
    }
    for (const std::string &name : parts) {
        const json &value = object.at(name);
        const ordered_json &inside = part_of(described, name);
        text += indent + label(name) + "\n";
        if (value.is_object()) {
            text += block(value, inside, indent + "  ");
            continue;
        }
        text += table(value, inside, indent + "  ");
        for (const json &row : value)
            for (const auto &[inner, rows] : row.items())
                if (is_table(rows))
                    text += indent + "  " + label(inner) + "\n" + table(rows, inside, indent + "    ");
    }
    return text;
}

} // namespace

std::string readable(const json &result, const ordered_json &described)
{
    if (result.is_object()) return block(result, described, "");
    return is_table(result) ? table(result, described, "") : value_text("", result, described) + "\n";
}

} // namespace vboard_app
