/* key_names.cpp - see key_names.h. */
#include "devices/key_names.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include "ir_buttons.h"
#include "panel_keys.h"

namespace vboard
{
namespace
{

#define NAMED(name, code) {name, code},
constexpr NamedKey kRemoteButtons[] = {IR_BUTTONS(NAMED)};
constexpr NamedKey kPanelKeys[] = {PANEL_KEYS(NAMED)};
#undef NAMED

constexpr size_t kMostTypingErrors = 2;

// Letters to insert, to delete or to change so that one becomes the other (Levenshtein's distance).
size_t typing_errors(std::string_view a, std::string_view b)
{
    std::vector<size_t> row(b.size() + 1);
    for (size_t column = 0; column < row.size(); ++column)
        row[column] = column;
    for (size_t line = 1; line <= a.size(); ++line) {
        size_t diagonal = row[0];
        row[0] = line;
        for (size_t column = 1; column <= b.size(); ++column) {
            const size_t changed = diagonal + (a[line - 1] == b[column - 1] ? 0 : 1);
            diagonal = row[column];
            row[column] = std::min({changed, row[column] + 1, row[column - 1] + 1});
        }
    }
    return row.back();
}

} // namespace

std::span<const NamedKey> remote_buttons()
{
    return kRemoteButtons;
}

std::span<const NamedKey> panel_keys()
{
    return kPanelKeys;
}

std::optional<uint32_t> find_code(std::span<const NamedKey> keys, const char *name)
{
    for (const NamedKey &key : keys)
        if (name != nullptr && strcmp(key.name, name) == 0) return key.code;
    return std::nullopt;
}

bool has_code(std::span<const NamedKey> keys, uint32_t code)
{
    return std::any_of(keys.begin(), keys.end(), [&](const NamedKey &key) { return key.code == code; });
}

std::string suggestion(std::span<const NamedKey> keys, const char *name)
{
    const std::string_view wrong = name != nullptr ? std::string_view(name).substr(0, 32) : "";
    const auto nearest =
        std::min_element(keys.begin(), keys.end(), [&](const NamedKey &a, const NamedKey &b) {
            return typing_errors(a.name, wrong) < typing_errors(b.name, wrong);
        });
    const size_t errors = typing_errors(nearest->name, wrong);
    if (errors <= kMostTypingErrors && errors < wrong.size())
        return "did you mean \"" + std::string(nearest->name) + "\"?";
    std::string all = "there are";
    for (const NamedKey &key : keys)
        all += std::string(" ") + key.name;
    return all;
}

} // namespace vboard
