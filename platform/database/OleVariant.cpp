#include "platform/database/Calendar.h"

#include <zel/platform/OleVariant.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <string>

IMPLEMENT_DYNAMIC(COleException, CException)

namespace {

constexpr double kCurrencyUnits = 10000;
constexpr std::size_t kLongestShown = 60;

const char* KindName(VARTYPE type) {
    switch (type) {
        case VT_EMPTY:
        case VT_NULL:
            return "null";
        case VT_UI1:
        case VT_I2:
        case VT_I4:
        case VT_I8:
            return "a whole number";
        case VT_R4:
        case VT_R8:
            return "a number";
        case VT_CY:
            return "a sum of money";
        case VT_DATE:
            return "a date";
        case VT_BSTR:
            return "a text";
        case VT_BOOL:
            return "a truth value";
        case VT_ARRAY | VT_UI1:
            return "binary data";
        default:
            return "a value of an unknown kind";
    }
}

std::string NumberText(double value) {
    CString text;
    text.Format("%.15g", value);
    return text.GetString();
}

std::string FloatText(float value) {
    CString text;
    text.Format("%.7g", static_cast<double>(value));
    return text.GetString();
}

std::string MoneyText(std::int64_t units) {
    const std::uint64_t size =
        units < 0 ? 0 - static_cast<std::uint64_t>(units) : static_cast<std::uint64_t>(units);
    std::string text = (units < 0 ? "-" : "") + std::to_string(size / 10000);
    std::string rest = std::to_string(10000 + size % 10000).substr(1);
    while (!rest.empty() && rest.back() == '0') rest.pop_back();
    return rest.empty() ? text : text + "." + rest;
}

std::string_view TextOf(const VARIANT& value) {
    return {value.bstrVal, value.cbBytes};
}

std::string Text(const VARIANT& value) {
    switch (value.vt) {
        case VT_UI1:
            return std::to_string(value.bVal);
        case VT_I2:
            return std::to_string(value.iVal);
        case VT_I4:
            return std::to_string(value.lVal);
        case VT_I8:
            return std::to_string(value.llVal);
        case VT_R4:
            return FloatText(value.fltVal);
        case VT_R8:
            return NumberText(value.dblVal);
        case VT_CY:
            return MoneyText(value.cyVal.int64);
        case VT_DATE:
            return COleDateTime(value.date).Format().GetString();
        case VT_BSTR:
            return std::string(TextOf(value));
        case VT_BOOL:
            return value.boolVal ? "-1" : "0";
        default:
            return {};
    }
}

[[noreturn]] void Refuse(const VARIANT& value, VARTYPE type, SCODE code) {
    std::string shown = Text(value);
    if (shown.size() > kLongestShown) shown = shown.substr(0, kLongestShown) + "...";
    std::string message = std::string("Cannot take ") + KindName(value.vt);
    if (value.vt != VT_NULL && value.vt != VT_EMPTY) message += " \"" + shown + "\"";
    message += std::string(" for ") + KindName(type);
    if (code == DISP_E_OVERFLOW) message += ": it is too large";
    throw new COleException(code, message.c_str());
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

template <class Number>
std::optional<Number> ParseNumber(std::string_view text) {
    text = Trimmed(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    // Names such as "inf" and "nan" are texts.
    if (text.find_first_of("0123456789") == std::string_view::npos) return std::nullopt;
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

double ToDouble(const VARIANT& value, VARTYPE type) {
    switch (value.vt) {
        case VT_EMPTY:
            return 0;
        case VT_UI1:
            return value.bVal;
        case VT_I2:
            return value.iVal;
        case VT_I4:
            return value.lVal;
        case VT_I8:
            return static_cast<double>(value.llVal);
        case VT_R4:
            return static_cast<double>(value.fltVal);
        case VT_R8:
            return value.dblVal;
        case VT_CY:
            return static_cast<double>(value.cyVal.int64) / kCurrencyUnits;
        case VT_DATE:
            return value.date;
        case VT_BOOL:
            return value.boolVal;
        case VT_BSTR:
            if (const auto number = ParseNumber<double>(TextOf(value))) return *number;
            break;
        default:
            break;
    }
    Refuse(value, type, DISP_E_TYPEMISMATCH);
}

// Whole numbers keep all their digits on the way; fractions are rounded.
std::int64_t ToInteger(const VARIANT& value, VARTYPE type, std::int64_t least, std::int64_t most) {
    std::int64_t whole = 0;
    std::optional<std::int64_t> digits;
    if (value.vt == VT_BSTR) digits = ParseNumber<std::int64_t>(TextOf(value));
    if (value.vt == VT_I8) digits = value.llVal;
    if (digits) {
        whole = *digits;
    } else {
        const double number = std::nearbyint(ToDouble(value, type));
        constexpr double kBehindMost = 9223372036854775808.0;
        if (!(number >= -kBehindMost && number < kBehindMost)) Refuse(value, type, DISP_E_OVERFLOW);
        whole = static_cast<std::int64_t>(number);
    }
    if (whole < least || whole > most) Refuse(value, type, DISP_E_OVERFLOW);
    return whole;
}

template <class Integer>
Integer ToIntegerOf(const VARIANT& value, VARTYPE type) {
    return static_cast<Integer>(
        ToInteger(value, type, std::numeric_limits<Integer>::min(), std::numeric_limits<Integer>::max()));
}

bool ToBool(const VARIANT& value) {
    if (value.vt == VT_BSTR) {
        const CString text{std::string(Trimmed(TextOf(value)))};
        if (text.CompareNoCase("true") == 0) return true;
        if (text.CompareNoCase("false") == 0) return false;
    }
    return ToDouble(value, VT_BOOL) != 0;
}

DATE ToDate(const VARIANT& value) {
    if (value.vt == VT_BSTR) {
        if (const auto days = zel::ParseDays(TextOf(value))) return COleDateTime::FromDays(*days).m_dt;
    }
    return ToDouble(value, VT_DATE);
}

CY ToMoney(const VARIANT& value) {
    const double units = std::nearbyint(ToDouble(value, VT_CY) * kCurrencyUnits);
    if (!(std::fabs(units) < 9.2e18)) Refuse(value, VT_CY, DISP_E_OVERFLOW);
    return {static_cast<std::int64_t>(units)};
}

COleVariant Converted(const VARIANT& value, VARTYPE type) {
    switch (type) {
        case VT_UI1:
            return COleVariant(ToIntegerOf<BYTE>(value, type));
        case VT_I2:
            return COleVariant(ToIntegerOf<short>(value, type));
        case VT_I4:
            return COleVariant(ToIntegerOf<LONG>(value, type));
        case VT_I8:
            return COleVariant(ToIntegerOf<std::int64_t>(value, type));
        case VT_R4: {
            const double number = ToDouble(value, type);
            if (std::isfinite(number) &&
                std::fabs(number) > static_cast<double>(std::numeric_limits<float>::max()))
                Refuse(value, type, DISP_E_OVERFLOW);
            return COleVariant(static_cast<float>(number));
        }
        case VT_R8:
            return COleVariant(ToDouble(value, type));
        case VT_CY:
            return COleVariant(ToMoney(value));
        case VT_DATE: {
            COleVariant date;
            date.SetDate(ToDate(value));
            return date;
        }
        case VT_BOOL:
            return COleVariant(static_cast<short>(ToBool(value) ? 1 : 0), VT_BOOL);
        case VT_BSTR: {
            COleVariant text;
            text.SetText(Text(value));
            return text;
        }
        default:
            Refuse(value, type, DISP_E_BADVARTYPE);
    }
}

}  // namespace

COleVariant::COleVariant(short value, VARTYPE type) {
    vt = type;
    iVal = value;
    if (type == VT_BOOL) boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    if (type == VT_BOOL || type == VT_I2) return;
    vt = VT_I2;
    Refuse(*this, type, DISP_E_BADVARTYPE);
}

COleVariant::COleVariant(const char* text, VARTYPE type) {
    SetText(text ? text : "");
    if (type == VT_BSTR || type == VT_BSTRT) return;
    const COleVariant refused(std::move(*this));
    Refuse(refused, type, DISP_E_BADVARTYPE);
}

void COleVariant::SetInteger(std::int64_t value) {
    Clear();
    if (value >= INT32_MIN && value <= INT32_MAX) {
        vt = VT_I4;
        lVal = static_cast<LONG>(value);
    } else {
        vt = VT_I8;
        llVal = value;
    }
}

void COleVariant::SetBytes(std::string_view bytes, VARTYPE type) {
    auto* copy = static_cast<char*>(bytes.size() < UINT32_MAX ? std::malloc(bytes.size() + 1) : nullptr);
    if (!copy) AfxThrowMemoryException();
    if (!bytes.empty()) std::memcpy(copy, bytes.data(), bytes.size());
    copy[bytes.size()] = '\0';
    Clear();
    vt = type;
    cbBytes = static_cast<DWORD>(bytes.size());
    bstrVal = copy;
}

void COleVariant::CopyFrom(const VARIANT& other) {
    if (other.vt == VT_BSTR || other.vt == (VT_ARRAY | VT_UI1)) {
        SetBytes(TextOf(other), other.vt);
    } else {
        VARIANT::operator=(other);
    }
}

void COleVariant::ChangeType(VARTYPE type, const VARIANT* source) {
    const VARIANT& from = source ? *source : *this;
    if (from.vt == type) {
        if (source) {
            COleVariant copy;
            copy.CopyFrom(from);
            *this = std::move(copy);
        }
        return;
    }
    if (from.vt == VT_NULL || from.vt == (VT_ARRAY | VT_UI1)) Refuse(from, type, DISP_E_TYPEMISMATCH);
    *this = Converted(from, type);
}

bool COleVariant::operator==(const COleVariant& other) const {
    if (vt != other.vt) return false;
    switch (vt) {
        case VT_EMPTY:
        case VT_NULL:
            return true;
        case VT_UI1:
            return bVal == other.bVal;
        case VT_I2:
        case VT_BOOL:
            return iVal == other.iVal;
        case VT_I4:
            return lVal == other.lVal;
        case VT_R4:
            return fltVal == other.fltVal;
        case VT_R8:
        case VT_DATE:
            return dblVal == other.dblVal;
        case VT_BSTR:
        case VT_ARRAY | VT_UI1:
            return Bytes() == other.Bytes();
        default:
            return llVal == other.llVal;
    }
}
