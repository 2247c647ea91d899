#include "backends/sqlite/Cursor.h"

#include "backends/sqlite/Columns.h"
#include "backends/sqlite/Values.h"

#include <zel/platform/Dao.h>

namespace zel::sqlite {

Cursor::Cursor(const Connection& connection, Statement statement, std::string subject)
    : connection_(connection), subject_(std::move(subject)), statement_(std::move(statement)) {
    hasRow_ = Step();
    stepped_ = true;
    columns_ = DescribeColumns(connection_.Handle(), statement_.get(), hasRow_);
}

bool Cursor::Step() {
    return IsRow(sqlite3_step(statement_.get()));
}

bool Cursor::IsRow(int code) {
    if (code == SQLITE_ROW) return true;
    if (code == SQLITE_DONE) return false;
    hasRow_ = false;
    connection_.Fail("read the records of", subject_);
}

bool Cursor::Next() {
    if (stepped_) {
        stepped_ = false;
    } else {
        hasRow_ = Step();
    }
    return hasRow_;
}

void Cursor::Read(int column, COleVariant& value) {
    ReadValue(statement_.get(), column, columns_[static_cast<std::size_t>(column)].type, value);
}

void Cursor::ReadKey(int column, COleVariant& value) {
    ReadStored(statement_.get(), column, value);
}

// Whole numbers become doubles as their conversion makes them.
bool Cursor::IsPlain(int column) const {
    const short type = columns_[static_cast<std::size_t>(column)].type;
    return !IsTranslated(type) && type != dbText && type != dbMemo;
}

std::size_t Cursor::ReadNumbers(int xColumn, int yColumn, std::vector<double>& xs, std::vector<double>& ys,
                                bool& ended) {
    ended = false;
    std::size_t count = 0;
    if (!IsPlain(xColumn) || !IsPlain(yColumn)) return count;
    sqlite3_stmt* row = statement_.get();
    const auto isNumber = [](sqlite3_value* value) {
        const int kind = sqlite3_value_type(value);
        return kind == SQLITE_FLOAT || kind == SQLITE_INTEGER;
    };
    // The values themselves are cheaper to ask than the row, and no other thread has the connection.
    for (int code = SQLITE_ROW; code == SQLITE_ROW; ++count) {
        sqlite3_value* x = sqlite3_column_value(row, xColumn);
        sqlite3_value* y = sqlite3_column_value(row, yColumn);
        if (!isNumber(x) || !isNumber(y)) return count;
        xs.push_back(sqlite3_value_double(x));
        ys.push_back(sqlite3_value_double(y));
        code = sqlite3_step(row);
        if (code != SQLITE_ROW) ended = !IsRow(code);
    }
    return count;
}

}  // namespace zel::sqlite
