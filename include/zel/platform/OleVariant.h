// Values whose kind is known only at run time, as databases deliver them.
#pragma once

#include <zel/platform/Exception.h>
#include <zel/platform/OleDateTime.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>

using VARTYPE = unsigned short;
inline constexpr VARTYPE VT_EMPTY = 0;
inline constexpr VARTYPE VT_NULL = 1;
inline constexpr VARTYPE VT_I2 = 2;
inline constexpr VARTYPE VT_I4 = 3;
inline constexpr VARTYPE VT_R4 = 4;
inline constexpr VARTYPE VT_R8 = 5;
inline constexpr VARTYPE VT_CY = 6;
inline constexpr VARTYPE VT_DATE = 7;
inline constexpr VARTYPE VT_BSTR = 8;
inline constexpr VARTYPE VT_BOOL = 11;
inline constexpr VARTYPE VT_BSTRT = 14;  // only as an argument: a text of 8-bit characters, held as VT_BSTR
inline constexpr VARTYPE VT_UI1 = 17;
inline constexpr VARTYPE VT_I8 = 20;
inline constexpr VARTYPE VT_ARRAY = 0x2000;  // with VT_UI1: bytes

using VARIANT_BOOL = short;
inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

using SCODE = LONG;
inline constexpr SCODE DISP_E_TYPEMISMATCH = static_cast<SCODE>(0x80020005);
inline constexpr SCODE DISP_E_OVERFLOW = static_cast<SCODE>(0x8002000A);
inline constexpr SCODE DISP_E_BADVARTYPE = static_cast<SCODE>(0x80020008);

// A sum of money in ten-thousandths.
struct CY {
    std::int64_t int64;
};

// A value that cannot be converted.
class COleException : public CException {
    DECLARE_DYNAMIC(COleException)
  public:
    COleException(SCODE code, const char* message) : CException(message), m_sc(code) {}
    SCODE m_sc;
};

struct VARIANT {
    VARTYPE vt = VT_EMPTY;
    DWORD cbBytes = 0;  // of bstrVal, without its closing zero
    union {
        BYTE bVal;
        short iVal;
        LONG lVal;
        std::int64_t llVal;
        float fltVal;
        double dblVal = 0;
        VARIANT_BOOL boolVal;
        CY cyVal;
        DATE date;
        char* bstrVal;  // UTF-8, or the bytes of VT_ARRAY | VT_UI1; owned by the variant
    };
};

// A variant that owns its text. Numbers take no memory of their own.
class COleVariant : public VARIANT {
  public:
    COleVariant() = default;
    COleVariant(BYTE value) { vt = VT_UI1, bVal = value; }
    // `type` is VT_I2, or VT_BOOL for a truth value that is not 0.
    COleVariant(short value, VARTYPE type = VT_I2);
    COleVariant(LONG value) { vt = VT_I4, lVal = value; }
    COleVariant(std::int64_t value) { vt = VT_I8, llVal = value; }
    COleVariant(float value) { vt = VT_R4, fltVal = value; }
    COleVariant(double value) { vt = VT_R8, dblVal = value; }
    COleVariant(CY value) { vt = VT_CY, cyVal = value; }
    COleVariant(const COleDateTime& value) { vt = VT_DATE, date = value.m_dt; }
    // `type` is VT_BSTR or VT_BSTRT; others throw COleException*. A null pointer is an empty text.
    COleVariant(const char* text, VARTYPE type);
    COleVariant(const COleVariant& other) : COleVariant() { CopyFrom(other); }
    COleVariant(COleVariant&& other) noexcept : VARIANT(other) { other.vt = VT_EMPTY; }
    ~COleVariant() {
        if (OwnsMemory()) std::free(bstrVal);
    }
    COleVariant& operator=(const COleVariant& other) {
        if (this != &other) {
            Clear();
            CopyFrom(other);
        }
        return *this;
    }
    COleVariant& operator=(COleVariant&& other) noexcept {
        if (this != &other) {
            Clear();
            VARIANT::operator=(other);
            other.vt = VT_EMPTY;
        }
        return *this;
    }

    // Drivers write values with these.
    static COleVariant Null() {
        COleVariant value;
        value.vt = VT_NULL;
        return value;
    }
    void Clear() {
        if (OwnsMemory()) std::free(bstrVal);
        vt = VT_EMPTY;
    }
    void SetNull() { Clear(), vt = VT_NULL; }
    void SetDouble(double value) { Clear(), vt = VT_R8, dblVal = value; }
    void SetDate(DATE value) { Clear(), vt = VT_DATE, date = value; }
    // VT_I4 where it fits, else VT_I8.
    void SetInteger(std::int64_t value);
    void SetText(std::string_view text) { SetBytes(text, VT_BSTR); }
    void SetBinary(std::string_view bytes) { SetBytes(bytes, VT_ARRAY | VT_UI1); }

    bool IsNull() const { return vt == VT_NULL || vt == VT_EMPTY; }
    // The text or the bytes; nothing for other kinds. Lives as long as the variant is not changed.
    std::string_view Bytes() const {
        return OwnsMemory() ? std::string_view(bstrVal, cbBytes) : std::string_view();
    }

    // Turns the value (or that of `source`) into another kind: numbers, truth values (true is -1), money,
    // dates (as days) and texts into one another. Fractions are rounded to the nearest even whole number.
    // Throws COleException* that shows the value, which stays as it was: for texts that are no numbers, for
    // numbers that do not fit, for null.
    void ChangeType(VARTYPE type, const VARIANT* source = nullptr);

    bool operator==(const COleVariant& other) const;

  private:
    bool OwnsMemory() const { return vt == VT_BSTR || vt == (VT_ARRAY | VT_UI1); }
    void SetBytes(std::string_view bytes, VARTYPE type);
    void CopyFrom(const VARIANT& other);
};
