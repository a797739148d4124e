#include "store/sqlite_connection.hpp"

#include <sqlite3.h>

#include <cassert>
#include <cerrno>

namespace lumenote::store {

namespace {

StoreError errorOf(sqlite3* database, int code) {
    const int systemErrno = database != nullptr ? sqlite3_system_errno(database) : 0;
    if (database != nullptr && sqlite3_errcode(database) == code) {
        return StoreError{sqlite3_errmsg(database), storeErrorKind(code, systemErrno)};
    }
    return StoreError{sqlite3_errstr(code), storeErrorKind(code, systemErrno)};
}

}  // namespace

StoreErrorKind storeErrorKindOfSystemError(int systemErrno) {
    return systemErrno == ENOSPC || systemErrno == EDQUOT ? StoreErrorKind::full
                                                          : StoreErrorKind::other;
}

StoreErrorKind storeErrorKind(int code, int systemErrno) {
    switch (code & 0xff) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return StoreErrorKind::busy;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return StoreErrorKind::corrupt;
        case SQLITE_FULL:
            return StoreErrorKind::full;
        case SQLITE_IOERR:
            // A file that ends short of what its pages promise: its contents
            // are damaged, whatever the file system says.
            if (code == SQLITE_IOERR_CORRUPTFS) {
                return StoreErrorKind::corrupt;
            }
            return storeErrorKindOfSystemError(systemErrno);
        default:
            return StoreErrorKind::other;
    }
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(statement_);
}

void SqliteStatement::noteBindResult(int code) {
    if (code != SQLITE_OK && bindError_ == 0) {
        bindError_ = code;
    }
}

void SqliteStatement::bind(int index, double value) {
    noteBindResult(sqlite3_bind_double(statement_, index, value));
}

void SqliteStatement::bind(int index, long long value) {
    noteBindResult(sqlite3_bind_int64(statement_, index, value));
}

void SqliteStatement::bind(int index, bool value) {
    noteBindResult(sqlite3_bind_int(statement_, index, value ? 1 : 0));
}

void SqliteStatement::bind(int index, std::string_view text) {
    noteBindResult(sqlite3_bind_text64(statement_, index, text.data(), text.size(),
                                       SQLITE_TRANSIENT, SQLITE_UTF8));
}

void SqliteStatement::bind(int index, const Uuid& uuid) {
    const auto& bytes = uuid.bytes();
    noteBindResult(sqlite3_bind_blob(statement_, index, bytes.data(),
                                     static_cast<int>(bytes.size()), SQLITE_TRANSIENT));
}

void SqliteStatement::bind(int index, Date date) {
    bind(index, date.secondsSinceReferenceDate);
}

void SqliteStatement::bindNull(int index) {
    noteBindResult(sqlite3_bind_null(statement_, index));
}

Result<bool, StoreError> SqliteStatement::step() {
    if (bindError_ != 0) {
        const int code = bindError_;
        bindError_ = 0;
        return fail(StoreError{sqlite3_errstr(code), storeErrorKind(code)});
    }
    const int code = sqlite3_step(statement_);
    if (code == SQLITE_ROW) {
        return true;
    }
    if (code == SQLITE_DONE) {
        return false;
    }
    return fail(errorOf(database_, code));
}

Result<void, StoreError> SqliteStatement::run() {
    while (true) {
        auto row = step();
        if (!row) {
            return fail(row.error());
        }
        if (!*row) {
            return {};
        }
    }
}

void SqliteStatement::reset() {
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
    bindError_ = 0;
}

bool SqliteStatement::isNull(int column) const {
    return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

double SqliteStatement::doubleAt(int column) const {
    return sqlite3_column_double(statement_, column);
}

long long SqliteStatement::integerAt(int column) const {
    return sqlite3_column_int64(statement_, column);
}

std::string SqliteStatement::textAt(int column) const {
    // Reading the bytes before their count is the order SQLite documents.
    const auto* text = sqlite3_column_text(statement_, column);
    const int size = sqlite3_column_bytes(statement_, column);
    if (text == nullptr) {
        return {};
    }
    return std::string(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
}

Uuid SqliteStatement::uuidAt(int column) const {
    const void* blob = sqlite3_column_blob(statement_, column);
    const int size = sqlite3_column_bytes(statement_, column);
    return Uuid::fromBytes(blob, static_cast<std::size_t>(size)).value_or(Uuid{});
}

std::optional<double> SqliteStatement::optionalDoubleAt(int column) const {
    return isNull(column) ? std::nullopt : std::optional<double>(doubleAt(column));
}

std::optional<long long> SqliteStatement::optionalIntegerAt(int column) const {
    return isNull(column) ? std::nullopt : std::optional<long long>(integerAt(column));
}

std::optional<std::string> SqliteStatement::optionalTextAt(int column) const {
    return isNull(column) ? std::nullopt : std::optional<std::string>(textAt(column));
}

std::optional<Uuid> SqliteStatement::optionalUuidAt(int column) const {
    return isNull(column) ? std::nullopt : std::optional<Uuid>(uuidAt(column));
}

std::optional<Date> SqliteStatement::optionalDateAt(int column) const {
    return isNull(column) ? std::nullopt : std::optional<Date>(dateAt(column));
}

StatementLoan::StatementLoan(SqliteStatement& statement) : statement_(&statement) {
    assert(!statement.lent_);
    statement.lent_ = true;
}

StatementLoan::~StatementLoan() {
    if (statement_ != nullptr) {
        statement_->reset();
        statement_->lent_ = false;
    }
}

Result<std::unique_ptr<SqliteConnection>, StoreError> SqliteConnection::open(
    const std::string& path, SqliteOpenMode mode) {
    sqlite3* database = nullptr;
    const int access = mode == SqliteOpenMode::readOnly
                           ? SQLITE_OPEN_READONLY
                           : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    const int code =
        sqlite3_open_v2(path.c_str(), &database, access | SQLITE_OPEN_NOMUTEX, nullptr);
    if (code != SQLITE_OK) {
        StoreError error = errorOf(database, code);
        sqlite3_close_v2(database);
        return fail(std::move(error));
    }
    sqlite3_extended_result_codes(database, 1);
    return std::unique_ptr<SqliteConnection>(new SqliteConnection(database));
}

SqliteConnection::~SqliteConnection() {
    // Statements must be finalised before the connection closes.
    statements_.clear();
    sqlite3_close_v2(database_);
}

Result<void, StoreError> SqliteConnection::execute(std::string_view sql) {
    const std::string terminated(sql);
    const int code = sqlite3_exec(database_, terminated.c_str(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) {
        return fail(errorOf(database_, code));
    }
    return {};
}

Result<StatementLoan, StoreError> SqliteConnection::cached(const std::string& sql) {
    auto found = statements_.find(sql);
    if (found == statements_.end()) {
        sqlite3_stmt* statement = nullptr;
        const int code = sqlite3_prepare_v3(database_, sql.c_str(), static_cast<int>(sql.size()),
                                            SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
        if (code != SQLITE_OK) {
            return fail(errorOf(database_, code));
        }
        found =
            statements_.emplace(sql, std::make_unique<SqliteStatement>(database_, statement)).first;
    }
    return StatementLoan(*found->second);
}

Result<std::unique_ptr<SqliteStatement>, StoreError> SqliteConnection::prepare(
    std::string_view sql) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v3(database_, sql.data(), static_cast<int>(sql.size()), 0,
                                        &statement, nullptr);
    if (code != SQLITE_OK) {
        return fail(errorOf(database_, code));
    }
    return std::make_unique<SqliteStatement>(database_, statement);
}

Result<long long, StoreError> SqliteConnection::queryInteger(const std::string& sql) {
    auto statement = cached(sql);
    if (!statement) {
        return fail(statement.error());
    }
    auto row = (*statement)->step();
    if (!row) {
        return fail(row.error());
    }
    if (!*row) {
        return fail(StoreError{"query returned no row"});
    }
    return (*statement)->integerAt(0);
}

void SqliteConnection::setBusyTimeout(int milliseconds) {
    sqlite3_busy_timeout(database_, milliseconds);
}

long long SqliteConnection::changes() const {
    return sqlite3_changes64(database_);
}

StoreError SqliteConnection::lastError() const {
    return StoreError{sqlite3_errmsg(database_), storeErrorKind(sqlite3_extended_errcode(database_),
                                                                sqlite3_system_errno(database_))};
}

Result<SqliteTransaction, StoreError> SqliteTransaction::beginImmediate(
    SqliteConnection& connection) {
    if (auto begun = connection.execute("BEGIN IMMEDIATE"); !begun) {
        return fail(begun.error());
    }
    return SqliteTransaction(connection);
}

SqliteTransaction::~SqliteTransaction() {
    if (connection_ != nullptr) {
        // Some failures (a full disk, an I/O error) end the transaction by
        // themselves; the rollback then has nothing to undo and its error
        // says only that.
        (void)connection_->execute("ROLLBACK");
    }
}

Result<void, StoreError> SqliteTransaction::commit() {
    assert(connection_ != nullptr);
    auto committed = connection_->execute("COMMIT");
    if (committed) {
        connection_ = nullptr;
    }
    return committed;
}

}  // namespace lumenote::store
