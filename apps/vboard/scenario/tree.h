/*
 * tree.h - a YAML file as a tree in which every node knows its line, and what is wrong with the file.
 *
 * Files come from anybody: an alias within its own anchor, nesting without end, aliases that multiply, a
 * file of gigabytes, and a key twice are problems with a line, and reading ends there.
 */
#ifndef VBOARD_APP_SCENARIO_TREE_H
#define VBOARD_APP_SCENARIO_TREE_H

#include <istream>
#include <optional>
#include <string>
#include <vector>

namespace vboard_app::scenario
{

struct Problem {
    int line = 0; // from 1; 0: of the whole file
    std::string text;
};

/* What is wrong with a file, all of it, so that one reading finds every mistake. */
class Problems
{
public:
    void add(int line, const std::string &text) { all_.push_back({line, text}); }
    bool empty() const { return all_.empty(); }

    /* In the order of their lines. */
    std::vector<Problem> sorted() const;

private:
    std::vector<Problem> all_;
};

struct TreeEntry;

struct TreeNode {
    enum class Kind { nothing, text, list, map };

    Kind kind = Kind::nothing;
    int line = 0;
    std::string text; // of a text: numbers and booleans are texts, too
    std::vector<TreeNode> items;
    std::vector<TreeEntry> entries; // of a map

    const TreeNode *find(const std::string &key) const; // null: there is none
};

struct TreeEntry {
    TreeNode key; // a text
    TreeNode value;
};

const char *kind_text(TreeNode::Kind kind); // "a list"

/* The first document of a file; nothing when it is none, with the reason among the problems. */
std::optional<TreeNode> read_tree(std::istream &file, Problems &problems);

} // namespace vboard_app::scenario

#endif
