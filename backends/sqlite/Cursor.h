// The rows of a statement, stepped forward.
#pragma once

#include "backends/sqlite/Connection.h"

namespace zel::sqlite {

class Cursor : public DatabaseCursor {
  public:
    // Takes the first step; a failure is thrown with the query in it.
    Cursor(const Connection& connection, Statement statement, std::string subject);

    const std::vector<ColumnInfo>& Columns() const override { return columns_; }
    bool Next() override;
    void Read(int column, COleVariant& value) override;
    void ReadKey(int column, COleVariant& value) override;
    std::size_t ReadNumbers(int xColumn, int yColumn, std::vector<double>& xs, std::vector<double>& ys,
                            bool& ended) override;

  private:
    bool Step();
    // What a step's result means; a failure is thrown.
    bool IsRow(int code);
    bool IsPlain(int column) const;

    const Connection& connection_;
    std::string subject_;
    Statement statement_;
    std::vector<ColumnInfo> columns_;
    bool stepped_ = false;  // the first step was taken and not yet asked for
    bool hasRow_ = false;
};

}  // namespace zel::sqlite
