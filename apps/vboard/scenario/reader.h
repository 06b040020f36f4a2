/*
 * reader.h - a group of keys of a scenario, read key by key. What is not there, of another kind or out of
 * range becomes a problem with its line; keys that nobody asked for are told at the end, with the nearest
 * one that there is.
 */
#ifndef VBOARD_APP_SCENARIO_READER_H
#define VBOARD_APP_SCENARIO_READER_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "scenario/tree.h"
#include "scenario/values.h"

namespace vboard_app::scenario
{

/* What every part of the reading shares. */
struct Context {
    Problems &problems;
    std::string folder;                         // of the scenario; names of files begin there
    std::map<std::string, std::string> defines; // ${NAME}
};

class Reader
{
public:
    /* @param what  "a step": for the messages. A node that is no group of keys is a problem. */
    Reader(const TreeNode &node, std::string what, Context &context);

    Context &context() { return context_; }
    const TreeNode &node() const { return node_; }
    int line() const { return node_.line; }
    bool has(const std::string &key) const { return node_.find(key) != nullptr; }

    /* A key's node, which counts as asked for; null: it is not there. */
    const TreeNode *take(const std::string &key);

    /* Nothing: the key is not there, or wrong, which is told. */
    std::optional<std::string> text(const std::string &key);
    std::optional<int64_t> integer(const std::string &key, int64_t least, int64_t most);
    std::optional<bool> boolean(const std::string &key);
    std::optional<int64_t> duration(const std::string &key);
    std::optional<double> percent(const std::string &key);
    std::optional<Comparison> comparison(const std::string &key);

    /* One of some words; its number in the list. */
    std::optional<size_t> choice(const std::string &key, const std::vector<std::string> &words);

    /* Nothing else stands in the group: keys beyond `known` are told. */
    void finish(const std::vector<std::string> &known);

    void problem(int line, const std::string &text) { context_.problems.add(line, text); }

private:
    /* What `parse` makes of a key's text; what it makes nothing of is told as not `wanted`. */
    template <typename Parse>
    auto parsed(const std::string &key, Parse parse, const std::string &wanted)
        -> decltype(parse(std::string()));

    const TreeNode node_; // an empty group when it was none
    const std::string what_;
    Context &context_;
};

/* A text with its ${NAME} replaced; a name that nobody defined is a problem. */
std::string expanded(const std::string &text, int line, Context &context);

/* The text of a node; nothing, told, when it is a list or a group. */
std::optional<std::string> text_of(const TreeNode &node, const std::string &key, Context &context);

/* A list of texts; a single text is a list of one. */
std::vector<std::string> texts_of(const TreeNode &node, const std::string &key, Context &context);

/* A file's name: relative to the scenario's folder. */
std::string file_of(const std::string &name, const Context &context);

} // namespace vboard_app::scenario

#endif
