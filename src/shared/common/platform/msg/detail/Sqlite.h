#pragma once

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace com_msg_mgr {

/// What SQLite says went wrong, in words that can follow a colon.
struct SqliteError : std::runtime_error {
    SqliteError(int resultCode, const std::string& what) : std::runtime_error(what), code(resultCode) {}
    bool isBusy() const;
    /// Whether the file is no SQLite database at all.
    bool isForeign() const;
    bool isDamaged() const;
    int code;
};

/// A connection to an SQLite file. One thread at a time. Everything that fails throws SqliteError.
class Sqlite {
public:
    /// Opens an existing file, or with `create` makes one. Writes only if the file permits it.
    explicit Sqlite(const std::string& path, bool create = false);
    ~Sqlite();
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;

    /// How long another program may hold a lock before that is an error; half a second at first.
    void setPatience(std::chrono::milliseconds time);
    /// Runs statements that have no result.
    void run(const char* sql);
    /// The first column of the first row; empty without a row.
    std::string value(const char* sql);

    /// A prepared statement; it must not outlive the connection.
    class Statement {
    public:
        Statement(Sqlite& db, const char* sql);
        ~Statement();
        Statement(const Statement&) = delete;
        Statement& operator=(const Statement&) = delete;

        /// Parameters count from 1. The text must live until the next step().
        void bind(int parameter, std::string_view text);
        void bind(int parameter, std::int64_t number);
        /// Goes to the next row; false behind the last one.
        bool step();
        void reset();
        int columns() const;
        /// Columns count from 0. The text is valid until the next step().
        std::string_view text(int column) const;
        std::int64_t number(int column) const;

    private:
        Sqlite& m_db;
        sqlite3_stmt* m_statement = nullptr;
    };

private:
    [[noreturn]] void fail() const;

    sqlite3* m_db = nullptr;
};

} // namespace com_msg_mgr
