/* tree.cpp - see tree.h. yaml-cpp parses; its events become the tree. */
#include "scenario/tree.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <stdexcept>

#include <yaml-cpp/anchor.h>
#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/parser.h>

namespace vboard_app::scenario
{
namespace
{

constexpr size_t kMostBytes = 1 << 20;
constexpr size_t kMostNodes = 20'000; // aliases are copied
constexpr size_t kDeepest = 24;

/* Something that ends the reading. */
class Refusal : public std::runtime_error
{
public:
    Refusal(int where, const std::string &why) : std::runtime_error(why), line(where) {}
    const int line;
};

size_t size_of(const TreeNode &node)
{
    size_t size = 1;
    for (const TreeNode &item : node.items)
        size += size_of(item);
    for (const auto &[key, value] : node.entries)
        size += 1 + size_of(value);
    return size;
}

class Builder final : public YAML::EventHandler
{
public:
    explicit Builder(Problems &problems) : problems_(problems) {}

    std::optional<TreeNode> take() { return std::move(root_); }

    void OnDocumentStart(const YAML::Mark &) override {}
    void OnDocumentEnd() override {}

    void OnNull(const YAML::Mark &mark, YAML::anchor_t anchor) override
    {
        place(leaf(TreeNode::Kind::nothing, mark), anchor);
    }

    void OnScalar(const YAML::Mark &mark, const std::string &tag, YAML::anchor_t anchor,
                  const std::string &value) override
    {
        TreeNode node = leaf(TreeNode::Kind::text, mark);
        node.text = value;
        if (tag == "?" && (value.empty() || value == "~" || value == "null"))
            node.kind = TreeNode::Kind::nothing;
        place(std::move(node), anchor);
    }

    void OnAlias(const YAML::Mark &mark, YAML::anchor_t anchor) override
    {
        const auto found = anchors_.find(anchor);
        if (found == anchors_.end()) throw Refusal(mark.line + 1, "an alias lies within what it stands for");
        count(size_of(found->second), mark.line + 1);
        TreeNode copy = found->second;
        place(std::move(copy), 0);
    }

    void OnSequenceStart(const YAML::Mark &mark, const std::string &, YAML::anchor_t anchor,
                         YAML::EmitterStyle::value) override
    {
        open(TreeNode::Kind::list, mark, anchor);
    }
    void OnSequenceEnd() override { close(); }

    void OnMapStart(const YAML::Mark &mark, const std::string &, YAML::anchor_t anchor,
                    YAML::EmitterStyle::value) override
    {
        open(TreeNode::Kind::map, mark, anchor);
    }
    void OnMapEnd() override { close(); }

private:
    struct Open {
        TreeNode node;
        YAML::anchor_t anchor;
        std::optional<TreeNode> key; // of a map, until its value comes
    };

    TreeNode leaf(TreeNode::Kind kind, const YAML::Mark &mark)
    {
        TreeNode node;
        node.kind = kind;
        node.line = mark.line + 1;
        count(1, node.line);
        return node;
    }

    void count(size_t more, int line)
    {
        count_ += more;
        if (count_ > kMostNodes)
            throw Refusal(line, "it holds more than " + std::to_string(kMostNodes) + " values");
    }

    void open(TreeNode::Kind kind, const YAML::Mark &mark, YAML::anchor_t anchor)
    {
        if (open_.size() >= kDeepest)
            throw Refusal(mark.line + 1, "it is nested deeper than " + std::to_string(kDeepest) + " levels");
        open_.push_back({leaf(kind, mark), anchor, {}});
    }

    void close()
    {
        Open done = std::move(open_.back());
        open_.pop_back();
        place(std::move(done.node), done.anchor);
    }

    void place(TreeNode node, YAML::anchor_t anchor)
    {
        if (anchor != 0) anchors_[anchor] = node;
        if (open_.empty()) {
            root_ = std::move(node);
            return;
        }
        Open &parent = open_.back();
        if (parent.node.kind == TreeNode::Kind::list) {
            parent.node.items.push_back(std::move(node));
        } else if (!parent.key) {
            if (node.kind != TreeNode::Kind::text) {
                problems_.add(node.line, std::string("a key is ") + kind_text(node.kind) + ", not a text");
                node.text.clear();
            }
            parent.key = std::move(node);
        } else {
            add_entry(parent, std::move(node));
        }
    }

    void add_entry(Open &parent, TreeNode value)
    {
        const TreeNode key = std::move(*parent.key);
        parent.key.reset();
        if (key.kind != TreeNode::Kind::text) return; // told already
        if (const TreeNode *first = parent.node.find(key.text)) {
            problems_.add(key.line, "the key \"" + key.text +
                                        "\" stands here twice; the first time in line " +
                                        std::to_string(first->line));
            return;
        }
        parent.node.entries.push_back({key, std::move(value)});
    }

    Problems &problems_;
    std::vector<Open> open_;
    std::map<YAML::anchor_t, TreeNode> anchors_;
    std::optional<TreeNode> root_;
    size_t count_ = 0;
};

} // namespace

std::vector<Problem> Problems::sorted() const
{
    std::vector<Problem> sorted = all_;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Problem &one, const Problem &other) { return one.line < other.line; });
    return sorted;
}

const TreeNode *TreeNode::find(const std::string &key) const
{
    for (const auto &[name, value] : entries)
        if (name.text == key) return &value;
    return nullptr;
}

const char *kind_text(TreeNode::Kind kind)
{
    switch (kind) {
    case TreeNode::Kind::nothing: return "nothing";
    case TreeNode::Kind::text: return "a single value";
    case TreeNode::Kind::list: return "a list";
    case TreeNode::Kind::map: return "a group of keys";
    }
    return "";
}

std::optional<TreeNode> read_tree(std::istream &file, Problems &problems)
{
    std::string bytes(kMostBytes + 1, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<size_t>(file.gcount()));
    if (file.bad()) {
        problems.add(0, "it cannot be read");
        return {};
    }
    if (bytes.size() > kMostBytes) {
        problems.add(0, "it is larger than " + std::to_string(kMostBytes / 1024) + " KiB");
        return {};
    }
    if (bytes.find('\0') != std::string::npos) {
        problems.add(0, "it has zero bytes in it: it is no text");
        return {};
    }
    std::istringstream text(bytes);
    Builder builder(problems);
    try {
        YAML::Parser parser(text);
        if (!parser.HandleNextDocument(builder)) {
            problems.add(1, "it is empty");
            return {};
        }
        Builder rest(problems);
        if (parser.HandleNextDocument(rest)) problems.add(0, "it holds more than one document");
    } catch (const Refusal &refusal) {
        problems.add(refusal.line, refusal.what());
        return {};
    } catch (const YAML::Exception &error) {
        problems.add(error.mark.line + 1, "it is no YAML: " + error.msg);
        return {};
    }
    return builder.take();
}

} // namespace vboard_app::scenario
