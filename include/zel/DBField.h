// One field of a recordset, read and written like a variable.
#pragma once

#include <zel/platform/Dao.h>
#include <zel/platform/String.h>

// Names a field of an open recordset and stands for its value in the current record.
//
//     DBField price(&recordset, "price", false);
//     for (; !recordset.IsEOF(); recordset.MoveNext()) total += price;
//
// Errors of reading are shown in a message box and passed on, errors of assigning are shown and end there.
class DBField {
  public:
    // Names no field: reads as 0 or an empty text, and what is assigned is dropped.
    DBField() = default;
    // See Define.
    DBField(CDaoRecordset* rs, const char* fieldName, bool retNull) { Define(rs, fieldName, retNull); }
    DBField(CDaoRecordset* rs, int fieldIndex, bool retNull) { Define(rs, fieldIndex, retNull); }
    DBField(const DBField& other) = default;

    // The recordset is borrowed and must be open. With `retNull` a null is +infinity, in both directions;
    // without it a null reads as 0. A number that no field has is shown in a message box and leaves the field
    // without a type; a name that no field has throws CDaoException*.
    void Define(CDaoRecordset* rs, int fieldIndex, bool retNull);
    void Define(CDaoRecordset* rs, const char* fieldName, bool retNull);

    CString Name() const { return name; }
    // The field's place in the recordset, from 0; -1 for none.
    int Ordinal() const { return index; }
    // dbDouble, dbText and so on; -1 when the field is not defined.
    int Type() const { return type; }
    // dbUpdatableField and so on.
    long Attrib() const { return attributes; }
    bool IsBool() const { return type == dbBoolean; }
    bool IsText() const { return type == dbText; }
    bool IsCounter() const { return (attributes & dbAutoIncrField) != 0; }
    bool IsUpdatable() const { return (attributes & dbUpdatableField) != 0; }
    // Numbers to calculate with: no counters, no money, no dates.
    bool IsNumeric() const;
    // Whether the current record has a value here.
    bool IsDefined() const;

    void SetdbRetNull(bool retNull) { m_bRetdbNull = retNull; }
    bool GetdbRetNull() const { return m_bRetdbNull; }

    // Between Edit or AddNew and Update of the recordset.
    DBField& operator=(double x);
    DBField& operator=(const char* s);
    // Assigns the value of another field's current record, whatever its kind.
    DBField& operator=(const DBField& f);

    // Dates are days since 1 January 1990, 00:00.
    operator double() const;
    // Without white space at both ends. A byte is a character; money and binary data are empty texts.
    operator CString() const;

  private:
    void Take(const CDaoFieldInfo& info);

    CDaoRecordset* recordset = nullptr;  // not owned
    int index = -1;
    int type = -1;
    long attributes = 0;
    CString name;
    bool m_bRetdbNull = false;
};
