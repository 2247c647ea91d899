// What a database back end implements, and where a program installs it.
#pragma once

#include <zel/platform/OleVariant.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace zel {

// Where a database is and how it is to be opened.
struct DatabaseAddress {
    std::string name;     // a file, or what the driver takes for a name
    std::string connect;  // "ODBC;DSN=weather;UID=me;PWD=secret"; empty: a file of the embedded database
    bool exclusive = false;
    bool readOnly = false;
    bool create = false;    // the file must not exist yet
    int loginTimeout = 20;  // seconds until a server that does not answer is given up
    int queryTimeout = 60;  // seconds, as SetQueryTimeout takes them
    int silenceLimit = 30;  // seconds, as SetSilenceLimit takes them

    // For messages: the name, or the connection without its passwords.
    std::string Shown() const;
};

// A connection string without the parts that are, or may hold, passwords.
std::string WithoutPasswords(const std::string& connect);
// A value in braces, as connection strings take it whatever characters it has.
std::string BracedForConnect(const std::string& value);

// A column of a result.
struct ColumnInfo {
    std::string name;
    short type = 0;       // dbText and so on
    long size = 0;        // bytes; characters of a text, 0 when it has no limit
    long attributes = 0;  // dbUpdatableField and so on
    // Where the values come from, as the database spells it; empty for what is computed.
    std::string sourceSchema;
    std::string sourceTable;
    std::string sourceColumn;
    bool required = false;
    bool described = false;    // by DatabaseConnection::Describe
    bool ownKeyValue = false;  // ReadKey answers something else than Read
    std::string defaultValue;  // as the database writes it
};

// Rows of a query, each seen once, from the first to the last.
class DatabaseCursor {
  public:
    virtual ~DatabaseCursor();
    virtual const std::vector<ColumnInfo>& Columns() const = 0;
    // Steps to the next row, at first to the first one; false behind the last. Throws CDaoException*.
    virtual bool Next() = 0;
    // The value of a column of the current row. Throws CDaoException*.
    virtual void Read(int column, COleVariant& value) = 0;
    // The value with which a condition finds the row again.
    virtual void ReadKey(int column, COleVariant& value);
    // The short way for series: appends the values of two columns, of the current row and of those that
    // follow, as long as both are numbers that Read would give as they are. Answers the number of rows that
    // were passed; the row behind them is the current one unless `ended` is set. The default passes none.
    virtual std::size_t ReadNumbers(int xColumn, int yColumn, std::vector<double>& xs,
                                    std::vector<double>& ys, bool& ended);
};

// An open database. Every failure is a CDaoException* with the database's own words. Closed by the
// destructor.
class DatabaseConnection {
  public:
    virtual ~DatabaseConnection();
    // Runs a query that delivers rows, with values for its question marks. A cursor must not outlive its
    // connection.
    virtual std::unique_ptr<DatabaseCursor> Query(const std::string& sql,
                                                  std::span<const COleVariant> values = {}) = 0;
    // Runs a command with values for its question marks; answers the number of rows that it changed. No
    // cursor that still has rows to deliver may be open. The command that ran last is kept ready for being
    // run again.
    virtual long Execute(const std::string& sql, std::span<const COleVariant> values) = 0;
    virtual void Begin() = 0;
    virtual void Commit() = 0;
    virtual void Rollback() = 0;
    // The columns of a table's primary key; none when it has no key.
    virtual std::vector<std::string> PrimaryKey(const ColumnInfo& column) = 0;
    // Fills in what costs a question of its own: `required`, `defaultValue`, dbAutoIncrField.
    virtual void Describe(ColumnInfo& column) = 0;
    virtual bool CanUpdate() const = 0;
    // Seconds that a query may wait for locks or, on a server, take at all; 0: without limit.
    virtual void SetQueryTimeout(int seconds) = 0;
    // Seconds for which a server that is being read may send nothing at all, beyond what the query may take;
    // 0: for ever. Where nothing comes over a network there is nothing to limit.
    virtual void SetSilenceLimit(int seconds);
    // Ends, from any thread, what is waited for now; it fails with a CDaoException*. A server's connection
    // cannot be used any more then.
    virtual void Cancel();
    // A name as SQL takes it whatever characters it has; double quotes by default.
    virtual std::string Quoted(const std::string& name) const;
    // What the database calls a type, for CREATE TABLE.
    virtual std::string TypeName(short type) const = 0;
};

// A kind of database.
class DatabaseDriver {
  public:
    virtual ~DatabaseDriver();
    // Whether the driver is the one for an address, by the part of `connect` before its first semicolon.
    virtual bool Accepts(const DatabaseAddress& address) const = 0;
    virtual std::unique_ptr<DatabaseConnection> Connect(const DatabaseAddress& address) = 0;
};

// Adds a driver to those that databases are opened with; the latest one that accepts an address wins. Call it
// before databases are opened and from one thread only.
void InstallDatabaseDriver(std::unique_ptr<DatabaseDriver> driver);
// Opens a database with the driver that accepts the address. Throws CDaoException* that names the missing
// back end when there is none.
std::unique_ptr<DatabaseConnection> Connect(const DatabaseAddress& address);

// Whether the part of `connect` before its first semicolon is `prefix`, in upper or lower case.
bool HasConnectPrefix(const std::string& connect, const char* prefix);

// Throws CDaoException* "Cannot <attempt> <subject>: <words>". `number` is the driver's own.
[[noreturn]] void ThrowDatabaseError(long number, const std::string& attempt, const std::string& subject,
                                     const std::string& words);
// A query in quotes for messages, cut where it is long.
std::string ShownQuery(const std::string& sql);

}  // namespace zel
