#include "backends/odbc/Connection.h"

#include "backends/odbc/Commands.h"
#include "backends/odbc/ConnectionString.h"
#include "backends/odbc/Cursor.h"

#include <zel/platform/Dao.h>

#include <algorithm>
#include <array>
#include <map>

namespace zel::odbc {
namespace {

SQLPOINTER AsPointer(SQLULEN value) {
    return reinterpret_cast<SQLPOINTER>(value);  // how ODBC passes numbers
}

SQLWCHAR* OrNull(std::vector<SQLWCHAR>& text) {
    return text.size() > 1 ? text.data() : nullptr;
}

}  // namespace

Connection::Connection(SQLHENV environment, const DatabaseAddress& address)
    : address_(address),
      timeout_(address.queryTimeout),
      lifeline_(address.silenceLimit),
      connection_(SQL_HANDLE_DBC, environment) {
    if (address.create)
        ThrowDatabaseError(CDaoException::invalidOperation, "create", "the database " + SourceName(address),
                           "databases on servers are made there");
    SQLHDBC handle = connection_.Get();
    SQLSetConnectAttr(handle, SQL_ATTR_LOGIN_TIMEOUT, AsPointer(static_cast<SQLULEN>(address.loginTimeout)),
                      0);
    if (address.readOnly) SQLSetConnectAttr(handle, SQL_ATTR_ACCESS_MODE, AsPointer(SQL_MODE_READ_ONLY), 0);
    std::vector<SQLWCHAR> settings = ToWide(DriverString(address));
    lifeline_.Follow([&] {
        connection_.Check(SQLDriverConnectW(handle, nullptr, settings.data(), SQL_NTS, nullptr, 0, nullptr,
                                            SQL_DRIVER_NOPROMPT),
                          "open", "the database " + SourceName(address));
    });
    const std::string quote = InfoText(SQL_IDENTIFIER_QUOTE_CHAR);
    if (quote.size() == 1 && quote != " ") quote_ = quote;
    if (address.readOnly && InfoText(SQL_DBMS_NAME) == "PostgreSQL") Guard();
}

Connection::~Connection() {
    last_ = Handle();
    if (inTransaction_) Roll(SQL_ROLLBACK);
}

SQLRETURN Connection::Roll(SQLSMALLINT how) {
    const Lifeline::Watch watch(lifeline_, AnswerTime());
    return SQLEndTran(SQL_HANDLE_DBC, connection_.Get(), how);
}

// Every transaction of the session cannot change anything from now on, by itself.
void Connection::Guard() {
    std::vector<SQLWCHAR> command =
        ToWide("SELECT pg_catalog.set_config('default_transaction_read_only', 'on', false)");
    {
        const Handle statement = NewStatement();
        const Lifeline::Watch watch(lifeline_, AnswerTime());
        statement.Check(SQLExecDirectW(statement.Get(), command.data(), SQL_NTS), "open",
                        "the database " + SourceName(address_));
    }
    SetAutoCommit(false);
    guarded_ = true;
}

// The transaction of what is read now. It is rolled back: what a foreign condition calls leaves no trace that
// would free the next one.
std::shared_ptr<void> Connection::Reading() {
    if (!guarded_) return nullptr;
    std::shared_ptr<void> turn = reading_.lock();
    if (turn) return turn;
    turn = std::shared_ptr<void>(this, [this](void*) {
        if (!inTransaction_) Roll(SQL_ROLLBACK);
    });
    reading_ = turn;
    return turn;
}

void Connection::Check(const Handle& statement, SQLRETURN code, const std::string& attempt,
                       const std::string& subject) const {
    if (!Succeeded(code) && code != SQL_NO_DATA) lifeline_.ThrowIfCut(attempt, subject);
    statement.Check(code, attempt, subject);
}

std::string Connection::OnSource() const {
    return " on " + SourceName(address_);
}

std::string Connection::InfoText(SQLUSMALLINT what) const {
    std::array<SQLWCHAR, 64> text{};
    if (!Succeeded(SQLGetInfoW(connection_.Get(), what, text.data(), static_cast<SQLSMALLINT>(sizeof text),
                               nullptr)))
        return {};
    return FromWide(text.data(), static_cast<std::size_t>(std::find(text.begin(), text.end(), SQLWCHAR{0}) -
                                                          text.begin()));
}

std::string Connection::Quoted(const std::string& name) const {
    std::string quoted = quote_;
    for (const char c : name) quoted += c == quote_[0] ? quote_ + quote_ : std::string(1, c);
    return quoted + quote_;
}

void Connection::SetQueryTimeout(int seconds) {
    timeout_ = seconds;
    last_ = Handle();  // has the former time
}

Handle Connection::NewStatement() const {
    Handle statement(SQL_HANDLE_STMT, connection_.Get());
    SQLSetStmtAttr(statement.Get(), SQL_ATTR_QUERY_TIMEOUT, AsPointer(static_cast<SQLULEN>(timeout_)), 0);
    return statement;
}

std::unique_ptr<DatabaseCursor> Connection::Query(const std::string& sql,
                                                  std::span<const COleVariant> values) {
    const std::string subject = "the query " + ShownQuery(sql) + OnSource();
    const auto refuse = [&](const char* why) {
        ThrowDatabaseError(CDaoException::invalidArgument, "run", subject, why);
    };
    if (MayHaveSecondCommand(sql)) refuse("more than one command stands in it");
    std::shared_ptr<void> turn = Reading();
    Handle statement = NewStatement();
    std::vector<SQLWCHAR> text = ToWide(sql + "\n");  // drivers write behind it, and it may end in a comment
    const Lifeline::Watch watch(lifeline_, AnswerTime());
    if (values.empty()) {
        Check(statement, SQLExecDirectW(statement.Get(), text.data(), SQL_NTS), "run", subject);
    } else {
        Check(statement, SQLPrepareW(statement.Get(), text.data(), SQL_NTS), "run", subject);
        Parameters parameters;
        parameters.Bind(statement, values, subject);
        Check(statement, SQLExecute(statement.Get()), "run", subject);
        SQLFreeStmt(statement.Get(), SQL_RESET_PARAMS);
    }
    std::vector<Column> columns = DescribeColumns(statement, subject);
    if (columns.empty()) refuse("it delivers no records");
    return std::make_unique<Cursor>(std::move(statement), std::move(columns), subject, lifeline_,
                                    std::move(turn));
}

long Connection::Execute(const std::string& sql, std::span<const COleVariant> values) {
    const std::string subject = "the command " + ShownQuery(sql) + OnSource();
    if (address_.readOnly)
        ThrowDatabaseError(CDaoException::readOnly, "run", subject,
                           "the database was opened for reading only");
    std::vector<SQLWCHAR> text = ToWide(sql);
    SQLLEN rows = 0;
    const Lifeline::Watch watch(lifeline_, AnswerTime());
    if (values.empty()) {
        const Handle statement = NewStatement();
        Check(statement, SQLExecDirectW(statement.Get(), text.data(), SQL_NTS), "run", subject);
        SQLRowCount(statement.Get(), &rows);
        return std::max<long>(rows, 0);
    }
    if (!last_ || lastSql_ != sql) {
        lastSql_.clear();
        last_ = NewStatement();
        Check(last_, SQLPrepareW(last_.Get(), text.data(), SQL_NTS), "run", subject);
        lastSql_ = sql;
    }
    Parameters parameters;
    parameters.Bind(last_, values, subject);
    Check(last_, SQLExecute(last_.Get()), "run", subject);
    SQLRowCount(last_.Get(), &rows);
    SQLFreeStmt(last_.Get(), SQL_CLOSE);
    SQLFreeStmt(last_.Get(), SQL_RESET_PARAMS);
    return std::max<long>(rows, 0);
}

void Connection::SetAutoCommit(bool on) {
    connection_.Check(SQLSetConnectAttr(connection_.Get(), SQL_ATTR_AUTOCOMMIT,
                                        AsPointer(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF), 0),
                      "begin a transaction", "in " + SourceName(address_));
}

void Connection::Begin() {
    if (inTransaction_)
        ThrowDatabaseError(CDaoException::invalidOperation, "begin a transaction",
                           "in " + SourceName(address_), "one has begun already");
    if (!guarded_) SetAutoCommit(false);
    inTransaction_ = true;
}

void Connection::End(SQLSMALLINT how, const char* attempt) {
    const std::string subject = "a transaction in " + SourceName(address_);
    if (!inTransaction_)
        ThrowDatabaseError(CDaoException::invalidOperation, attempt, subject, "none has begun");
    Check(connection_, Roll(guarded_ ? SQL_ROLLBACK : how), attempt, subject);
    if (!guarded_) SetAutoCommit(true);
    inTransaction_ = false;
}

std::vector<std::string> Connection::PrimaryKey(const ColumnInfo& column) {
    const std::shared_ptr<void> turn = Reading();
    const Lifeline::Watch watch(lifeline_, AnswerTime());
    const Handle statement = NewStatement();
    std::vector<SQLWCHAR> schema = ToWide(column.sourceSchema), table = ToWide(column.sourceTable);
    statement.Check(
        SQLPrimaryKeysW(statement.Get(), nullptr, 0, OrNull(schema), SQL_NTS, table.data(), SQL_NTS),
        "find the primary key of", column.sourceTable + OnSource());
    std::map<int, std::string> byPlace;
    while (Succeeded(SQLFetch(statement.Get()))) {
        std::string name;
        GetText(statement.Get(), 4, name);
        SQLINTEGER place = 0;
        SQLLEN length = 0;
        SQLGetData(statement.Get(), 5, SQL_C_SLONG, &place, 0, &length);
        byPlace[place] = name;
    }
    std::vector<std::string> names;
    names.reserve(byPlace.size());
    for (const auto& [place, name] : byPlace) names.push_back(name);
    return names;
}

void Connection::Describe(ColumnInfo& column) {
    if (column.sourceColumn.empty()) return;
    const std::shared_ptr<void> turn = Reading();
    const Lifeline::Watch watch(lifeline_, AnswerTime());
    const Handle statement = NewStatement();
    std::vector<SQLWCHAR> schema = ToWide(column.sourceSchema), table = ToWide(column.sourceTable),
                          name = ToWide(column.sourceColumn);
    statement.Check(SQLColumnsW(statement.Get(), nullptr, 0, OrNull(schema), SQL_NTS, table.data(), SQL_NTS,
                                name.data(), SQL_NTS),
                    "describe", column.sourceTable + OnSource());
    while (Succeeded(SQLFetch(statement.Get()))) {
        // Names are patterns here, in which an underscore stands for any character.
        std::string ofTable, ofColumn;
        GetText(statement.Get(), 3, ofTable);
        GetText(statement.Get(), 4, ofColumn);
        if (ofTable != column.sourceTable || ofColumn != column.sourceColumn) continue;
        SQLSMALLINT nullable = SQL_NULLABLE_UNKNOWN;
        SQLLEN length = 0;
        SQLGetData(statement.Get(), 11, SQL_C_SSHORT, &nullable, 0, &length);
        column.required = nullable == SQL_NO_NULLS;
        GetText(statement.Get(), 13, column.defaultValue);
        break;
    }
    if (column.defaultValue.starts_with("nextval(")) column.attributes |= dbAutoIncrField;
}

std::string Connection::TypeName(short type) const {
    switch (type) {
        case dbBoolean:
            return "BOOLEAN";
        case dbByte:
        case dbInteger:
            return "SMALLINT";
        case dbLong:
            return "INTEGER";
        case dbBigInt:
            return "BIGINT";
        case dbCurrency:
            return "DECIMAL(19,4)";
        case dbSingle:
            return "REAL";
        case dbDouble:
        case dbDecimal:
            return "DOUBLE PRECISION";
        case dbDate:
            return "TIMESTAMP";
        case dbBinary:
        case dbLongBinary:
            return "BYTEA";
        default:
            return "VARCHAR(4000)";
    }
}

}  // namespace zel::odbc
