/* exposition.h - the text format of Prometheus, read strictly: a page that it takes, others take. For tests.
 */
#pragma once

#include <cctype>
#include <cstdlib>
#include <set>
#include <sstream>
#include <string>

namespace nvrec_test
{

/* What the text format of Prometheus, version 0.0.4, allows and no more. */
class Exposition
{
public:
    /* The first thing that is wrong with a text; empty = nothing. */
    static std::string problem(const std::string &text)
    {
        Exposition reader;
        if (text.empty() || text.back() != '\n') return "the last line has no end";
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            const std::string found = line.starts_with("# ") ? reader.comment(line) : reader.sample(line);
            if (!found.empty()) return found + ": " + line;
        }
        return "";
    }

private:
    static bool is_name(const std::string &name, bool label)
    {
        if (name.empty() || std::isdigit(static_cast<unsigned char>(name[0])) != 0) return false;
        for (const char letter : name) {
            if (std::isalnum(static_cast<unsigned char>(letter)) == 0 && letter != '_' &&
                (label || letter != ':'))
                return false;
        }
        return true;
    }

    std::string comment(const std::string &line)
    {
        std::istringstream words(line.substr(2));
        std::string word, name, rest;
        words >> word >> name;
        std::getline(words, rest);
        if (!is_name(name, false)) return "no name";
        if (word == "HELP")
            return help_.insert(name).second && rest.size() > 2 ? "" : "a second or empty help";
        if (word != "TYPE") return "neither help nor type";
        if (rest != " gauge" && rest != " counter") return "an unknown type";
        if (rest == " counter" && !name.ends_with("_total")) return "a counter that is not called so";
        if (rest == " gauge" && name.ends_with("_total")) return "a gauge that is called a counter";
        if (!help_.contains(name)) return "no help in front";
        current_ = name;
        return types_.insert(name).second ? "" : "its lines do not stand together";
    }

    std::string sample(const std::string &line)
    {
        const size_t end = line.find_first_of("{ ");
        if (end == std::string::npos || line.substr(0, end) != current_) return "not of the type above";
        size_t at = end;
        if (line[at] == '{') {
            const std::string found = labels(line, &at);
            if (!found.empty()) return found;
        }
        if (at >= line.size() || line[at] != ' ') return "no blank in front of the value";
        char *rest = nullptr;
        std::strtod(line.c_str() + at + 1, &rest);
        if (rest == line.c_str() + at + 1 || *rest != '\0') return "no number";
        return samples_.insert(line.substr(0, at)).second ? "" : "twice the same labels";
    }

    static std::string labels(const std::string &line, size_t *at)
    {
        std::set<std::string> names;
        for (++*at;;) {
            const size_t equals = line.find('=', *at);
            if (equals == std::string::npos) return "a label without a value";
            const std::string name = line.substr(*at, equals - *at);
            if (!is_name(name, true) || name.starts_with("__") || !names.insert(name).second)
                return "a bad label";
            if (line[equals + 1] != '"') return "a value without quotes";
            size_t end = equals + 2;
            for (; end < line.size() && line[end] != '"'; ++end) {
                if (line[end] != '\\') continue;
                if (std::string("\\\"n").find(line[++end]) == std::string::npos) return "a bad escape";
            }
            if (end >= line.size()) return "a value without an end";
            *at = end + 2;
            if (line[end + 1] == '}') return "";
            if (line[end + 1] != ',') return "no comma";
        }
    }

    std::set<std::string> help_, types_, samples_;
    std::string current_;
};

} // namespace nvrec_test
