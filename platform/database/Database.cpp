#include <zel/platform/Dao.h>
#include <zel/platform/DatabaseDriver.h>

#include <algorithm>

IMPLEMENT_DYNAMIC(CDaoDatabase, CObject)

CDaoDatabase::CDaoDatabase() = default;

CDaoDatabase::~CDaoDatabase() {
    CDaoDatabase::Close();
}

void CDaoDatabase::Open(const char* name, BOOL exclusive, BOOL readOnly, const char* connect) {
    Connect(name, connect, exclusive != FALSE, readOnly != FALSE, false);
}

void CDaoDatabase::Create(const char* name) {
    Connect(name, "", false, false, true);
}

void CDaoDatabase::Connect(const char* name, const char* connect, bool exclusive, bool readOnly,
                           bool create) {
    Close();
    zel::DatabaseAddress address;
    address.name = name ? name : "";
    address.connect = connect ? connect : "";
    address.exclusive = exclusive;
    address.readOnly = readOnly;
    address.create = create;
    address.loginTimeout = loginTimeout_;
    address.queryTimeout = queryTimeout_;
    address.silenceLimit = silenceLimit_;
    connection_ = zel::Connect(address);
    name_ = address.name;
    connect_ = address.connect;
}

void CDaoDatabase::Close() {
    // Closing a recordset takes it from the list.
    while (!recordsets_.empty()) recordsets_.back()->Close();
    connection_.reset();
}

zel::DatabaseConnection& CDaoDatabase::Connection() const {
    if (!connection_)
        zel::ThrowDatabaseError(CDaoException::objectClosed, "use", "the database", "it is not open");
    return *connection_;
}

BOOL CDaoDatabase::CanUpdate() const {
    return Connection().CanUpdate();
}

CString CDaoDatabase::GetConnect() const {
    return zel::WithoutPasswords(connect_.GetString());
}

void CDaoDatabase::SetQueryTimeout(short seconds) {
    queryTimeout_ = std::max<short>(seconds, 0);
    if (connection_) connection_->SetQueryTimeout(queryTimeout_);
}

void CDaoDatabase::SetSilenceLimit(short seconds) {
    silenceLimit_ = std::max<short>(seconds, 0);
    if (connection_) connection_->SetSilenceLimit(silenceLimit_);
}

void CDaoDatabase::Cancel() {
    if (connection_) connection_->Cancel();
}

void CDaoDatabase::Run(const char* sql, std::span<const COleVariant> values) {
    zel::DatabaseConnection& connection = Connection();
    HoldRecordsets();
    affected_ = connection.Execute(sql ? sql : "", values);
}

void CDaoDatabase::HoldRecordsets() {
    for (CDaoRecordset* recordset : recordsets_) recordset->HoldRows();
}

void CDaoDatabase::BeginTrans() {
    HoldRecordsets();
    Connection().Begin();
}
void CDaoDatabase::CommitTrans() {
    HoldRecordsets();
    Connection().Commit();
}
void CDaoDatabase::Rollback() {
    HoldRecordsets();
    Connection().Rollback();
}
