/* read_scenario.cpp - see scenario.h: the file as a whole. */
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "scenario/scenario.h"

namespace vboard_app::scenario
{
namespace
{

const std::vector<std::string> kKeys = {"name", "board", "program", "cameras", "lasts", "steps", "expect"};

void read_lists(Reader &reader, Scenario &scenario)
{
    const auto items = [&](const char *key) -> const std::vector<TreeNode> * {
        const TreeNode *list = reader.take(key);
        if (list == nullptr || list->kind == TreeNode::Kind::nothing) return nullptr;
        if (list->kind == TreeNode::Kind::list) return &list->items;
        reader.problem(list->line,
                       std::string("\"") + key + "\" is " + kind_text(list->kind) + ", not a list");
        return nullptr;
    };
    if (const auto *steps = items("steps"))
        for (const TreeNode &item : *steps)
            if (auto step = read_step(item, reader.context())) scenario.steps.push_back(std::move(*step));
    if (const auto *list = items("expect"))
        for (const TreeNode &item : *list)
            if (auto one = read_expectation(item, reader.context()))
                scenario.expectations.push_back(std::move(*one));
}

bool looks_at_calls(const Scenario &scenario)
{
    const auto condition_does = [](const When &when) {
        return when.after && when.after->check->needs_calls();
    };
    bool does = false;
    for (const Step &step : scenario.steps)
        does |= condition_does(step.when);
    for (const Expectation &one : scenario.expectations)
        does |= one.check->needs_calls() || condition_does(one.when);
    return does;
}

void read_arguments(Reader &reader, Scenario &scenario)
{
    if (const TreeNode *program = reader.take("program"))
        scenario.arguments = texts_of(*program, "program", reader.context());
    const TreeNode *cameras = reader.take("cameras");
    if (cameras == nullptr) return;
    for (const std::string &camera : texts_of(*cameras, "cameras", reader.context())) {
        const bool address = camera.find("://") != std::string::npos;
        const std::string file = address ? camera : file_of(camera, reader.context());
        if (!address && !std::filesystem::exists(file))
            reader.problem(cameras->line, "\"cameras\": there is no file " + file);
        scenario.arguments.push_back(file);
    }
}

} // namespace

std::optional<Scenario> read_scenario(const std::string &path, const ReadOrders &orders, Problems &problems)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        problems.add(0, std::string("it cannot be opened: ") + std::strerror(errno));
        return {};
    }
    if (std::filesystem::is_directory(path)) {
        problems.add(0, "it is a folder");
        return {};
    }
    const std::optional<TreeNode> tree = read_tree(file, problems);
    if (!tree) return {};

    const std::filesystem::path folder = std::filesystem::absolute(path).parent_path();
    Context context = {problems, folder.string(), orders.defines};
    context.defines.emplace("SCENARIO_DIR", folder.string());
    Reader reader(*tree, "a scenario", context);
    Scenario scenario;
    scenario.path = path;
    scenario.name = reader.text("name").value_or(std::filesystem::path(path).stem().string());
    TreeNode no_board;
    no_board.kind = TreeNode::Kind::map;
    const TreeNode *board = reader.take("board");
    scenario.board = read_board(board != nullptr ? *board : no_board, context);
    if (orders.stepped) scenario.board.stepped = *orders.stepped;
    read_arguments(reader, scenario);
    scenario.lasts_us = reader.duration("lasts");
    read_lists(reader, scenario);
    scenario.needs_calls = looks_at_calls(scenario);
    reader.finish(kKeys);
    if (!problems.empty()) return {};
    return scenario;
}

} // namespace vboard_app::scenario
