#include "platform/database/RecordWriter.h"
#include "platform/database/Recordset.h"

#include <zel/platform/Dao.h>

#include <algorithm>
#include <cstring>
#include <strings.h>

IMPLEMENT_DYNAMIC(CDaoRecordset, CObject)

namespace {

bool StartsWithWord(const char* text, const char* word) {
    const std::size_t length = std::strlen(word);
    if (strncasecmp(text, word, length) != 0) return false;
    const char next = text[length];
    return next == '\0' || std::strchr(" \t\r\n(*'\"", next) != nullptr;
}

// Whether a text is a query; else it is the name of a table.
bool IsQuery(const char* text) {
    while (*text && std::strchr(" \t\r\n(", *text)) ++text;
    constexpr const char* kWords[] = {"SELECT", "WITH", "VALUES", "PRAGMA", "EXPLAIN", "SHOW", "CALL"};
    return std::any_of(std::begin(kWords), std::end(kWords),
                       [&](const char* word) { return StartsWithWord(text, word); });
}

// A table as SQL takes it; a schema may stand before it, and quotes around it.
std::string TableName(const std::string& name, const zel::DatabaseConnection& connection) {
    if (name.front() == '"' || name.front() == '[' || name.front() == '`') return name;
    const std::size_t dot = name.find('.');
    if (dot == std::string::npos) return connection.Quoted(name);
    return connection.Quoted(name.substr(0, dot)) + "." + connection.Quoted(name.substr(dot + 1));
}

VARTYPE KindOf(short fieldType) {
    switch (fieldType) {
        case dbBoolean:
            return VT_BOOL;
        case dbByte:
            return VT_UI1;
        case dbInteger:
            return VT_I2;
        case dbLong:
        case dbBigInt:
            return VT_I8;
        case dbCurrency:
            return VT_CY;
        case dbSingle:
            return VT_R4;
        case dbDouble:
            return VT_R8;
        case dbDate:
            return VT_DATE;
        case dbBinary:
        case dbLongBinary:
            return VT_ARRAY | VT_UI1;
        default:
            return VT_BSTR;
    }
}

// Characters of UTF-8 text.
long Characters(std::string_view text) {
    return static_cast<long>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

COleVariant ForField(const COleVariant& value, const zel::ColumnInfo& column) {
    if (value.IsNull()) return COleVariant::Null();
    COleVariant converted = value;
    const VARTYPE kind = KindOf(column.type);
    if (kind == (VT_ARRAY | VT_UI1) && value.vt == VT_BSTR) {
        converted.SetBinary(value.Bytes());
    } else {
        converted.ChangeType(kind);
    }
    if (kind == VT_DATE && COleDateTime(converted.date).GetStatus() != COleDateTime::valid)
        throw new COleException(DISP_E_OVERFLOW, "Cannot take a date outside the years 100 to 9999");
    // Whole numbers are as wide as they need to be; what is too wide for the table is the database's to say.
    if (kind == VT_I8) converted.SetInteger(std::int64_t{converted.llVal});
    return converted;
}

// The column's own name in what SQL takes for one: without its table and its quotes.
std::string BareName(std::string name) {
    const auto quoted = [&](char open, char close) {
        return name.size() > 2 && name.back() == close &&
               name.rfind(open, name.size() - 2) != std::string::npos;
    };
    for (const auto& [open, close] : {std::pair('"', '"'), std::pair('[', ']'), std::pair('`', '`')}) {
        if (!quoted(open, close)) continue;
        const std::size_t begin = name.rfind(open, name.size() - 2);
        return name.substr(begin + 1, name.size() - begin - 2);
    }
    return name.substr(name.rfind('.') + 1);
}

}  // namespace

CDaoRecordset::CDaoRecordset(CDaoDatabase* database) : m_pDatabase(database) {}

CDaoRecordset::~CDaoRecordset() {
    CDaoRecordset::Close();
}

void CDaoRecordset::Fail(LONG code, const char* attempt, const std::string& why) const {
    const std::string subject =
        sql_.IsEmpty() ? "the recordset" : "the records of " + zel::ShownQuery(sql_.GetString());
    zel::ThrowDatabaseError(code, attempt, subject, why);
}

void CDaoRecordset::Open(int type, const char* sql, int options) {
    Close();
    if (!m_pDatabase) Fail(CDaoException::objectClosed, "open", "it has no database");
    const int chosen = type == AFX_DAO_USE_DEFAULT_TYPE ? dbOpenDynaset : type;
    const bool known = chosen == dbOpenTable || chosen == dbOpenDynaset || chosen == dbOpenSnapshot ||
                       chosen == dbOpenForwardOnly;
    if (!known || !sql || !*sql)
        Fail(CDaoException::invalidArgument, "open",
             known ? "there is no query" : "there is no such kind of recordset");
    zel::DatabaseConnection& connection = m_pDatabase->Connection();
    const bool isQuery = chosen != dbOpenTable && IsQuery(sql);
    const std::string query = isQuery ? std::string(sql) : "SELECT * FROM " + TableName(sql, connection);
    rows_ = std::make_unique<zel::Recordset>(connection, query);
    m_pDatabase->recordsets_.push_back(this);
    sql_ = query;
    type_ = chosen;
    forwardOnly_ = chosen == dbOpenForwardOnly || (options & dbForwardOnly) != 0;
    readOnly_ = forwardOnly_ || chosen == dbOpenSnapshot || (options & dbReadOnly) != 0;
}

void CDaoRecordset::Close() {
    if (!rows_) return;
    DropEdit();
    rows_.reset();
    std::erase(m_pDatabase->recordsets_, this);
}

void CDaoRecordset::Requery() {
    Rows();
    DropEdit();
    auto fresh = std::make_unique<zel::Recordset>(m_pDatabase->Connection(), sql_.GetString());
    rows_ = std::move(fresh);
}

void CDaoRecordset::HoldRows() {
    if (rows_) rows_->Hold();
}

zel::Recordset& CDaoRecordset::Rows() const {
    if (!rows_) Fail(CDaoException::objectClosed, "use", "it is not open");
    return *rows_;
}

BOOL CDaoRecordset::CanUpdate() const {
    return !readOnly_ && Rows().Connection().CanUpdate() && zel::HasOneTable(*rows_);
}

BOOL CDaoRecordset::IsBOF() const {
    return Rows().IsBof();
}
BOOL CDaoRecordset::IsEOF() const {
    return Rows().IsEof();
}
BOOL CDaoRecordset::IsDeleted() const {
    return Rows().IsDeleted();
}
LONG CDaoRecordset::GetRecordCount() const {
    return static_cast<LONG>(Rows().Visited());
}
LONG CDaoRecordset::GetAbsolutePosition() const {
    return Rows().IsOnRow() ? static_cast<LONG>(rows_->Position()) : -1;
}

// Moving

void CDaoRecordset::RefuseBackwards(const char* attempt) const {
    if (forwardOnly_) Fail(CDaoException::invalidOperation, attempt, "the recordset only moves forward");
}

void CDaoRecordset::MoveFirst() {
    Rows();
    DropEdit();
    if (!rows_->IsOnRow() || rows_->Position() > 0) RefuseBackwards("move back through");
    rows_->First();
    if (rows_->IsEof()) Fail(CDaoException::noCurrentRecord, "move to the first of", "there are none");
}

void CDaoRecordset::MoveLast() {
    Rows();
    DropEdit();
    RefuseBackwards("move to the last of");
    rows_->Last();
    if (rows_->IsBof()) Fail(CDaoException::noCurrentRecord, "move to the last of", "there are none");
}

void CDaoRecordset::MoveNext() {
    if (Rows().IsEof()) Fail(CDaoException::noCurrentRecord, "move on in", "the last one was passed");
    if (editMode_ != dbEditNone) DropEdit();
    rows_->Next();
}

void CDaoRecordset::MovePrev() {
    if (Rows().IsBof()) Fail(CDaoException::noCurrentRecord, "move back in", "the first one was passed");
    DropEdit();
    RefuseBackwards("move back through");
    rows_->Prev();
}

void CDaoRecordset::Move(LONG count) {
    DropEdit();
    for (; count > 0; --count) {
        MoveNext();
        if (rows_->IsEof()) return;
    }
    for (; count < 0; ++count) {
        MovePrev();
        if (rows_->IsBof()) return;
    }
}

// Fields

short CDaoRecordset::GetFieldCount() const {
    return static_cast<short>(Rows().Columns().size());
}

void CDaoRecordset::CheckIndex(int index) const {
    if (index < 0 || index >= static_cast<int>(Rows().Columns().size()))
        Fail(CDaoException::itemNotFound, "use a field of",
             "field number " + std::to_string(index) + " does not exist");
}

int CDaoRecordset::IndexOf(const char* name) const {
    const auto& columns = Rows().Columns();
    const char* wanted = name ? name : "";
    for (const std::string& form : {std::string(wanted), BareName(wanted)}) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (strcasecmp(columns[i].name.c_str(), form.c_str()) == 0) return static_cast<int>(i);
        }
    }
    std::string known;
    for (const zel::ColumnInfo& column : columns) known += (known.empty() ? "" : ", ") + column.name;
    Fail(CDaoException::itemNotFound, "use a field of",
         "the field \"" + std::string(wanted) + "\" does not exist; there are: " + known);
}

void CDaoRecordset::GetFieldInfo(int index, CDaoFieldInfo& info, DWORD options) const {
    CheckIndex(index);
    zel::ColumnInfo& column = rows_->Columns()[static_cast<std::size_t>(index)];
    if (!column.described) rows_->Connection().Describe(column);
    column.described = true;
    info = {};
    info.m_strName = column.name;
    info.m_nType = column.type;
    info.m_lSize = static_cast<LONG>(column.size);
    info.m_lAttributes = static_cast<LONG>(column.attributes);
    if (readOnly_ || !rows_->Connection().CanUpdate()) info.m_lAttributes &= ~dbUpdatableField;
    if (!(options & (AFX_DAO_SECONDARY_INFO | AFX_DAO_ALL_INFO))) return;
    info.m_nOrdinalPosition = static_cast<short>(index);
    info.m_bRequired = column.required;
    info.m_bAllowZeroLength = column.type == dbText || column.type == dbMemo;
    info.m_strSourceField = column.sourceColumn;
    info.m_strSourceTable = column.sourceTable;
    if (options & AFX_DAO_ALL_INFO) info.m_strDefaultValue = column.defaultValue;
}

void CDaoRecordset::GetFieldInfo(const char* name, CDaoFieldInfo& info, DWORD options) const {
    GetFieldInfo(IndexOf(name), info, options);
}

void CDaoRecordset::CheckCurrent(const char* attempt) const {
    if (!Rows().IsOnRow()) Fail(CDaoException::noCurrentRecord, attempt, "there is no current record");
    if (rows_->IsDeleted())
        Fail(CDaoException::recordDeleted, attempt, "the current record has been deleted");
}

void CDaoRecordset::GetFieldValue(int index, COleVariant& value) const {
    CheckIndex(index);
    if (editMode_ != dbEditNone) {
        value = edited_[static_cast<std::size_t>(index)];
        return;
    }
    CheckCurrent("read a field of");
    rows_->Read(index, value);
}

void CDaoRecordset::GetFieldValue(const char* name, COleVariant& value) const {
    GetFieldValue(IndexOf(name), value);
}

COleVariant CDaoRecordset::GetFieldValue(int index) const {
    COleVariant value;
    GetFieldValue(index, value);
    return value;
}

COleVariant CDaoRecordset::GetFieldValue(const char* name) const {
    return GetFieldValue(IndexOf(name));
}

BOOL CDaoRecordset::IsFieldNull(int index) const {
    return GetFieldValue(index).IsNull();
}

void CDaoRecordset::ReadNumbers(int xIndex, int yIndex, std::vector<double>& xs, std::vector<double>& ys) {
    CheckIndex(xIndex);
    CheckIndex(yIndex);
    if (editMode_ == dbEditNone) rows_->ReadNumbers(xIndex, yIndex, xs, ys);
}

// Changing

zel::DatabaseConnection& CDaoRecordset::Writable(const char* attempt) const {
    zel::DatabaseConnection& connection = Rows().Connection();
    if (readOnly_) Fail(CDaoException::readOnly, attempt, "the recordset was opened for reading only");
    if (!connection.CanUpdate())
        Fail(CDaoException::readOnly, attempt, "the database was opened for reading only");
    if (!zel::HasOneTable(*rows_))
        Fail(CDaoException::readOnly, attempt, "the records do not come from exactly one table");
    return connection;
}

void CDaoRecordset::DropEdit() {
    editMode_ = dbEditNone;
    edited_.clear();
    changed_.clear();
}

void CDaoRecordset::Edit() {
    Writable("edit");
    DropEdit();
    CheckCurrent("edit");
    rows_->Hold();
    edited_.resize(rows_->Columns().size());
    for (std::size_t i = 0; i < edited_.size(); ++i) rows_->Read(static_cast<int>(i), edited_[i]);
    changed_.assign(edited_.size(), false);
    editMode_ = dbEditInProgress;
}

void CDaoRecordset::AddNew() {
    Writable("add a record to");
    edited_.assign(rows_->Columns().size(), COleVariant::Null());
    changed_.assign(edited_.size(), false);
    editMode_ = dbEditAdd;
}

void CDaoRecordset::CheckEditing() const {
    Rows();
    if (editMode_ == dbEditNone)
        Fail(CDaoException::updateWithoutEdit, "change", "neither Edit nor AddNew was called");
}

void CDaoRecordset::SetFieldValue(int index, const COleVariant& value) {
    CheckIndex(index);
    CheckEditing();
    const auto i = static_cast<std::size_t>(index);
    const zel::ColumnInfo& column = rows_->Columns()[i];
    const std::string field = "the field \"" + column.name + "\" ";
    if (!(column.attributes & dbUpdatableField))
        Fail(CDaoException::fieldNotUpdatable, "change", field + "cannot be written to");
    COleVariant converted;
    try {
        converted = ForField(value, column);
    } catch (COleException* e) {
        Fail(CDaoException::conversion, "change", field + "does not take the value: " + zel::TakeMessage(e));
    }
    if (column.type == dbText && column.size > 0 && Characters(converted.Bytes()) > column.size)
        Fail(CDaoException::fieldTooSmall, "change",
             field + "holds " + std::to_string(column.size) + " characters, and the text is longer");
    edited_[i] = std::move(converted);
    changed_[i] = true;
}

void CDaoRecordset::SetFieldValue(const char* name, const COleVariant& value) {
    SetFieldValue(IndexOf(name), value);
}
void CDaoRecordset::SetFieldValueNull(int index) {
    SetFieldValue(index, COleVariant::Null());
}
void CDaoRecordset::SetFieldValueNull(const char* name) {
    SetFieldValue(name, COleVariant::Null());
}

// A failed update leaves the edit as it was, so that it can be corrected.
void CDaoRecordset::Update() {
    CheckEditing();
    m_pDatabase->HoldRecordsets();
    if (editMode_ == dbEditAdd) {
        zel::InsertRecord(*rows_, edited_, changed_);
        rows_->NoteAdded();
    } else {
        zel::UpdateRecord(*rows_, edited_, changed_);
        rows_->Replace(edited_);
    }
    DropEdit();
}

void CDaoRecordset::CancelUpdate() {
    CheckEditing();
    DropEdit();
}

void CDaoRecordset::Delete() {
    Writable("delete one of");
    DropEdit();
    CheckCurrent("delete one of");
    m_pDatabase->HoldRecordsets();
    zel::DeleteRecord(*rows_);
    rows_->MarkDeleted();
}
