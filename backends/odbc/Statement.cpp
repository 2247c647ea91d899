#include "backends/odbc/Statement.h"

#include <zel/platform/DatabaseDriver.h>

#include <algorithm>
#include <array>

namespace zel::odbc {
namespace {

constexpr std::size_t kNameSize = 512;
constexpr std::size_t kMessageSize = 1024;
constexpr std::size_t kPieceSize = 2048;  // of a long text

// Drivers put their names in brackets in front; what the database says comes behind them.
std::string WithoutOrigins(std::string text) {
    while (text.starts_with('[')) {
        const std::size_t end = text.find(']');
        if (end == std::string::npos) break;
        text.erase(0, end + 1);
    }
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
    return text;
}

}  // namespace

Handle::Handle(SQLSMALLINT kind, SQLHANDLE parent) : kind_(kind) {
    if (!Succeeded(SQLAllocHandle(kind, parent, &handle_))) {
        handle_ = nullptr;
        AfxThrowMemoryException();
    }
}

Handle::~Handle() {
    if (!handle_) return;
    if (kind_ == SQL_HANDLE_DBC) SQLDisconnect(handle_);
    SQLFreeHandle(kind_, handle_);
}

std::string Handle::Diagnostics(long& number) const {
    std::string words;
    std::array<SQLWCHAR, 6> state{};
    std::array<SQLWCHAR, kMessageSize> text{};
    for (SQLSMALLINT record = 1; record <= 4; ++record) {
        SQLINTEGER code = 0;
        SQLSMALLINT length = 0;
        if (!Succeeded(SQLGetDiagRecW(kind_, handle_, record, state.data(), &code, text.data(),
                                      static_cast<SQLSMALLINT>(text.size()), &length)))
            break;
        if (record == 1) number = code;
        const auto size =
            std::min<std::size_t>(static_cast<std::size_t>(std::max<int>(length, 0)), text.size() - 1);
        const std::string one = WithoutOrigins(FromWide(text.data(), size));
        words += (words.empty() ? "" : "; ") + one;
    }
    return words.empty() ? "the driver gives no reason" : words;
}

void Handle::Check(SQLRETURN code, const std::string& attempt, const std::string& subject) const {
    if (Succeeded(code) || code == SQL_NO_DATA) return;
    long number = 0;
    const std::string words = Diagnostics(number);
    ThrowDatabaseError(number, attempt, subject, words);
}

std::string ColumnText(SQLHSTMT statement, SQLUSMALLINT column, SQLUSMALLINT field) {
    std::array<SQLWCHAR, kNameSize> text{};
    SQLSMALLINT bytes = 0;
    if (!Succeeded(SQLColAttributeW(statement, column, field, text.data(),
                                    static_cast<SQLSMALLINT>(sizeof text), &bytes, nullptr)))
        return {};
    const auto end = std::find(text.begin(), text.end(), SQLWCHAR{0});
    return FromWide(text.data(), static_cast<std::size_t>(end - text.begin()));
}

bool GetText(SQLHSTMT statement, SQLUSMALLINT column, std::string& text) {
    std::vector<SQLWCHAR> all;
    std::array<SQLWCHAR, kPieceSize> piece{};
    SQLLEN bytes = 0;
    SQLRETURN code = SQL_SUCCESS_WITH_INFO;
    // Each call delivers the next piece; all but the last end with "truncated".
    while (code == SQL_SUCCESS_WITH_INFO) {
        code = SQLGetData(statement, column, SQL_C_WCHAR, piece.data(), sizeof piece, &bytes);
        if (!Succeeded(code) || bytes == SQL_NULL_DATA) break;
        const bool whole = bytes != SQL_NO_TOTAL && bytes < static_cast<SQLLEN>(sizeof piece);
        const std::size_t count = whole ? static_cast<std::size_t>(bytes) / sizeof(SQLWCHAR) : kPieceSize - 1;
        all.insert(all.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
        if (whole) break;
    }
    if (bytes == SQL_NULL_DATA || (!Succeeded(code) && code != SQL_NO_DATA)) return false;
    text = FromWide(all.data(), all.size());
    return true;
}

}  // namespace zel::odbc
