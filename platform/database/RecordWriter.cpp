#include "platform/database/RecordWriter.h"

#include <zel/platform/Dao.h>

#include <algorithm>

namespace zel {
namespace {

// A column of the table that is written to; null when there is not exactly one table.
const ColumnInfo* TableColumn(const Recordset& rows) {
    const ColumnInfo* found = nullptr;
    for (const ColumnInfo& column : rows.Columns()) {
        if (column.sourceTable.empty()) continue;
        if (found && (column.sourceTable != found->sourceTable || column.sourceSchema != found->sourceSchema))
            return nullptr;
        if (!found) found = &column;
    }
    return found;
}

const ColumnInfo& Table(const Recordset& rows) {
    const ColumnInfo* column = TableColumn(rows);
    if (!column)
        ThrowDatabaseError(CDaoException::readOnly, "change", "the record",
                           "the records do not come from exactly one table");
    return *column;
}

std::string TableName(Recordset& rows) {
    const ColumnInfo& column = Table(rows);
    const DatabaseConnection& connection = rows.Connection();
    return (column.sourceSchema.empty() ? "" : connection.Quoted(column.sourceSchema) + ".") +
           connection.Quoted(column.sourceTable);
}

int FindSource(const Recordset& rows, const std::string& name) {
    for (std::size_t i = 0; i < rows.Columns().size(); ++i) {
        if (rows.Columns()[i].sourceColumn == name) return static_cast<int>(i);
    }
    return -1;
}

bool IsComparable(const ColumnInfo& column) {
    return !column.sourceColumn.empty() && column.type != dbSingle && column.type != dbBinary &&
           column.type != dbLongBinary && column.type != dbMemo;
}

void ChooseKey(Recordset& rows) {
    if (rows.keyColumns) return;
    std::vector<int> key;
    for (const std::string& name : rows.Connection().PrimaryKey(Table(rows)))
        key.push_back(FindSource(rows, name));
    rows.hasPrimaryKey = !key.empty() && std::find(key.begin(), key.end(), -1) == key.end();
    if (!rows.hasPrimaryKey) {
        key.clear();
        for (std::size_t i = 0; i < rows.Columns().size(); ++i) {
            if (IsComparable(rows.Columns()[i])) key.push_back(static_cast<int>(i));
        }
    }
    rows.keyColumns = std::move(key);
}

// A command that grows together with the values of its question marks.
struct Command {
    std::string sql;
    std::vector<COleVariant> values;

    long Run(DatabaseConnection& connection) const { return connection.Execute(sql, values); }
};

void AppendCondition(Command& command, Recordset& rows) {
    const char* joint = " WHERE ";
    for (const int column : *rows.keyColumns) {
        COleVariant value;
        rows.ReadKey(column, value);
        command.sql +=
            joint + rows.Connection().Quoted(rows.Columns()[static_cast<std::size_t>(column)].sourceColumn);
        if (value.IsNull()) {
            command.sql += " IS NULL";
        } else {
            command.sql += " = ?";
            command.values.push_back(std::move(value));
        }
        joint = " AND ";
    }
}

// Without a primary key other records may look the same.
void CheckUnique(Recordset& rows, const char* attempt) {
    ChooseKey(rows);
    if (rows.hasPrimaryKey) return;
    Command count{"SELECT COUNT(*) FROM " + TableName(rows), {}};
    AppendCondition(count, rows);
    COleVariant same;
    const auto cursor = rows.Connection().Query(count.sql, count.values);
    if (cursor->Next()) cursor->Read(0, same);
    same.ChangeType(VT_I8);
    if (same.llVal > 1)
        ThrowDatabaseError(CDaoException::invalidOperation, attempt, "the record",
                           std::to_string(same.llVal) + " records of " + TableName(rows) +
                               " have these values, and the query does not deliver a primary key");
}

void CheckChanged(long count, const char* attempt) {
    if (count == 0)
        ThrowDatabaseError(CDaoException::recordChanged, attempt, "the record",
                           "it was changed or deleted since it was read");
}

}  // namespace

bool HasOneTable(const Recordset& rows) {
    return TableColumn(rows) != nullptr;
}

void UpdateRecord(Recordset& rows, const std::vector<COleVariant>& values, const std::vector<bool>& changed) {
    CheckUnique(rows, "update");
    Command command{"UPDATE " + TableName(rows) + " SET ", {}};
    const char* joint = "";
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!changed[i]) continue;
        command.sql += joint + rows.Connection().Quoted(rows.Columns()[i].sourceColumn) + " = ?";
        command.values.push_back(values[i]);
        joint = ", ";
    }
    if (command.values.empty()) return;
    AppendCondition(command, rows);
    CheckChanged(command.Run(rows.Connection()), "update");
}

void InsertRecord(Recordset& rows, const std::vector<COleVariant>& values, const std::vector<bool>& changed) {
    Command command{"INSERT INTO " + TableName(rows), {}};
    std::string names, marks;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!changed[i]) continue;
        names += (names.empty() ? "" : ", ") + rows.Connection().Quoted(rows.Columns()[i].sourceColumn);
        marks += marks.empty() ? "?" : ", ?";
        command.values.push_back(values[i]);
    }
    command.sql += names.empty() ? " DEFAULT VALUES" : " (" + names + ") VALUES (" + marks + ")";
    command.Run(rows.Connection());
}

void DeleteRecord(Recordset& rows) {
    CheckUnique(rows, "delete");
    Command command{"DELETE FROM " + TableName(rows), {}};
    AppendCondition(command, rows);
    CheckChanged(command.Run(rows.Connection()), "delete");
}

}  // namespace zel
