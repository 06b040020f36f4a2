/*
 * database.h - an SQLite database and its statements. Every handle is given back whatever happens, and a
 * failure is told as a text.
 *
 * Threads: one at a time.
 */
#pragma once

#include <cstdint>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace nvrec
{

/** A prepared statement. Parameters and columns count from 0. */
class Statement
{
public:
    Statement(sqlite3 *database, const char *sql);
    ~Statement();
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    Statement &bind(int parameter, int64_t value);
    Statement &bind(int parameter, const std::string &value);

    /** Go to the next row. @return false at the end, or when it failed: see done(). */
    bool next();

    /** Run a statement that has no rows, and make it ready for other parameters. @return false = failed. */
    bool run();

    /** After next() returned false: whether the rows have ended. false = it failed. */
    bool done() const { return done_; }

    int64_t number(int column) const;
    std::string text(int column) const;

private:
    sqlite3_stmt *statement_ = nullptr;
    bool done_ = false;
};

class Database
{
public:
    Database() = default;
    ~Database() { close(); }
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    /** Open a file that is there already. An empty path is a database in memory. @return false = error(). */
    bool open(const std::string &path);
    void close();
    void swap(Database &other);
    bool is_open() const { return handle_ != nullptr; }

    /** Run statements that have no parameters and no rows that are needed. */
    bool run(const char *sql);

    /** The one number that a statement gives; `otherwise` when it gives none. */
    int64_t number(const char *sql, int64_t otherwise);

    /** Why the last call failed. */
    std::string error() const;

    /** The file is no database, or a damaged one. */
    bool damaged() const;

    /**
     * Whether the last call may succeed when it is repeated later: the disk is full or fails, or another
     * process writes. Otherwise the statement itself is at fault.
     */
    bool may_pass() const;

    /** Rows that the last statement changed. */
    int64_t changed() const;
    /** The number of the row that was put in last. */
    int64_t last_row() const;

    sqlite3 *handle() const { return handle_; }

private:
    sqlite3 *handle_ = nullptr;
    std::string open_error_;
};

/** Statements that take effect together: at commit(), or not at all. */
class Transaction
{
public:
    explicit Transaction(Database &database) : database_(database)
    {
        open_ = database.run("BEGIN IMMEDIATE");
    }
    ~Transaction()
    {
        if (open_) database_.run("ROLLBACK");
    }
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    bool is_open() const { return open_; }
    bool commit()
    {
        if (!open_) return false;
        open_ = !database_.run("COMMIT");
        return !open_;
    }

private:
    Database &database_;
    bool open_;
};

} // namespace nvrec
