// Databases and their recordsets.
#pragma once

#include <zel/platform/Object.h>
#include <zel/platform/OleVariant.h>

#include <memory>
#include <span>
#include <vector>

namespace zel {
class DatabaseConnection;
class Recordset;
}  // namespace zel

// Kinds of fields.
inline constexpr short dbBoolean = 1;
inline constexpr short dbByte = 2;
inline constexpr short dbInteger = 3;
inline constexpr short dbLong = 4;
inline constexpr short dbCurrency = 5;
inline constexpr short dbSingle = 6;
inline constexpr short dbDouble = 7;
inline constexpr short dbDate = 8;
inline constexpr short dbBinary = 9;
inline constexpr short dbText = 10;
inline constexpr short dbLongBinary = 11;
inline constexpr short dbMemo = 12;
inline constexpr short dbGUID = 15;
inline constexpr short dbBigInt = 16;
inline constexpr short dbDecimal = 20;

// Attributes of fields.
inline constexpr LONG dbFixedField = 0x1;
inline constexpr LONG dbVariableField = 0x2;
inline constexpr LONG dbAutoIncrField = 0x10;
inline constexpr LONG dbUpdatableField = 0x20;

// Kinds of recordsets.
inline constexpr int AFX_DAO_USE_DEFAULT_TYPE = -1;  // a dynaset
inline constexpr int dbOpenTable = 1;                // the name of a table instead of a query
inline constexpr int dbOpenDynaset = 2;
inline constexpr int dbOpenSnapshot = 4;  // cannot be changed
inline constexpr int dbOpenForwardOnly = 8;

// Options of recordsets; others are taken and mean nothing here.
inline constexpr int dbReadOnly = 0x4;
inline constexpr int dbForwardOnly = 0x100;

// Edit modes.
inline constexpr short dbEditNone = 0;
inline constexpr short dbEditInProgress = 1;
inline constexpr short dbEditAdd = 2;

// How much GetFieldInfo tells.
inline constexpr DWORD AFX_DAO_PRIMARY_INFO = 1;
inline constexpr DWORD AFX_DAO_SECONDARY_INFO = 2;
inline constexpr DWORD AFX_DAO_ALL_INFO = 4;

// What a database had to say.
struct CDaoErrorInfo {
    LONG m_lErrorCode = 0;
    CString m_strSource;       // where it happened
    CString m_strDescription;  // the database's own words
};

class CDaoException : public CException {
    DECLARE_DYNAMIC(CDaoException)
  public:
    // Codes of errors that the recordset itself finds; others are the database's own.
    enum : LONG {
        invalidArgument = 3001,
        updateWithoutEdit = 3020,
        noCurrentRecord = 3021,
        readOnly = 3027,
        fieldTooSmall = 3163,
        fieldNotUpdatable = 3164,
        recordDeleted = 3167,
        recordChanged = 3197,
        invalidOperation = 3219,
        itemNotFound = 3265,
        objectClosed = 3420,
        conversion = 3421,
    };

    CDaoException(LONG code, const char* source, const char* description, const char* message);
    short GetErrorCount() const { return 1; }

    CDaoErrorInfo* m_pErrorInfo = &info_;  // owned by the exception
    SCODE m_scode;

  private:
    CDaoErrorInfo info_;
};

struct CDaoFieldInfo {
    // Primary
    CString m_strName;
    short m_nType = 0;
    LONG m_lSize = 0;  // bytes, characters of a text; 0 when it has no limit
    LONG m_lAttributes = 0;
    // Secondary
    short m_nOrdinalPosition = 0;
    BOOL m_bRequired = FALSE;
    BOOL m_bAllowZeroLength = FALSE;
    CString m_strSourceField;  // empty for what is computed
    CString m_strSourceTable;
    // All
    CString m_strDefaultValue;  // as the database writes it
};

// A database that the installed drivers can open (see DatabaseDriver.h). Closing it, or destroying it, closes
// its recordsets. Failures throw CDaoException*.
class CDaoDatabase : public CObject {
    DECLARE_DYNAMIC(CDaoDatabase)
  public:
    CDaoDatabase();
    CDaoDatabase(const CDaoDatabase&) = delete;
    CDaoDatabase& operator=(const CDaoDatabase&) = delete;
    ~CDaoDatabase() override;

    // Opens a file of the embedded database by its `name`, or what `connect` says: "ODBC;DSN=weather;UID=me".
    // Nothing is written, and no file is made, before the first command that changes something.
    virtual void Open(const char* name, BOOL exclusive = FALSE, BOOL readOnly = FALSE,
                      const char* connect = "");
    // Makes a new file of the embedded database, which must not exist yet, and opens it.
    virtual void Create(const char* name);
    virtual void Close();

    BOOL IsOpen() const { return connection_ != nullptr; }
    BOOL CanUpdate() const;
    BOOL CanTransact() const { return TRUE; }
    CString GetName() const { return name_; }
    // As given to Open, without passwords.
    CString GetConnect() const;

    // Seconds that a command or query may wait for locks or, on a server, take at all; 60 until changed, 0:
    // no limit.
    short GetQueryTimeout() const { return queryTimeout_; }
    void SetQueryTimeout(short seconds);
    // Seconds that Open waits for a server; 20 until changed.
    void SetLoginTimeout(short seconds) { loginTimeout_ = seconds; }

    // Seconds for which a server may send nothing at all while its rows are read, and beyond the time of a
    // query before the first one; 30 until changed, 0: for ever. What was waited for fails then, and the
    // database has to be opened anew.
    void SetSilenceLimit(short seconds);
    // Ends what another thread waits for in this database, in the same way.
    void Cancel();

    // Runs a command that delivers no rows. Question marks in it stand for `values` in their order.
    void Execute(const char* sql, int options = 0) { Run(sql, {}), (void)options; }
    void Execute(const char* sql, std::span<const COleVariant> values) { Run(sql, values); }
    // Rows that the last command changed.
    LONG GetRecordsAffected() const { return static_cast<LONG>(affected_); }

    // What is changed between BeginTrans and CommitTrans happens whole or, with Rollback, not at all. Closing
    // rolls back.
    void BeginTrans();
    void CommitTrans();
    void Rollback();

    // The connection itself, owned by the database. Throws CDaoException* when the database is not open.
    zel::DatabaseConnection& Connection() const;

  private:
    friend class CDaoRecordset;

    void Connect(const char* name, const char* connect, bool exclusive, bool readOnly, bool create);
    void Run(const char* sql, std::span<const COleVariant> values);
    // Recordsets take what they have not delivered yet into memory: their rows stay as they were when the
    // query ran, whatever is changed from now on.
    void HoldRecordsets();

    CString name_;
    CString connect_;
    short queryTimeout_ = 60;
    short loginTimeout_ = 20;
    short silenceLimit_ = 30;
    long affected_ = 0;
    std::unique_ptr<zel::DatabaseConnection> connection_;
    std::vector<class CDaoRecordset*> recordsets_;  // open ones, not owned
};

// The records that a query delivers, one of which is the current one.
//
// Reading forward passes the database's rows on one by one and keeps none. From the first going back, editing
// or deleting on, and while anything is changed through the same database, what has not been read yet is held
// in memory, so a recordset never runs into its own changes. Going back behind what is held runs the query
// again.
//
// A record is changed by its table's primary key if the query delivers that, else by all its values, which
// must be unlike those of all others. Records that are added show after MoveFirst, MoveLast or Requery.
// Failures throw CDaoException*.
class CDaoRecordset : public CObject {
    DECLARE_DYNAMIC(CDaoRecordset)
  public:
    // The database is borrowed; it may be opened later.
    explicit CDaoRecordset(CDaoDatabase* database = nullptr);
    CDaoRecordset(const CDaoRecordset&) = delete;
    CDaoRecordset& operator=(const CDaoRecordset&) = delete;
    ~CDaoRecordset() override;

    // Runs a query, or opens a table given by its name, and goes to its first record.
    virtual void Open(int type = AFX_DAO_USE_DEFAULT_TYPE, const char* sql = nullptr, int options = 0);
    virtual void Close();
    void Requery();

    BOOL IsOpen() const { return rows_ != nullptr; }
    BOOL CanUpdate() const;
    CString GetSQL() const { return sql_; }
    short GetType() const { return static_cast<short>(type_); }

    // Before the first and behind the last record; both in a recordset without any.
    BOOL IsBOF() const;
    BOOL IsEOF() const;
    BOOL IsDeleted() const;
    // Records visited so far; all of them after MoveLast.
    LONG GetRecordCount() const;
    // From 0; -1 without a current record.
    LONG GetAbsolutePosition() const;

    // Moving drops what was begun by Edit or AddNew. Moving on from behind the last record (or back from
    // before the first) is an error.
    void MoveFirst();
    void MoveLast();
    void MoveNext();
    void MovePrev();
    virtual void Move(LONG count);

    short GetFieldCount() const;
    // The second finds a field by its name, in upper or lower case. Secondary information includes primary,
    // all includes secondary.
    void GetFieldInfo(int index, CDaoFieldInfo& info, DWORD options = AFX_DAO_PRIMARY_INFO) const;
    void GetFieldInfo(const char* name, CDaoFieldInfo& info, DWORD options = AFX_DAO_PRIMARY_INFO) const;

    // The current record's values, or those set since Edit or AddNew. Nulls are VT_NULL.
    virtual void GetFieldValue(int index, COleVariant& value) const;
    virtual void GetFieldValue(const char* name, COleVariant& value) const;
    COleVariant GetFieldValue(int index) const;
    COleVariant GetFieldValue(const char* name) const;
    BOOL IsFieldNull(int index) const;
    // The short way to read two fields of many records, for series: appends their values and moves on,
    // beginning with the current record, as long as both are plain numbers. Ends at the first record with
    // another value (a null, a date, a text), which is the current one then, or behind the last. May pass
    // none at all.
    void ReadNumbers(int xIndex, int yIndex, std::vector<double>& xs, std::vector<double>& ys);

    // Changes are made between Edit or AddNew and Update. Values are converted to the kind of the field.
    short GetEditMode() const { return editMode_; }
    virtual void Edit();
    virtual void AddNew();
    virtual void Update();
    virtual void CancelUpdate();
    // Deletes the current record, which stays current, without values, until the recordset moves.
    virtual void Delete();
    virtual void SetFieldValue(int index, const COleVariant& value);
    virtual void SetFieldValue(const char* name, const COleVariant& value);
    void SetFieldValueNull(int index);
    void SetFieldValueNull(const char* name);

    CDaoDatabase* m_pDatabase;  // not owned

  private:
    friend class CDaoDatabase;

    void HoldRows();
    zel::Recordset& Rows() const;
    zel::DatabaseConnection& Writable(const char* attempt) const;
    int IndexOf(const char* name) const;
    void CheckIndex(int index) const;
    void CheckCurrent(const char* attempt) const;
    void CheckEditing() const;
    void RefuseBackwards(const char* attempt) const;
    void DropEdit();
    [[noreturn]] void Fail(LONG code, const char* attempt, const std::string& why) const;

    CString sql_;
    int type_ = dbOpenDynaset;
    bool readOnly_ = false;
    bool forwardOnly_ = false;
    short editMode_ = dbEditNone;
    std::vector<COleVariant> edited_;
    std::vector<bool> changed_;
    std::unique_ptr<zel::Recordset> rows_;
};
