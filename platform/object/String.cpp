#include <zel/platform/Exception.h>
#include <zel/platform/String.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

namespace {

char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
bool IsBlank(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}
int Position(std::size_t found) {
    return found == std::string::npos ? -1 : static_cast<int>(found);
}

}  // namespace

char CString::GetAt(int i) const {
    if (i < 0 || i >= GetLength()) AfxThrowInvalidArgException();
    return text_[static_cast<std::size_t>(i)];
}

void CString::SetAt(int i, char c) {
    if (i < 0 || i >= GetLength()) AfxThrowInvalidArgException();
    text_[static_cast<std::size_t>(i)] = c;
}

char* CString::GetBuffer(int length) {
    if (length > GetLength()) text_.resize(static_cast<std::size_t>(length));
    return text_.data();
}

void CString::ReleaseBuffer(int length) {
    text_.resize(length >= 0 ? static_cast<std::size_t>(length) : std::strlen(text_.c_str()));
}

int CString::CompareNoCase(const char* other) const {
    const char* a = text_.c_str();
    const char* b = other ? other : "";
    while (*a && Lower(*a) == Lower(*b)) ++a, ++b;
    return static_cast<unsigned char>(Lower(*a)) - static_cast<unsigned char>(Lower(*b));
}

CString CString::Right(int count) const {
    count = std::clamp(count, 0, GetLength());
    return Mid(GetLength() - count, count);
}

CString CString::Mid(int first, int count) const {
    first = std::clamp(first, 0, GetLength());
    count = std::clamp(count, 0, GetLength() - first);
    return text_.substr(static_cast<std::size_t>(first), static_cast<std::size_t>(count));
}

int CString::Find(const char* part, int start) const {
    return start < 0 ? -1 : Position(text_.find(part, static_cast<std::size_t>(start)));
}
int CString::Find(char c, int start) const {
    return start < 0 ? -1 : Position(text_.find(c, static_cast<std::size_t>(start)));
}
int CString::ReverseFind(char c) const {
    return Position(text_.rfind(c));
}

CString& CString::TrimLeft() {
    text_.erase(text_.begin(), std::find_if_not(text_.begin(), text_.end(), IsBlank));
    return *this;
}

CString& CString::TrimRight() {
    text_.erase(std::find_if_not(text_.rbegin(), text_.rend(), IsBlank).base(), text_.end());
    return *this;
}

CString& CString::MakeUpper() {
    std::transform(text_.begin(), text_.end(), text_.begin(), Upper);
    return *this;
}

CString& CString::MakeLower() {
    std::transform(text_.begin(), text_.end(), text_.begin(), Lower);
    return *this;
}

void CString::Format(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    FormatV(format, arguments);
    va_end(arguments);
}

void CString::FormatV(const char* format, va_list arguments) {
    va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    std::string text(static_cast<std::size_t>(std::max(length, 0)), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    text_ = std::move(text);
}
