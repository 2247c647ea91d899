#include <zel/DBField.h>
#include <zel/platform/MessageBox.h>

#include <limits>

namespace {

constexpr double kNull = std::numeric_limits<double>::infinity();
constexpr UINT kLongestReason = 256;

CString Reason(const CException& e) {
    char buffer[kLongestReason] = "";
    e.GetErrorMessage(buffer, sizeof buffer);
    return buffer;
}

double DaysSince1990(DATE date) {
    static const COleDateTime first(1990, 1, 1, 0, 0, 0);
    // Beyond the calendar the span is marked as invalid; its value is right all the same.
    return (COleDateTime(date) - first).m_span;
}

CString TextOf(const COleVariant& value) {
    CString text;
    switch (value.vt) {
        case VT_I2:
        case VT_BOOL:
            text.Format("%d", value.iVal);
            break;
        case VT_I4:
            text.Format("%ld", static_cast<long>(value.lVal));
            break;
        case VT_I8:
            // Keys of this width are common; an empty text would lose them.
            text.Format("%lld", static_cast<long long>(value.llVal));
            break;
        case VT_R4:
            text.Format("%g", static_cast<double>(value.fltVal));
            break;
        case VT_R8:
            text.Format("%lg", value.dblVal);
            break;
        case VT_BSTR:
            text = std::string(value.Bytes());
            break;
        case VT_UI1:
            text.Format("%c", value.bVal);
            break;
        case VT_DATE:
            text = COleDateTime(value.date).Format();
            break;
        default:
            break;
    }
    text.TrimRight();
    return text.TrimLeft();
}

}  // namespace

void DBField::Take(const CDaoFieldInfo& info) {
    type = info.m_nType;
    attributes = info.m_lAttributes;
}

void DBField::Define(CDaoRecordset* rs, int fieldIndex, bool retNull) {
    recordset = rs;
    index = fieldIndex;
    type = -1;
    if (!rs || fieldIndex < 0 || fieldIndex >= rs->GetFieldCount()) {
        CString message;
        message.Format("DBField object construction: field # %d does not exist.", fieldIndex);
        AfxMessageBox(message, 0, 0);
        return;
    }
    CDaoFieldInfo info;
    rs->GetFieldInfo(fieldIndex, info, AFX_DAO_PRIMARY_INFO);
    Take(info);
    name = info.m_strName;
    m_bRetdbNull = retNull;
}

void DBField::Define(CDaoRecordset* rs, const char* fieldName, bool retNull) {
    recordset = rs;
    name = fieldName;
    m_bRetdbNull = retNull;
    if (!rs) AfxThrowInvalidArgException("Cannot define a database field without a recordset.");
    CDaoFieldInfo info;
    rs->GetFieldInfo(fieldName, info, AFX_DAO_SECONDARY_INFO);
    Take(info);
    index = info.m_nOrdinalPosition;
}

bool DBField::IsNumeric() const {
    if (IsCounter()) return false;
    return type == dbByte || type == dbInteger || type == dbLong || type == dbSingle || type == dbDouble;
}

bool DBField::IsDefined() const {
    return index >= 0 && !recordset->GetFieldValue(index).IsNull();
}

DBField::operator double() const {
    if (index < 0) return 0.0;
    try {
        COleVariant value;
        recordset->GetFieldValue(index, value);
        if (value.vt == VT_R8) return value.dblVal;
        if (value.IsNull()) return m_bRetdbNull ? kNull : 0.0;
        if (value.vt == VT_DATE) return DaysSince1990(value.date);
        value.ChangeType(VT_R8);
        return value.dblVal;
    } catch (...) {
        CString message;
        message.Format("Unable to read value of the field %s,index is %d", static_cast<const char*>(name),
                       index);
        AfxMessageBox(message, 0, 0);
        throw;
    }
}

DBField::operator CString() const {
    if (index < 0) return {};
    try {
        COleVariant value;
        recordset->GetFieldValue(index, value);
        return TextOf(value);
    } catch (...) {
        CString message;
        message.Format("Unable to read value of the field '%s'", static_cast<const char*>(name));
        AfxMessageBox(message, 0, 0);
        throw;
    }
}

DBField& DBField::operator=(double x) {
    if (index < 0) return *this;
    try {
        if (m_bRetdbNull && x == kNull) {
            recordset->SetFieldValueNull(index);
        } else {
            recordset->SetFieldValue(index, COleVariant(x));
        }
    } catch (CException* e) {
        CString message;
        message.Format(
            "DBField::operator = (double\tx)\nthe field name is %s, index = %d, data type is %d, "
            "m_bRetdbNull is "
            "%s And the value is %lg.\nThe error message as follow:\n",
            static_cast<const char*>(name), index, type, m_bRetdbNull ? "true" : "false", x);
        message += Reason(*e);
        e->Delete();
        AfxMessageBox(message, 0, 0);
    }
    return *this;
}

DBField& DBField::operator=(const char* s) {
    if (index < 0) return *this;
    try {
        recordset->SetFieldValue(index, COleVariant(s, VT_BSTRT));
    } catch (CException* e) {
        e->ReportError(MB_OK, 0);
        e->Delete();
    }
    return *this;
}

// Not an assignment of the field's name and recordset: what is copied is the value.
DBField& DBField::operator=(const DBField& f) {
    if (!recordset || !f.recordset) return *this;
    try {
        recordset->SetFieldValue(index, f.recordset->GetFieldValue(f.index));
    } catch (CException* e) {
        AfxMessageBox("DBField::operator = (const DBField &fld)", 0, 0);
        e->ReportError(MB_OK, 0);
        e->Delete();
    }
    return *this;
}
