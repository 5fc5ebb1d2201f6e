#include "platform/msg/detail/Sqlite.h"

#include <sqlite3.h>

namespace com_msg_mgr {

bool SqliteError::isBusy() const {
    return (code & 0xFF) == SQLITE_BUSY || (code & 0xFF) == SQLITE_LOCKED;
}

bool SqliteError::isForeign() const {
    return (code & 0xFF) == SQLITE_NOTADB;
}

bool SqliteError::isDamaged() const {
    return (code & 0xFF) == SQLITE_CORRUPT;
}

Sqlite::Sqlite(const std::string& path, bool create) {
    // Figures on SQLite's memory, which nobody asks for, cost a lock for each allocation.
    static const int configured = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    static_cast<void>(configured);
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | (create ? SQLITE_OPEN_CREATE : 0);
    if (sqlite3_open_v2(path.c_str(), &m_db, flags, nullptr) != SQLITE_OK) {
        const SqliteError error(sqlite3_extended_errcode(m_db), sqlite3_errmsg(m_db));
        sqlite3_close_v2(m_db);
        throw error;
    }
    sqlite3_extended_result_codes(m_db, 1);
    setPatience(std::chrono::milliseconds(500));
    // The file may come from anywhere: nothing in its schema is to run.
    sqlite3_db_config(m_db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(m_db, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(m_db, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
}

Sqlite::~Sqlite() {
    sqlite3_close_v2(m_db);
}

void Sqlite::fail() const {
    throw SqliteError(sqlite3_extended_errcode(m_db), sqlite3_errmsg(m_db));
}

void Sqlite::setPatience(std::chrono::milliseconds time) {
    sqlite3_busy_timeout(m_db, static_cast<int>(time.count()));
}

void Sqlite::run(const char* sql) {
    if (sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail();
}

std::string Sqlite::value(const char* sql) {
    Statement statement(*this, sql);
    return statement.step() ? std::string(statement.text(0)) : std::string();
}

Sqlite::Statement::Statement(Sqlite& db, const char* sql) : m_db(db) {
    if (sqlite3_prepare_v2(db.m_db, sql, -1, &m_statement, nullptr) != SQLITE_OK)
        db.fail();
}

Sqlite::Statement::~Statement() {
    sqlite3_finalize(m_statement);
}

void Sqlite::Statement::bind(int parameter, std::string_view text) {
    if (sqlite3_bind_text64(m_statement, parameter, text.data() ? text.data() : "", text.size(),
                            SQLITE_STATIC, SQLITE_UTF8) != SQLITE_OK)
        m_db.fail();
}

void Sqlite::Statement::bind(int parameter, std::int64_t number) {
    if (sqlite3_bind_int64(m_statement, parameter, number) != SQLITE_OK)
        m_db.fail();
}

bool Sqlite::Statement::step() {
    const int code = sqlite3_step(m_statement);
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        m_db.fail();
    return code == SQLITE_ROW;
}

void Sqlite::Statement::reset() {
    sqlite3_reset(m_statement);
}

int Sqlite::Statement::columns() const {
    return sqlite3_column_count(m_statement);
}

std::string_view Sqlite::Statement::text(int column) const {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(m_statement, column));
    return bytes
               ? std::string_view(bytes, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column)))
               : std::string_view();
}

std::int64_t Sqlite::Statement::number(int column) const {
    return sqlite3_column_int64(m_statement, column);
}

} // namespace com_msg_mgr
