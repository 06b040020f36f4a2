/*
 * tree.h - a TOML file as a tree of plain values with line numbers, so that its readers do not need the
 * parser's header.
 *
 * Threads: values; parse_toml() from any.
 */
#pragma once

#include <string>
#include <vector>

namespace nvrec::config
{

struct Member;

/** A value of the file. Its kind tells which members are used. */
struct Value {
    enum class Kind { kTable, kList, kText, kWhole, kNumber, kFlag, kOther };

    Kind kind = Kind::kTable;
    int line = 0; /* of its key; of a table, of its head; from 1 */
    std::string text;
    int64_t whole = 0;
    double number = 0; /* of kWhole too */
    bool flag = false;
    std::vector<Member> members; /* in the order of their lines */
    std::vector<Value> items;
};

struct Member {
    std::string key;
    Value value;
};

/** What the parser made of a text. */
struct Parsed {
    Value root;
    std::string error; /* empty = it is TOML */
    int line = 0;      /* of the error       */
};

/** Parse a file's text. A parser ends at its first error, so that there is one at most. */
Parsed parse_toml(const std::string &text);

} // namespace nvrec::config
