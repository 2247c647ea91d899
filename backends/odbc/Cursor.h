// The rows of a statement.
#pragma once

#include "backends/odbc/Columns.h"
#include "backends/odbc/Lifeline.h"

#include <zel/platform/DatabaseDriver.h>

#include <array>
#include <memory>

namespace zel::odbc {

// Numbers and dates are fetched in blocks of rows. A result with texts or binary data, whose length is not
// known before, is fetched row by row.
class Cursor : public DatabaseCursor {
  public:
    // `statement` has run and delivers `columns`; `turn` is held as long as it is read.
    Cursor(Handle statement, std::vector<Column> columns, std::string subject, Lifeline& lifeline,
           std::shared_ptr<void> turn);
    ~Cursor() override;

    const std::vector<ColumnInfo>& Columns() const override { return infos_; }
    bool Next() override;
    void Read(int column, COleVariant& value) override;
    std::size_t ReadNumbers(int xColumn, int yColumn, std::vector<double>& xs, std::vector<double>& ys,
                            bool& ended) override;

  private:
    // A column's values of one block.
    struct Bound {
        std::vector<double> numbers;
        std::vector<SQLBIGINT> integers;
        std::vector<unsigned char> bits;
        std::vector<std::array<char, 48>> moments;
        std::vector<SQLLEN> lengths;
    };

    bool Fetch();
    void Check(SQLRETURN code) const;
    void BindBlock();
    void BindColumn(std::size_t column);
    void ReadBound(std::size_t column, COleVariant& value) const;
    void ReadLong(std::size_t column, COleVariant& value);

    std::string subject_;
    std::vector<Column> columns_;
    std::vector<ColumnInfo> infos_;
    std::size_t blockSize_ = 1;
    std::size_t row_ = 0;  // in the block
    SQLULEN fetched_ = 0;  // rows of the block
    bool inBlocks_;
    std::vector<Bound> bound_;
    std::vector<COleVariant> longs_;  // what was read of the current row: drivers deliver a value once
    std::vector<bool> longRead_;
    Lifeline& lifeline_;
    std::shared_ptr<void> turn_;
    Handle statement_;  // freed before what it writes to
};

}  // namespace zel::odbc
