// The framework's string: 8-bit characters, UTF-8 by convention.
#pragma once

#include <zel/platform/WinTypes.h>

#include <cstdarg>
#include <string>
#include <string_view>

class CString {
  public:
    CString() = default;
    CString(const char* text) : text_(text ? text : "") {}
    CString(const char* text, int length) : text_(text, static_cast<std::size_t>(length)) {}
    CString(std::string text) : text_(std::move(text)) {}
    CString(char c, int repeat) : text_(static_cast<std::size_t>(repeat), c) {}

    operator const char*() const { return text_.c_str(); }
    const std::string& GetString() const { return text_; }
    int GetLength() const { return static_cast<int>(text_.size()); }
    bool IsEmpty() const { return text_.empty(); }
    void Empty() { text_.clear(); }
    char GetAt(int i) const;
    void SetAt(int i, char c);
    // A writable buffer of at least `length` characters; ReleaseBuffer cuts the string to `length`, or at the
    // first zero when that is negative.
    char* GetBuffer(int length);
    void ReleaseBuffer(int length = -1);

    // Negative, zero or positive, by bytes.
    int Compare(const char* other) const { return text_.compare(other ? other : ""); }
    // Upper and lower case of A to Z taken as equal.
    int CompareNoCase(const char* other) const;

    CString Left(int count) const { return Mid(0, count); }
    CString Right(int count) const;
    CString Mid(int first) const { return Mid(first, GetLength()); }
    CString Mid(int first, int count) const;
    int Find(const char* part, int start = 0) const;
    int Find(char c, int start = 0) const;
    int ReverseFind(char c) const;
    CString& TrimLeft();
    CString& TrimRight();
    // Letters A to Z only.
    CString& MakeUpper();
    CString& MakeLower();

    // printf formats.
    void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void FormatV(const char* format, va_list arguments);

    // Message inserts: %1 to %99 stand for arguments in any order, "%1!fmt!" gives the printf format of the
    // argument (a string without one), "%%" is a percent sign, "%n" a line end, "%0" ends the text, "%." and
    // "%!" are these characters, "% " a blank. Anything else behind a percent sign stays as it stands, and so
    // does a trailing one.
    void FormatMessage(const char* format, ...);
    void FormatMessageV(const char* format, va_list* arguments);
    // The same with `count` arguments: an insert beyond them is left as it stands. With a count of 0 the list
    // is never read.
    void FormatMessageV(const char* format, va_list* arguments, int count);

    CString& operator+=(const char* text) {
        text_ += text ? text : "";
        return *this;
    }
    CString& operator+=(const CString& text) {
        text_ += text.text_;
        return *this;
    }
    CString& operator+=(char c) {
        text_ += c;
        return *this;
    }
    friend CString operator+(const CString& a, const CString& b) { return a.text_ + b.text_; }
    friend CString operator+(const CString& a, const char* b) { return a.text_ + (b ? b : ""); }
    friend CString operator+(const char* a, const CString& b) { return (a ? a : "") + b.text_; }
    friend bool operator==(const CString& a, const CString& b) { return a.text_ == b.text_; }
    friend bool operator==(const CString& a, const char* b) { return a.text_ == (b ? b : ""); }
    friend bool operator<(const CString& a, const CString& b) { return a.text_ < b.text_; }

  private:
    std::string text_;
};
