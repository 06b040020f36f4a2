/*
 * table_reader.h - reads the keys of one table of a configuration, and takes down every fault.
 *
 * A key counts as known once it was asked for. finish() reports all other keys in the table as faults, each
 * with the nearest known key.
 *
 * Threads: one.
 */
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "config/faults.h"
#include "config/tree.h"

namespace nvrec::config
{

template <typename Type> struct Choice {
    std::string_view name;
    Type value;
};

class TableReader
{
public:
    /**
     * @param table  null = the file does not have it: every key keeps its value
     * @param place  of the table in the file, "record"; empty = the file itself
     */
    TableReader(const Value *table, std::string place, std::string file, Faults *faults)
        : table_(table), place_(std::move(place)), file_(std::move(file)), faults_(faults)
    {
    }

    bool has(std::string_view key) { return find(key) != nullptr; }
    const Value *find(std::string_view key);
    int line() const { return table_ ? table_->line : 0; }

    /*
     * Each of these leaves `into` as it is when the key is missing, and notes what is wrong with the value.
     */
    void text(std::string_view key, std::string *into, bool may_be_empty = false);
    void flag(std::string_view key, bool *into);
    void whole(std::string_view key, int *into, int least, int most);
    void seconds(std::string_view key, double *into, double least, double most);
    void whole_seconds(std::string_view key, int64_t *into, int64_t least, int64_t most);
    void bytes(std::string_view key, int64_t *into);
    void texts(std::string_view key, std::vector<std::string> *into);

    template <typename Type, size_t kCount>
    void choice(std::string_view key, const Choice<Type> (&choices)[kCount], Type *into)
    {
        std::vector<std::string_view> names;
        for (const Choice<Type> &one : choices)
            names.push_back(one.name);
        const int index = choice_of(key, names);
        if (index >= 0) *into = choices[index].value;
    }

    /** The table behind a key. */
    TableReader table(std::string_view key);

    /** The tables of a list behind a key, "[[key]]". */
    std::vector<const Value *> tables(std::string_view key);

    void fault(std::string_view key, const std::string &text);
    void fault_at(int line, std::string_view key, const std::string &text);
    void finish();

    const std::string &file() const { return file_; }
    std::string place_of(std::string_view key) const;

private:
    int choice_of(std::string_view key, const std::vector<std::string_view> &names);

    const Value *table_;
    const std::string place_;
    const std::string file_;
    Faults *faults_;
    std::vector<std::string_view> known_;
};

} // namespace nvrec::config
