#include <zel/platform/Collections.h>

IMPLEMENT_SERIAL(CObArray, CObject, 0)
IMPLEMENT_DYNAMIC(CUIntArray, CObject)
IMPLEMENT_SERIAL(CStringArray, CObject, 0)

void CObArray::Serialize(CArchive& ar) {
    ExchangeCount(ar, sizeof(WORD));
    for (CObject*& object : items_) {
        if (ar.IsStoring()) {
            ar.WriteObject(object);
        } else {
            object = ar.ReadObject(nullptr);
        }
    }
}

void CUIntArray::Serialize(CArchive& ar) {
    ExchangeCount(ar, sizeof(UINT));
    for (UINT& value : items_) {
        if (ar.IsStoring()) {
            ar << value;
        } else {
            ar >> value;
        }
    }
}

void CStringArray::Serialize(CArchive& ar) {
    ExchangeCount(ar, 1);
    for (CString& text : items_) {
        if (ar.IsStoring()) {
            ar << text;
        } else {
            ar >> text;
        }
    }
}
