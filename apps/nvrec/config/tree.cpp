/* tree.cpp - see tree.h. The one place that knows the TOML parser. */
#include "config/tree.h"

#include <algorithm>

#include <toml++/toml.h>

namespace nvrec::config
{
namespace
{

int line_of(const toml::source_region &region)
{
    return static_cast<int>(region.begin.line);
}

Value value_of(const toml::node &node, int line);

Value table_of(const toml::table &table, int line)
{
    Value value;
    value.line = line;
    for (const auto &[key, node] : table)
        value.members.push_back({std::string(key.str()), value_of(node, line_of(key.source()))});
    std::ranges::stable_sort(value.members, {}, [](const auto &member) { return member.value.line; });
    return value;
}

Value value_of(const toml::node &node, int line)
{
    Value value;
    value.line = line;
    if (const auto *table = node.as_table())
        return table_of(*table, line > 0 ? line : line_of(node.source()));
    if (const auto *list = node.as_array()) {
        value.kind = Value::Kind::kList;
        for (const toml::node &item : *list)
            value.items.push_back(value_of(item, line_of(item.source())));
    } else if (const auto *text = node.as_string()) {
        value.kind = Value::Kind::kText;
        value.text = text->get();
    } else if (const auto *whole = node.as_integer()) {
        value.kind = Value::Kind::kWhole;
        value.whole = whole->get();
        value.number = static_cast<double>(value.whole);
    } else if (const auto *number = node.as_floating_point()) {
        value.kind = Value::Kind::kNumber;
        value.number = number->get();
    } else if (const auto *flag = node.as_boolean()) {
        value.kind = Value::Kind::kFlag;
        value.flag = flag->get();
    } else {
        value.kind = Value::Kind::kOther; /* dates and times */
    }
    return value;
}

} // namespace

Parsed parse_toml(const std::string &text)
{
    Parsed parsed;
    try {
        parsed.root = table_of(toml::parse(std::string_view(text)), 1);
    } catch (const toml::parse_error &error) {
        parsed.error = error.description();
        parsed.line = line_of(error.source());
    }
    return parsed;
}

} // namespace nvrec::config
