// Fields and rows of a text, one after another.
#pragma once

#include <cstddef>
#include <csv.h>
#include <string>
#include <string_view>

namespace zel::tables {

// Splits UTF-8 text into fields. Fields in double quotes may hold delimiters, line ends and doubled quotes.
// A blank as the delimiter stands for any number of blanks. Lines that begin with '#' before the first row
// are passed over, and so are empty lines.
class CsvParser {
  public:
    virtual ~CsvParser();
    CsvParser(const CsvParser&) = delete;
    CsvParser& operator=(const CsvParser&) = delete;

    // Throws FormatError that names `source` and the row, for a quote that is never closed.
    void Feed(std::string_view text);
    void Finish();
    // Rows that have ended.
    std::size_t Rows() const { return rows_; }

  protected:
    CsvParser(char delimiter, std::string source);
    // A field, valid for the call, and the end of a row.
    virtual void OnField(std::string_view text) = 0;
    virtual void OnRow() = 0;
    // Ends the parsing at the end of this row.
    void Stop() { stopped_ = true; }

  private:
    static void TakeField(void* text, std::size_t length, void* parser);
    static void TakeRow(int end, void* parser);
    std::string_view SkipComments(std::string_view text);
    std::string_view JoinBlanks(std::string_view text);
    [[noreturn]] void Fail();

    csv_parser parser_{};
    std::string source_;
    bool blanks_;
    bool inComment_ = false, started_ = false;
    // Of blanks: within quotes; at the beginning of a line; a run that has not been written.
    bool inQuotes_ = false, atBegin_ = true, pending_ = false;
    std::string joined_;
    std::size_t rows_ = 0;
    bool stopped_ = false;
};

}  // namespace zel::tables
