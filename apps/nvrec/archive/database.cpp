/* database.cpp - see database.h. */
#include "archive/database.h"

#include <utility>

#include <sqlite3.h>

namespace nvrec
{
namespace
{

constexpr int kBusy_ms = 2000; /* another process writes, which takes milliseconds */

} // namespace

Statement::Statement(sqlite3 *database, const char *sql)
{
    sqlite3_prepare_v2(database, sql, -1, &statement_, nullptr);
}

Statement::~Statement()
{
    sqlite3_finalize(statement_);
}

Statement &Statement::bind(int parameter, int64_t value)
{
    if (statement_) sqlite3_bind_int64(statement_, parameter + 1, value);
    return *this;
}

Statement &Statement::bind(int parameter, const std::string &value)
{
    if (statement_)
        sqlite3_bind_text(statement_, parameter + 1, value.data(), static_cast<int>(value.size()),
                          SQLITE_TRANSIENT);
    return *this;
}

bool Statement::next()
{
    const int code = statement_ ? sqlite3_step(statement_) : SQLITE_ERROR;
    done_ = code == SQLITE_DONE;
    return code == SQLITE_ROW;
}

bool Statement::run()
{
    while (next()) {
    }
    const bool succeeded = done_;
    if (statement_) sqlite3_reset(statement_);
    return succeeded;
}

int64_t Statement::number(int column) const
{
    return sqlite3_column_int64(statement_, column);
}

std::string Statement::text(int column) const
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(statement_, column));
    return bytes ? std::string(bytes, static_cast<size_t>(sqlite3_column_bytes(statement_, column)))
                 : std::string();
}

bool Database::open(const std::string &path)
{
    close();
    const int code = sqlite3_open_v2(path.empty() ? ":memory:" : path.c_str(), &handle_,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (code == SQLITE_OK) {
        sqlite3_busy_timeout(handle_, kBusy_ms);
        return true;
    }
    open_error_ = handle_ ? sqlite3_errmsg(handle_) : sqlite3_errstr(code);
    sqlite3_close_v2(handle_);
    handle_ = nullptr;
    return false;
}

void Database::close()
{
    if (handle_) sqlite3_close_v2(handle_);
    handle_ = nullptr;
}

void Database::swap(Database &other)
{
    std::swap(handle_, other.handle_);
    open_error_.swap(other.open_error_);
}

bool Database::run(const char *sql)
{
    return handle_ && sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

int64_t Database::number(const char *sql, int64_t otherwise)
{
    if (!handle_) return otherwise;
    Statement statement(handle_, sql);
    return statement.next() ? statement.number(0) : otherwise;
}

std::string Database::error() const
{
    return handle_ ? sqlite3_errmsg(handle_) : open_error_;
}

bool Database::damaged() const
{
    const int code = handle_ ? sqlite3_errcode(handle_) : SQLITE_OK;
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
}

bool Database::may_pass() const
{
    switch (handle_ ? sqlite3_errcode(handle_) & 0xFF : SQLITE_CANTOPEN) {
    case SQLITE_FULL:
    case SQLITE_IOERR:
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_NOMEM:
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN: return true;
    default: return false;
    }
}

int64_t Database::changed() const
{
    return handle_ ? sqlite3_changes64(handle_) : 0;
}

int64_t Database::last_row() const
{
    return handle_ ? sqlite3_last_insert_rowid(handle_) : 0;
}

} // namespace nvrec
