#include "backends/sqlite/Cursor.h"

#include "backends/sqlite/Columns.h"
#include "backends/sqlite/Values.h"

namespace zel::sqlite {

Cursor::Cursor(const Connection& connection, Statement statement, std::string subject)
    : connection_(connection), subject_(std::move(subject)), statement_(std::move(statement)) {
    hasRow_ = Step();
    stepped_ = true;
    columns_ = DescribeColumns(connection_.Handle(), statement_.get(), hasRow_);
}

bool Cursor::Step() {
    const int code = sqlite3_step(statement_.get());
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

}  // namespace zel::sqlite
