/* table_reader.cpp - see table_reader.h. */
#include "config/table_reader.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "config/quantity.h"

namespace nvrec::config
{
namespace
{

const char *kind_name(Value::Kind kind)
{
    switch (kind) {
    case Value::Kind::kTable: return "a table";
    case Value::Kind::kList: return "a list";
    case Value::Kind::kText: return "a text";
    case Value::Kind::kWhole:
    case Value::Kind::kNumber: return "a number";
    case Value::Kind::kFlag: return "true or false";
    case Value::Kind::kOther: break;
    }
    return "a date or time";
}

std::string shown(double number)
{
    if (number == std::floor(number) && std::abs(number) < 1e15)
        return std::to_string(static_cast<int64_t>(number));
    std::string text = std::to_string(number);
    text.erase(text.find_last_not_of('0') + 1);
    return text;
}

std::string not_between(double least, double most)
{
    return "it has to be from " + shown(least) + " to " + shown(most);
}

} // namespace

const Value *TableReader::find(std::string_view key)
{
    if (std::ranges::find(known_, key) == known_.end()) known_.push_back(key);
    if (!table_) return nullptr;
    const auto found = std::ranges::find(table_->members, key, &Member::key);
    return found == table_->members.end() ? nullptr : &found->value;
}

std::string TableReader::place_of(std::string_view key) const
{
    if (place_.empty()) return std::string(key);
    return key.empty() ? place_ : place_ + "." + std::string(key);
}

void TableReader::fault_at(int line, std::string_view key, const std::string &text)
{
    faults_->push_back({file_, line, place_of(key), text});
}

void TableReader::fault(std::string_view key, const std::string &text)
{
    const Value *value = find(key);
    fault_at(value ? value->line : line(), key, text);
}

void TableReader::text(std::string_view key, std::string *into, bool may_be_empty)
{
    const Value *value = find(key);
    if (!value) return;
    if (value->kind != Value::Kind::kText)
        return fault(key, std::string("it has to be a text in quotes, and is ") + kind_name(value->kind));
    if (value->text.empty() && !may_be_empty) return fault(key, "it is empty");
    if (std::ranges::any_of(value->text, [](unsigned char letter) { return letter < ' ' || letter == 0x7f; }))
        return fault(key, "it holds a control character");
    *into = value->text;
}

void TableReader::flag(std::string_view key, bool *into)
{
    const Value *value = find(key);
    if (!value) return;
    if (value->kind != Value::Kind::kFlag)
        return fault(key, std::string("it has to be true or false, and is ") + kind_name(value->kind));
    *into = value->flag;
}

void TableReader::whole(std::string_view key, int *into, int least, int most)
{
    const Value *value = find(key);
    if (!value) return;
    if (value->kind != Value::Kind::kWhole) return fault(key, "it has to be a whole number");
    if (value->whole < least || value->whole > most) return fault(key, not_between(least, most));
    *into = static_cast<int>(value->whole);
}

void TableReader::seconds(std::string_view key, double *into, double least, double most)
{
    const Value *value = find(key);
    if (!value) return;
    double found = std::numeric_limits<double>::quiet_NaN();
    if (value->kind == Value::Kind::kText) {
        found = seconds_of(value->text).value_or(found);
    } else if (value->kind == Value::Kind::kWhole || value->kind == Value::Kind::kNumber) {
        found = value->number;
    }
    if (std::isnan(found))
        return fault(key, R"(it has to be seconds, or a text such as "90 s", "15 min", "1 h" or "30 days")");
    if (found < least || found > most) return fault(key, not_between(least, most) + " seconds");
    *into = found;
}

/* "1.13 h" is a little less than its 4068 s. */
void TableReader::whole_seconds(std::string_view key, int64_t *into, int64_t least, int64_t most)
{
    constexpr double kRounding_s = 1e-6;
    auto found = static_cast<double>(*into);
    seconds(key, &found, static_cast<double>(least), static_cast<double>(most));
    if (std::abs(found - std::round(found)) > kRounding_s) return fault(key, "it has to be whole seconds");
    *into = std::llround(found);
}

void TableReader::bytes(std::string_view key, int64_t *into)
{
    const Value *value = find(key);
    if (!value) return;
    const auto found = value->kind == Value::Kind::kText ? bytes_of(value->text) : std::nullopt;
    if (!found) return fault(key, R"(it has to be a text such as "500 GB", "1.5 TB" or "256 MiB")");
    *into = *found;
}

void TableReader::texts(std::string_view key, std::vector<std::string> *into)
{
    const Value *value = find(key);
    if (!value) return;
    if (value->kind != Value::Kind::kList)
        return fault(key, "it has to be a list of texts, [\"...\", \"...\"]");
    for (const Value &item : value->items) {
        if (item.kind == Value::Kind::kText) {
            into->push_back(item.text);
        } else {
            fault_at(item.line, key,
                     std::string("it has to be a list of texts, and holds ") + kind_name(item.kind));
        }
    }
}

int TableReader::choice_of(std::string_view key, const std::vector<std::string_view> &names)
{
    std::string word;
    text(key, &word);
    if (word.empty()) return -1;
    const auto found = std::ranges::find(names, word);
    if (found != names.end()) return static_cast<int>(found - names.begin());
    std::string all;
    for (const std::string_view name : names)
        all += (all.empty() ? "" : ", ") + std::string(name);
    fault(key, "\"" + word + "\" is none of " + all + suggestion(word, names));
    return -1;
}

TableReader TableReader::table(std::string_view key)
{
    const Value *value = find(key);
    if (value && value->kind != Value::Kind::kTable) {
        fault(key, "it has to be a table, [" + place_of(key) + "]");
        value = nullptr;
    }
    return TableReader(value, place_of(key), file_, faults_);
}

std::vector<const Value *> TableReader::tables(std::string_view key)
{
    std::vector<const Value *> found;
    const Value *value = find(key);
    if (!value) return found;
    if (value->kind != Value::Kind::kList) {
        fault(key, "each one has to be a table of its own, [[" + place_of(key) + "]]");
        return found;
    }
    for (const Value &item : value->items) {
        if (item.kind == Value::Kind::kTable) {
            found.push_back(&item);
        } else {
            fault_at(item.line, key, "each one has to be a table of its own, [[" + place_of(key) + "]]");
        }
    }
    return found;
}

void TableReader::finish()
{
    if (!table_) return;
    for (const auto &[key, value] : table_->members) {
        if (std::ranges::find(known_, key) == known_.end())
            fault_at(value.line, key, "there is no such key here" + suggestion(key, known_));
    }
}

} // namespace nvrec::config
