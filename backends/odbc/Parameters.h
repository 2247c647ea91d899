// Values for the question marks of a command.
#pragma once

#include "backends/odbc/Statement.h"

#include <zel/platform/OleVariant.h>

#include <memory>
#include <span>
#include <vector>

namespace zel::odbc {

// Holds values in the form in which they are bound, until the command has run.
class Parameters {
  public:
    // Binds all values to a prepared statement. Throws CDaoException*.
    void Bind(const Handle& statement, std::span<const COleVariant> values, const std::string& subject);

  private:
    struct Bound {
        SQLSMALLINT kind = SQL_C_CHAR;
        SQLSMALLINT type = SQL_VARCHAR;
        SQLULEN size = 1;
        SQLSMALLINT digits = 0;
        SQLLEN length = SQL_NULL_DATA;
        SQLBIGINT integer = 0;
        unsigned char bit = 0;
        SQL_TIMESTAMP_STRUCT moment{};
        std::vector<SQLWCHAR> wide;
        std::string bytes;
        void* data = nullptr;
    };

    static void Take(Bound& bound, const COleVariant& value);

    std::vector<std::unique_ptr<Bound>> bound_;  // at places that do not move
};

}  // namespace zel::odbc
