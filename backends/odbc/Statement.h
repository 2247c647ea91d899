// ODBC's handles with owners, and what they have to say about failures.
#pragma once

#include "backends/odbc/Text.h"

#include <string>
#include <utility>

namespace zel::odbc {

inline bool Succeeded(SQLRETURN code) {
    return code == SQL_SUCCESS || code == SQL_SUCCESS_WITH_INFO;
}

// A handle of one kind, freed by the destructor.
class Handle {
  public:
    Handle() = default;
    // Throws CMemoryException* when there is none to be had.
    Handle(SQLSMALLINT kind, SQLHANDLE parent);
    Handle(Handle&& other) noexcept : kind_(other.kind_), handle_(std::exchange(other.handle_, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(kind_, other.kind_);
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Handle();

    SQLHANDLE Get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }
    // What the last call on the handle reported; all of it, in the database's own words.
    std::string Diagnostics(long& number) const;
    // Throws CDaoException* with the report unless `code` means success.
    void Check(SQLRETURN code, const std::string& attempt, const std::string& subject) const;

  private:
    SQLSMALLINT kind_ = 0;
    SQLHANDLE handle_ = nullptr;
};

// A text attribute of a result's column, counted from 1; empty when the driver does not know.
std::string ColumnText(SQLHSTMT statement, SQLUSMALLINT column, SQLUSMALLINT field);
// A text of the current row, however long; false for null.
bool GetText(SQLHSTMT statement, SQLUSMALLINT column, std::string& text);

}  // namespace zel::odbc
