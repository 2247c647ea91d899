// The rows of a query: passed on one by one, or held in memory.
#pragma once

#include <zel/platform/DatabaseDriver.h>

#include <optional>
#include <string>
#include <vector>

namespace zel {

// Reads forward from the database as long as nothing else is asked for. Hold() takes the current row and all
// that follow into memory; going back behind them runs the query again.
class Recordset {
  public:
    Recordset(DatabaseConnection& connection, std::string sql);

    DatabaseConnection& Connection() { return connection_; }
    const std::vector<ColumnInfo>& Columns() const { return columns_; }
    std::vector<ColumnInfo>& Columns() { return columns_; }

    bool IsBof() const { return empty_ || place_ == Place::BEFORE; }
    bool IsEof() const { return empty_ || place_ == Place::BEHIND; }
    bool IsOnRow() const { return place_ == Place::ON; }
    bool IsDeleted() const { return held_ && IsOnRow() && deleted_[Index()]; }
    long Position() const { return position_; }
    long Visited() const { return visited_; }

    // Each goes to a row, before the first or behind the last.
    void First();
    void Last();
    void Next();
    void Prev();

    // Of the current row, which must be there.
    void Read(int column, COleVariant& value) {
        if (held_) {
            value = cells_[Index() * stride_ + static_cast<std::size_t>(column)];
        } else {
            cursor_->Read(column, value);
        }
    }
    void ReadKey(int column, COleVariant& value);
    // See DatabaseCursor::ReadNumbers; held rows are not passed.
    void ReadNumbers(int xColumn, int yColumn, std::vector<double>& xs, std::vector<double>& ys);

    void Hold();
    // The current row, which must be held, has new values or is gone.
    void Replace(const std::vector<COleVariant>& values);
    void MarkDeleted();
    // The query has rows that it had not when it ran.
    void NoteAdded() { added_ = true; }

    // The columns that find a row again, known from the first change on.
    std::optional<std::vector<int>> keyColumns;
    bool hasPrimaryKey = false;

  private:
    enum class Place { BEFORE, ON, BEHIND };

    void End();
    std::size_t Index() const { return static_cast<std::size_t>(position_ - heldFrom_); }
    long HeldEnd() const { return heldFrom_ + static_cast<long>(deleted_.size()); }
    void Restart();
    void TakeRow();
    void DropHeld();
    void GoTo(long position);
    // The next row from `position` on in a direction that is not deleted: ON it, BEFORE or BEHIND.
    void Settle(long position, int direction);

    DatabaseConnection& connection_;
    std::string sql_;
    std::unique_ptr<DatabaseCursor> cursor_;  // null when all rows were delivered
    std::vector<ColumnInfo> columns_;
    std::vector<int> ownKeys_;  // columns whose key values are held behind the values
    std::size_t stride_ = 0;

    Place place_ = Place::BEHIND;
    bool empty_ = false;
    bool added_ = false;
    long position_ = -1;
    long visited_ = 0;

    bool held_ = false;
    long heldFrom_ = 0;  // the position of the first held row
    std::vector<COleVariant> cells_;
    std::vector<bool> deleted_;  // one for each held row
};

}  // namespace zel
