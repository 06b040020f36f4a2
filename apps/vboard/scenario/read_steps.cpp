/* read_steps.cpp - see scenario.h: times, steps and expectations. */
#include <algorithm>

#include "api/check.h"
#include "api/description.h"
#include "scenario/scenario.h"

namespace vboard_app::scenario
{
namespace
{

using nlohmann::json;

constexpr int64_t kUsualPatience_us = 5'000'000; // of a step, for its condition

/* What a scenario may ask of the board: everything that acts on it. */
std::vector<std::string> action_names()
{
    std::vector<std::string> names;
    for (const json &request : api::description().at("requests")) {
        const std::string name = request.at("name");
        const bool other_files = name.starts_with("record.") || name == "screen";
        if (request.value("method", "") != "GET" && !other_files) names.push_back(name);
    }
    return names;
}

/* A value as the request's parameter wants it. */
json parameter_value(const std::string &name, const json &description, const TreeNode &node, Context &context)
{
    if (node.kind == TreeNode::Kind::list) {
        json list = json::array();
        for (const TreeNode &item : node.items) {
            const auto text = text_of(item, name, context);
            const auto number = text ? integer_of(*text) : std::nullopt;
            list.push_back(number ? json(*number) : json(text.value_or("")));
        }
        return list;
    }
    const auto text = text_of(node, name, context);
    return text ? api::value_from_text(name, description, *text) : json();
}

/* What stands behind an action's name: nothing, a value, some values in order, or all by name. */
json parameters_of_action(const json &request, const TreeNode &node, Context &context)
{
    const json &known = api::parameters_of(request);
    const std::vector<std::string> order = request.value("arguments", std::vector<std::string>());
    json parameters = json::object();
    const auto put = [&](const std::string &name, const TreeNode &value) {
        const auto description = known.find(name);
        if (description == known.end())
            parameters[name] = nullptr; // the check tells it
        else
            parameters[name] = parameter_value(name, *description, value, context);
    };
    if (node.kind == TreeNode::Kind::map) {
        for (const auto &[key, value] : node.entries)
            put(key.text, value);
    } else if (node.kind == TreeNode::Kind::list) {
        if (node.items.size() > order.size())
            throw RequestError("bad_parameter",
                               "it takes at most " + std::to_string(order.size()) + " values");
        for (size_t i = 0; i < node.items.size(); ++i)
            put(order[i], node.items[i]);
    } else if (node.kind == TreeNode::Kind::text) {
        // "clock.take: true" stands where there is nothing to say.
        if (!order.empty())
            put(order[0], node);
        else if (boolean_of(node.text) != true)
            throw RequestError("bad_parameter", "it takes no value, or a group of keys");
    }
    return parameters;
}

std::optional<Request> read_action(const std::string &name, const TreeNode &node, Context &context)
{
    Request action;
    action.line = node.line;
    action.name = name;
    try {
        const json *request = api::find_request(name);
        if (request == nullptr) return {};
        action.parameters = api::check(name, parameters_of_action(*request, node, context));
        return action;
    } catch (const RequestError &error) {
        context.problems.add(node.line, name + ": " + error.what());
        return {};
    }
}

std::optional<Condition> read_condition(const TreeNode &node, Context &context)
{
    Reader reader(node, "\"after\"", context);
    std::vector<std::string> keys = {"within", "then"};
    Condition condition;
    condition.check = read_check(reader, keys);
    condition.within_us = reader.duration("within");
    condition.then_us = reader.duration("then").value_or(0);
    condition.text = text_of_node(node);
    const bool says_what = std::any_of(check_names().begin(), check_names().end(),
                                       [&](const std::string &name) { return reader.has(name); });
    reader.finish(keys);
    if (!says_what && node.kind == TreeNode::Kind::map)
        reader.problem(node.line, "\"after\" says nothing to wait for, as log, call, screen or pane");
    if (!condition.check) return {};
    return condition;
}

void read_span(Reader &reader, When &when)
{
    const TreeNode *node = reader.take("during");
    if (node == nullptr) return;
    std::vector<int64_t> ends;
    if (node->kind == TreeNode::Kind::list)
        for (const TreeNode &item : node->items)
            if (const auto end = item.kind == TreeNode::Kind::text ? duration_of(item.text) : std::nullopt)
                ends.push_back(*end);
    if (node->kind == TreeNode::Kind::list && node->items.size() == 2 && ends.size() == 2 &&
        ends[0] < ends[1])
        when.during_us = {ends[0], ends[1]};
    else
        reader.problem(node->line, "\"during\" is not two times, the earlier one first, as [2s, 5s]");
}

} // namespace

std::string text_of_node(const TreeNode &node)
{
    std::string text;
    switch (node.kind) {
    case TreeNode::Kind::nothing: return "~";
    case TreeNode::Kind::text: return node.text;
    case TreeNode::Kind::list:
        for (const TreeNode &item : node.items)
            text += (text.empty() ? "" : ", ") + text_of_node(item);
        return "[" + text + "]";
    case TreeNode::Kind::map:
        for (const auto &[key, value] : node.entries)
            text += (text.empty() ? "" : ", ") + key.text + ": " + text_of_node(value);
        return "{" + text + "}";
    }
    return text;
}

When read_when(Reader &reader, std::vector<std::string> &keys)
{
    keys.insert(keys.end(), {"at", "after"});
    When when;
    when.at_us = reader.duration("at");
    if (const TreeNode *after = reader.take("after")) when.after = read_condition(*after, reader.context());
    if (reader.has("at") && reader.has("after"))
        reader.problem(reader.line(),
                       "\"at\" and \"after\" stand side by side; with \"then\" in \"after\" it is later");
    return when;
}

std::optional<Step> read_step(const TreeNode &node, Context &context)
{
    Reader reader(node, "a step", context);
    std::vector<std::string> keys;
    Step step;
    step.line = node.line;
    step.text = text_of_node(node);
    step.when = read_when(reader, keys);
    if (step.when.after && !step.when.after->within_us) step.when.after->within_us = kUsualPatience_us;

    std::vector<std::string> actions = action_names();
    actions.insert(actions.end(), {"send", "shot"});
    const std::vector<std::string> times = keys;
    keys.insert(keys.end(), actions.begin(), actions.end());
    std::vector<std::string> named;
    for (const auto &[key, value] : reader.node().entries)
        if (std::find(times.begin(), times.end(), key.text) == times.end()) named.push_back(key.text);
    reader.finish(keys);
    if (node.kind != TreeNode::Kind::map) return {};
    if (named.size() != 1) {
        reader.problem(node.line, named.empty()
                                      ? "a step does nothing: it wants an action, as press or monitor"
                                      : "a step does one thing; this one has \"" + named[0] + "\" and \"" +
                                            named[1] + "\"");
        return {};
    }
    if (named[0] == "send") {
        if (const auto which = reader.choice("send", signal_names()))
            step.signal = signal_number(signal_names()[*which]);
        return step;
    }
    if (named[0] == "shot") {
        step.shot = reader.text("shot").value_or("");
        if (step.shot.empty() || step.shot.find('/') != std::string::npos)
            reader.problem(reader.take("shot")->line, "\"shot\" is no name of a file in the output folder");
        return step;
    }
    if (std::find(actions.begin(), actions.end(), named[0]) == actions.end()) return {}; // told by finish
    const auto action = read_action(named[0], *reader.take(named[0]), context);
    if (action) step.request = *action;
    return step;
}

std::optional<Expectation> read_expectation(const TreeNode &node, Context &context)
{
    Reader reader(node, "an expectation", context);
    std::vector<std::string> keys = {"within", "during", "never"};
    Expectation expectation;
    expectation.line = node.line;
    expectation.text = text_of_node(node);
    When &when = expectation.when = read_when(reader, keys);
    when.within_us = reader.duration("within");
    read_span(reader, when);
    expectation.never = reader.boolean("never").value_or(false);
    expectation.check = read_check(reader, keys);
    if (reader.has("during") && (reader.has("at") || reader.has("within") || reader.has("after")))
        reader.problem(node.line,
                       "\"during\" is a time of its own: \"at\", \"within\" and \"after\" do not go with it");
    if (expectation.never && reader.has("times"))
        reader.problem(reader.take("times")->line, "\"times\" and \"never\" do not go together");
    const bool says_what = std::any_of(check_names().begin(), check_names().end(),
                                       [&](const std::string &name) { return reader.has(name); });
    reader.finish(keys);
    if (!says_what && node.kind == TreeNode::Kind::map)
        reader.problem(node.line,
                       "an expectation expects nothing: it wants one of screen, pane, log, call, lamp, "
                       "watchdog, decoder, memory, state, boot, starts, exit");
    if (!expectation.check) return {};
    return expectation;
}

} // namespace vboard_app::scenario
