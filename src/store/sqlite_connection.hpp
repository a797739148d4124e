// A thin owner of one SQLite connection and its prepared statements, turning
// SQLite's status codes into StoreError values.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/uuid.hpp"
#include "recording/recording_store.hpp"

struct sqlite3;
struct sqlite3_stmt;

namespace lumenote::store {

// The kind of a failure with SQLite result code `code` (primary or extended).
// `systemErrno` is the OS error of the I/O call that failed, if any: it tells
// a full disk or quota behind a plain I/O error (a failed fsync or growth of
// the shared-memory file reports SQLITE_IOERR, not SQLITE_FULL).
StoreErrorKind storeErrorKind(int code, int systemErrno = 0);
// The kind of a failed file call of the store's own (ENOSPC, EDQUOT: full).
StoreErrorKind storeErrorKindOfSystemError(int systemErrno);

// One prepared statement. Parameters are numbered from 1, result columns from
// 0, as in SQLite. A failed bind (a text too large, no memory) is remembered
// and reported by the next step(), so that binding code stays a flat list.
class SqliteStatement {
  public:
    SqliteStatement(sqlite3* database, sqlite3_stmt* statement)
        : database_(database), statement_(statement) {}
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    void bind(int index, double value);
    void bind(int index, long long value);
    void bind(int index, bool value);
    void bind(int index, std::string_view text);
    // A literal would otherwise bind as a bool.
    void bind(int index, const char* text) = delete;
    void bind(int index, const Uuid& uuid);  // as its 16 bytes
    void bind(int index, Date date);         // seconds since the reference epoch
    void bindNull(int index);
    template <typename T>
    void bind(int index, const std::optional<T>& value) {
        if (value) {
            bind(index, *value);
        } else {
            bindNull(index);
        }
    }

    // Runs the statement one step: true when a row is ready, false when done.
    Result<bool, StoreError> step();
    // Steps until done, for statements that return no rows.
    Result<void, StoreError> run();
    // Makes the statement ready for new bindings and ends any read it holds.
    void reset();

    bool isNull(int column) const;
    double doubleAt(int column) const;
    long long integerAt(int column) const;
    bool boolAt(int column) const { return integerAt(column) != 0; }
    // The column's bytes as stored; a NULL reads as "".
    std::string textAt(int column) const;
    // A BLOB of other than 16 bytes (or NULL) reads as the nil UUID.
    Uuid uuidAt(int column) const;
    Date dateAt(int column) const { return Date{doubleAt(column)}; }
    std::optional<double> optionalDoubleAt(int column) const;
    std::optional<long long> optionalIntegerAt(int column) const;
    std::optional<std::string> optionalTextAt(int column) const;
    std::optional<Uuid> optionalUuidAt(int column) const;
    std::optional<Date> optionalDateAt(int column) const;

  private:
    friend class StatementLoan;
    void noteBindResult(int code);

    sqlite3* database_;
    sqlite3_stmt* statement_;
    int bindError_ = 0;
    bool lent_ = false;  // a cached statement is never lent twice at once
};

// A cached statement on loan: reset (and its bindings cleared) when the loan
// ends, so that no finished or abandoned query keeps a read open.
class StatementLoan {
  public:
    explicit StatementLoan(SqliteStatement& statement);
    ~StatementLoan();
    StatementLoan(StatementLoan&& other) noexcept : statement_(other.statement_) {
        other.statement_ = nullptr;
    }
    StatementLoan(const StatementLoan&) = delete;
    StatementLoan& operator=(const StatementLoan&) = delete;
    StatementLoan& operator=(StatementLoan&&) = delete;

    SqliteStatement& operator*() const { return *statement_; }
    SqliteStatement* operator->() const { return statement_; }

  private:
    SqliteStatement* statement_;
};

// How a connection opens its file.
enum class SqliteOpenMode {
    readWriteCreate,  // read and write, creating the file when absent
    readOnly          // read only; a missing file fails to open
};

class SqliteConnection {
  public:
    // Opens the database at `path` in `mode`; ":memory:" gives a private
    // in-memory database.
    static Result<std::unique_ptr<SqliteConnection>, StoreError> open(
        const std::string& path, SqliteOpenMode mode = SqliteOpenMode::readWriteCreate);
    ~SqliteConnection();
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    // Runs one or more statements that return no rows.
    Result<void, StoreError> execute(std::string_view sql);
    // The statement for `sql`, prepared on first use and kept for the life of
    // the connection: the hot paths (segment and session upserts) are parsed
    // once.
    Result<StatementLoan, StoreError> cached(const std::string& sql);
    // A statement for `sql` owned by the caller and finalised when it ends
    // (before the connection ends). Unlike cached ones, any number may be
    // active at once, so a long read stays open while other calls run.
    Result<std::unique_ptr<SqliteStatement>, StoreError> prepare(std::string_view sql);
    // Runs a query whose first row's first column is an integer.
    Result<long long, StoreError> queryInteger(const std::string& sql);
    // Sets how long a statement waits for another connection's lock, in
    // milliseconds, before failing with "database is locked".
    void setBusyTimeout(int milliseconds);
    // Rows changed by the most recent INSERT, UPDATE or DELETE.
    long long changes() const;
    // The connection's most recent error, with its kind.
    StoreError lastError() const;

  private:
    explicit SqliteConnection(sqlite3* database) : database_(database) {}

    sqlite3* database_;
    std::unordered_map<std::string, std::unique_ptr<SqliteStatement>> statements_;
};

// An open transaction, rolled back when it goes out of scope uncommitted.
class SqliteTransaction {
  public:
    // BEGIN IMMEDIATE takes the write lock at once (waiting up to the busy
    // timeout), so that a transaction never fails halfway for want of it.
    static Result<SqliteTransaction, StoreError> beginImmediate(SqliteConnection& connection);
    ~SqliteTransaction();
    SqliteTransaction(SqliteTransaction&& other) noexcept : connection_(other.connection_) {
        other.connection_ = nullptr;
    }
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(SqliteTransaction&&) = delete;

    // On failure the transaction is rolled back when this object ends.
    Result<void, StoreError> commit();

  private:
    explicit SqliteTransaction(SqliteConnection& connection) : connection_(&connection) {}

    SqliteConnection* connection_;  // null once committed or moved from
};

}  // namespace lumenote::store
