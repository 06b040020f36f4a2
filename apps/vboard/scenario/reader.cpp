/* reader.cpp - see reader.h. */
#include "scenario/reader.h"

#include <algorithm>
#include <filesystem>

#include "api/nearest.h"

namespace vboard_app::scenario
{
namespace
{

const TreeNode &group_or_empty(const TreeNode &node, const std::string &what, Context &context)
{
    static const TreeNode empty = [] {
        TreeNode none;
        none.kind = TreeNode::Kind::map;
        return none;
    }();
    if (node.kind == TreeNode::Kind::map) return node;
    context.problems.add(node.line, what + " is " + kind_text(node.kind) + ", not a group of keys");
    return empty;
}

std::string quoted(const std::string &text)
{
    constexpr size_t kLongest = 60;
    return "\"" + (text.size() > kLongest ? text.substr(0, kLongest) + "..." : text) + "\"";
}

std::string listed(const std::vector<std::string> &words)
{
    std::string list;
    for (const std::string &word : words)
        list += (list.empty() ? "" : ", ") + word;
    return list;
}

} // namespace

std::string expanded(const std::string &text, int line, Context &context)
{
    std::string result;
    size_t at = 0;
    for (;;) {
        const size_t begin = text.find("${", at);
        if (begin == std::string::npos) return result + text.substr(at);
        const size_t end = text.find('}', begin);
        if (end == std::string::npos) {
            context.problems.add(line, "${ has no closing brace in " + quoted(text));
            return result;
        }
        const std::string name = text.substr(begin + 2, end - begin - 2);
        result += text.substr(at, begin - at);
        const auto found = context.defines.find(name);
        if (found != context.defines.end()) {
            result += found->second;
        } else {
            std::vector<std::string> known;
            for (const auto &[one, value] : context.defines)
                known.push_back(one);
            context.problems.add(line, "nothing is defined as " + quoted(name) + did_you_mean(name, known) +
                                           "; give it with --define " + name + "=VALUE");
        }
        at = end + 1;
    }
}

std::optional<std::string> text_of(const TreeNode &node, const std::string &key, Context &context)
{
    if (node.kind != TreeNode::Kind::text) {
        context.problems.add(node.line,
                             "\"" + key + "\" is " + kind_text(node.kind) + ", not a single value");
        return {};
    }
    return expanded(node.text, node.line, context);
}

std::vector<std::string> texts_of(const TreeNode &node, const std::string &key, Context &context)
{
    std::vector<std::string> texts;
    if (node.kind == TreeNode::Kind::list) {
        for (const TreeNode &item : node.items)
            if (const auto text = text_of(item, key, context)) texts.push_back(*text);
    } else if (const auto text = text_of(node, key, context)) {
        texts.push_back(*text);
    }
    return texts;
}

std::string file_of(const std::string &name, const Context &context)
{
    const std::filesystem::path path(name);
    return path.is_absolute() ? name : (std::filesystem::path(context.folder) / path).string();
}

Reader::Reader(const TreeNode &node, std::string what, Context &context)
    : node_(group_or_empty(node, what, context)), what_(std::move(what)), context_(context)
{
}

const TreeNode *Reader::take(const std::string &key)
{
    return node_.find(key);
}

std::optional<std::string> Reader::text(const std::string &key)
{
    const TreeNode *node = take(key);
    return node != nullptr ? text_of(*node, key, context_) : std::nullopt;
}

template <typename Parse>
auto Reader::parsed(const std::string &key, Parse parse, const std::string &wanted)
    -> decltype(parse(std::string()))
{
    const auto written = text(key);
    if (!written) return {};
    const auto value = parse(*written);
    if (!value) problem(take(key)->line, "\"" + key + "\" is " + quoted(*written) + ", not " + wanted);
    return value;
}

std::optional<int64_t> Reader::integer(const std::string &key, int64_t least, int64_t most)
{
    const auto within = [&](const std::string &written) {
        const auto value = integer_of(written);
        return value && *value >= least && *value <= most ? value : std::nullopt;
    };
    return parsed(key, within, "an integer from " + std::to_string(least) + " to " + std::to_string(most));
}

std::optional<bool> Reader::boolean(const std::string &key)
{
    return parsed(key, boolean_of, "true or false");
}

std::optional<int64_t> Reader::duration(const std::string &key)
{
    return parsed(key, duration_of, "a duration of at most a day with its unit, as 40ms, 2s or 1m");
}

std::optional<double> Reader::percent(const std::string &key)
{
    return parsed(key, percent_of, "a share as 2%");
}

std::optional<Comparison> Reader::comparison(const std::string &key)
{
    return parsed(key, comparison_of, "a number or a bound as \">= 50\" or \"< 200 MB\"");
}

std::optional<size_t> Reader::choice(const std::string &key, const std::vector<std::string> &words)
{
    const auto written = text(key);
    if (!written) return {};
    const auto found = std::find(words.begin(), words.end(), *written);
    if (found != words.end()) return static_cast<size_t>(found - words.begin());
    problem(take(key)->line, "\"" + key + "\" is " + quoted(*written) + ", not one of " + listed(words) +
                                 did_you_mean(*written, words));
    return {};
}

void Reader::finish(const std::vector<std::string> &known)
{
    for (const auto &[key, value] : node_.entries)
        if (std::find(known.begin(), known.end(), key.text) == known.end())
            problem(key.line, what_ + " has no key " + quoted(key.text) + did_you_mean(key.text, known));
}

} // namespace vboard_app::scenario
