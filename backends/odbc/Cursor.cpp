#include "backends/odbc/Cursor.h"

#include <zel/platform/Dao.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace zel::odbc {
namespace {

constexpr std::size_t kBlock = 512;  // rows

// Drivers agree on the text of a date, not on what to do with years that their structures do not have.
void SetMoment(std::string text, const std::string& subject, COleVariant& value) {
    const bool beforeChrist = text.ends_with(" BC");
    COleDateTime date;
    if (beforeChrist) {
        // There is no year 0: the year 1 before Christ is counted as 0.
        const std::size_t end = text.find('-');
        const int year = 1 - std::atoi(text.c_str());
        CString counted;
        counted.Format("%s%04d", year < 0 ? "-" : "", std::abs(year));
        text = counted.GetString() + text.substr(end, text.size() - end - 3);
    }
    if (!date.ParseDateTime(text.c_str()))
        ThrowDatabaseError(CDaoException::conversion, "read the records of", subject,
                           "the driver gives \"" + text + "\" for a date");
    value.SetDate(date.m_dt);
}

void SetInteger(SQLBIGINT number, short type, COleVariant& value) {
    switch (type) {
        case dbByte:
            // Some databases have signed bytes.
            if (number < 0 || number > 255) break;
            value = COleVariant(static_cast<BYTE>(number));
            return;
        case dbInteger:
            value = COleVariant(static_cast<short>(number));
            return;
        case dbBigInt:
            value = COleVariant(static_cast<std::int64_t>(number));
            return;
        default:
            break;
    }
    value.SetInteger(number);
}

}  // namespace

Cursor::Cursor(Handle statement, std::vector<Column> columns, std::string subject, Lifeline& lifeline,
               std::shared_ptr<void> turn)
    : subject_(std::move(subject)),
      columns_(std::move(columns)),
      lifeline_(lifeline),
      turn_(std::move(turn)),
      statement_(std::move(statement)) {
    for (const Column& column : columns_) infos_.push_back(column.info);
    inBlocks_ = std::none_of(columns_.begin(), columns_.end(), [](const Column& column) {
        return column.form == Form::TEXT || column.form == Form::BYTES;
    });
    longs_.resize(columns_.size());
    longRead_.assign(columns_.size(), false);
    if (inBlocks_) blockSize_ = kBlock;
    BindBlock();
}

Cursor::~Cursor() {
    const Lifeline::Watch watch(lifeline_);
    statement_ = Handle();  // closes it; the server is told
}

void Cursor::Check(SQLRETURN code) const {
    constexpr const char* kAttempt = "read the records of";
    if (!Succeeded(code)) lifeline_.ThrowIfCut(kAttempt, subject_);
    statement_.Check(code, kAttempt, subject_);
}

void Cursor::BindBlock() {
    SQLSetStmtAttr(statement_.Get(), SQL_ATTR_ROW_BIND_TYPE, reinterpret_cast<SQLPOINTER>(SQL_BIND_BY_COLUMN),
                   0);
    // A driver that cannot fetch blocks says so here and takes the rows one by one.
    if (!Succeeded(SQLSetStmtAttr(statement_.Get(), SQL_ATTR_ROW_ARRAY_SIZE,
                                  reinterpret_cast<SQLPOINTER>(blockSize_), 0)))
        blockSize_ = 1;
    SQLSetStmtAttr(statement_.Get(), SQL_ATTR_ROWS_FETCHED_PTR, &fetched_, 0);
    bound_.resize(columns_.size());
    for (std::size_t i = 0; i < columns_.size(); ++i) BindColumn(i);
}

void Cursor::BindColumn(std::size_t column) {
    Bound& bound = bound_[column];
    bound.lengths.assign(blockSize_, 0);
    const auto bind = [&](SQLSMALLINT kind, auto& values) {
        values.resize(blockSize_);
        Check(SQLBindCol(statement_.Get(), static_cast<SQLUSMALLINT>(column + 1), kind, values.data(),
                         sizeof values[0], bound.lengths.data()));
    };
    switch (columns_[column].form) {
        case Form::NUMBER:
            bind(SQL_C_DOUBLE, bound.numbers);
            break;
        case Form::INTEGER:
            bind(SQL_C_SBIGINT, bound.integers);
            break;
        case Form::BIT:
            bind(SQL_C_BIT, bound.bits);
            break;
        case Form::MOMENT:
            bind(SQL_C_CHAR, bound.moments);
            break;
        case Form::TEXT:
        case Form::BYTES:
            break;
    }
}

bool Cursor::Fetch() {
    fetched_ = 0;
    row_ = 0;
    const Lifeline::Watch watch(lifeline_);
    const SQLRETURN code = SQLFetch(statement_.Get());
    if (code == SQL_NO_DATA) return false;
    Check(code);
    // A driver without blocks does not count.
    if (fetched_ == 0) fetched_ = 1;
    return true;
}

bool Cursor::Next() {
    if (++row_ < fetched_) return true;
    if (!inBlocks_) longRead_.assign(columns_.size(), false);
    return Fetch();
}

void Cursor::Read(int column, COleVariant& value) {
    const auto i = static_cast<std::size_t>(column);
    const Form form = columns_[i].form;
    if (form != Form::TEXT && form != Form::BYTES) {
        ReadBound(i, value);
        return;
    }
    if (!longRead_[i]) ReadLong(i, longs_[i]);
    longRead_[i] = true;
    value = longs_[i];
}

void Cursor::ReadBound(std::size_t column, COleVariant& value) const {
    const Bound& bound = bound_[column];
    const short type = infos_[column].type;
    if (bound.lengths[row_] == SQL_NULL_DATA) {
        value.SetNull();
        return;
    }
    switch (columns_[column].form) {
        case Form::NUMBER:
            if (type == dbSingle) {
                value = COleVariant(static_cast<float>(bound.numbers[row_]));
            } else {
                value.SetDouble(bound.numbers[row_]);
                if (type == dbCurrency) value.ChangeType(VT_CY);
            }
            break;
        case Form::INTEGER:
            SetInteger(bound.integers[row_], type, value);
            break;
        case Form::BIT:
            value = COleVariant(static_cast<short>(bound.bits[row_]), VT_BOOL);
            break;
        default:
            SetMoment(bound.moments[row_].data(), subject_, value);
    }
}

std::size_t Cursor::ReadNumbers(int xColumn, int yColumn, std::vector<double>& xs, std::vector<double>& ys,
                                bool& ended) {
    ended = false;
    std::size_t count = 0;
    const auto x = static_cast<std::size_t>(xColumn), y = static_cast<std::size_t>(yColumn);
    const auto isPlain = [this](std::size_t column) {
        return columns_[column].form == Form::NUMBER && infos_[column].type == dbDouble;
    };
    if (!isPlain(x) || !isPlain(y)) return count;
    while (bound_[x].lengths[row_] != SQL_NULL_DATA && bound_[y].lengths[row_] != SQL_NULL_DATA) {
        xs.push_back(bound_[x].numbers[row_]);
        ys.push_back(bound_[y].numbers[row_]);
        ++count;
        if (Next()) continue;
        ended = true;
        break;
    }
    return count;
}

void Cursor::ReadLong(std::size_t column, COleVariant& value) {
    const Lifeline::Watch watch(lifeline_);
    const auto at = static_cast<SQLUSMALLINT>(column + 1);
    if (columns_[column].form == Form::TEXT) {
        std::string text;
        if (GetText(statement_.Get(), at, text)) {
            value.SetText(text);
            if (infos_[column].type == dbCurrency) value.ChangeType(VT_CY);
        } else {
            value.SetNull();
        }
        return;
    }
    std::string bytes;
    std::array<char, 8192> piece{};
    SQLLEN length = 0;
    SQLRETURN code = SQL_SUCCESS_WITH_INFO;
    while (code == SQL_SUCCESS_WITH_INFO) {
        code = SQLGetData(statement_.Get(), at, SQL_C_BINARY, piece.data(), piece.size(), &length);
        if (!Succeeded(code) || length == SQL_NULL_DATA) break;
        const bool whole = length != SQL_NO_TOTAL && length <= static_cast<SQLLEN>(piece.size());
        bytes.append(piece.data(), whole ? static_cast<std::size_t>(length) : piece.size());
        if (whole) break;
    }
    Check(code);
    if (length == SQL_NULL_DATA) {
        value.SetNull();
    } else {
        value.SetBinary(bytes);
    }
}

}  // namespace zel::odbc
