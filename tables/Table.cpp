#include "tables/Bytes.h"
#include "tables/ColumnBuilder.h"
#include "tables/CsvParser.h"
#include "tables/DialectGuess.h"

#include <zel/tables/Table.h>

#include <algorithm>
#include <charconv>
#include <utility>

namespace zel::tables {

// The cells of all rows, one behind the other.
struct Table::Texts {
    std::string bytes;
    std::vector<std::size_t> ends;  // of cells
    std::vector<std::size_t> rows;  // the first cell of each
};

namespace {

constexpr std::size_t kHead = 1 << 20;     // bytes from which a table is understood
constexpr std::size_t kBlock = 1 << 17;    // bytes
constexpr std::size_t kSampleRows = 4096;  // at most, from all over the file
constexpr double kTooManyUnread = 0.1;     // of the cells, for a form to stay

std::string NameFor(std::string_view cell, std::size_t column, const std::vector<std::string>& names) {
    std::string name = cell.empty() ? "column " + std::to_string(column + 1) : std::string(cell);
    const std::string plain = name;
    for (int k = 2; std::find(names.begin(), names.end(), name) != names.end(); ++k)
        name = plain + " (" + std::to_string(k) + ")";
    return name;
}

// Rows from all over the file, every so many; the more there are, the farther apart.
class SpreadSample {
  public:
    void Add(const std::vector<std::string_view>& row) {
        if (next_++ % stride_ != 0) return;
        if (rows_.size() == kSampleRows) {
            for (std::size_t i = 0; 2 * i < rows_.size(); ++i) rows_[i] = std::move(rows_[2 * i]);
            rows_.resize(kSampleRows / 2);
            stride_ *= 2;
            if ((next_ - 1) % stride_ != 0) return;
        }
        rows_.emplace_back(row.begin(), row.end());
    }
    // What stands in a column, without what is missing.
    std::vector<std::string_view> CellsOf(std::size_t column, const std::vector<std::string>& missing) const {
        std::vector<std::string_view> cells;
        for (const auto& row : rows_) {
            if (column >= row.size() || IsMissingValue(row[column])) continue;
            if (std::find(missing.begin(), missing.end(), row[column]) == missing.end())
                cells.emplace_back(row[column]);
        }
        return cells;
    }
    std::size_t Size() const { return rows_.size(); }

  private:
    std::vector<std::vector<std::string>> rows_;
    std::size_t stride_ = 1, next_ = 0;
};

// Hands on whole rows of trimmed fields, the header apart.
class RowParser : public CsvParser {
  public:
    using Row = std::vector<std::string_view>;
    RowParser(const Dialect& dialect, const std::string& source, std::function<void(const Row&)> header,
              std::function<void(const Row&)> row)
        : CsvParser(dialect.delimiter, source), header_(std::move(header)), row_(std::move(row)) {}

  protected:
    void OnField(std::string_view text) override {
        text = Trimmed(text);
        bytes_.append(text);
        ends_.push_back(bytes_.size());
    }
    void OnRow() override {
        cells_.clear();
        std::size_t begin = 0;
        for (const std::size_t end : ends_) {
            cells_.emplace_back(bytes_.data() + begin, end - begin);
            begin = end;
        }
        const bool isEmpty = bytes_.empty();
        if (isEmpty) {
            // Spreadsheets leave rows of nothing but delimiters.
        } else if (header_) {
            header_(cells_);
            header_ = nullptr;
        } else {
            row_(cells_);
        }
        bytes_.clear();
        ends_.clear();
    }

  private:
    std::function<void(const Row&)> header_, row_;
    std::string bytes_;
    std::vector<std::size_t> ends_;
    Row cells_;
};

}  // namespace

class TableReader {
  public:
    TableReader(ByteSource& source, const std::string& name, const ReadOptions& options)
        : source_(source), options_(options) {
        table_.name_ = name;
    }

    Table Read() {
        Understand();
        const SpreadSample sample = ReadRows(builders_);
        ReadAgain(sample);
        for (ColumnBuilder& builder : builders_) {
            table_.facts_.push_back(builder.Facts());
            table_.columns_.push_back(builder.Finish());
        }
        Note();
        table_.texts_ = std::move(texts_);
        return std::move(table_);
    }

  private:
    using Row = RowParser::Row;

    // From the beginning of the file: encoding, dialect, names, and the forms of columns.
    void Understand() {
        std::string head(kHead, '\0');
        head.resize(source_.Read(head.data(), head.size()));
        Dialect& dialect = table_.dialect_;
        const std::string encoding = options_.encoding.empty() ? EncodingOf(head) : options_.encoding;
        Decoder decoder(encoding);
        const std::string_view text = decoder.Decode(head, false);
        if (text.find('\0') != std::string_view::npos)
            throw FormatError("Cannot read \"" + table_.name_ +
                              "\" as a table: it holds bytes that no text has");
        dialect = GuessDialect(text, options_);
        dialect.encoding = encoding;
        SpreadSample sample;
        RowParser parser(dialect, table_.name_, HeaderTaker(), [&](const Row& row) {
            if (names_.empty()) NameByNumber(row);
            sample.Add(row);
        });
        // What the head cuts in two is not looked at.
        const std::string_view rows = WithoutLines(text, dialect.skip);
        const std::size_t end = head.size() < kHead ? rows.size() : rows.rfind('\n') + 1;
        try {
            parser.Feed(rows.substr(0, end));
            parser.Finish();
        } catch (const FormatError&) {
            if (head.size() < kHead) throw;
        }
        if (names_.empty())
            throw FormatError("Cannot use \"" + table_.name_ +
                              "\": it has no header row with the columns' names");
        for (std::size_t k = 0; k < names_.size(); ++k) builders_.push_back(BuilderFor(k, sample));
    }

    std::function<void(const Row&)> HeaderTaker() {
        if (!table_.dialect_.header) return nullptr;
        return [this](const Row& row) {
            if (!names_.empty()) return;
            for (std::size_t k = 0; k < row.size(); ++k) names_.push_back(NameFor(row[k], k, names_));
        };
    }
    void NameByNumber(const Row& row) {
        for (std::size_t k = 0; k < row.size(); ++k) names_.push_back(NameFor("", k, names_));
    }

    ColumnBuilder BuilderFor(std::size_t column, const SpreadSample& sample) const {
        return {names_[column],
                FormOf(sample.CellsOf(column, options_.missing), names_[column], table_.dialect_.decimal,
                       options_.dates),
                options_.missing};
    }

    // Reads all rows into the builders.
    SpreadSample ReadRows(std::vector<ColumnBuilder>& builders) {
        std::vector<ColumnBuilder*> all(builders.size());
        std::transform(builders.begin(), builders.end(), all.begin(),
                       [](ColumnBuilder& one) { return &one; });
        if (options_.keepTexts) texts_ = std::make_shared<Table::Texts>();
        SpreadSample sample;
        table_.rows_ = beyond_ = 0;
        ParseAll([&](const Row& row) {
            ++table_.rows_;
            sample.Add(row);
            TakeRow(row, all);
            CountBeyond(row);
            if (texts_) Keep(row);
        });
        return sample;
    }

    void ParseAll(const std::function<void(const Row&)>& take) {
        source_.Rewind();
        Decoder decoder(table_.dialect_.encoding);
        RowParser parser(table_.dialect_, table_.name_, HeaderTaker(), take);
        std::string block(kBlock, '\0');
        std::size_t skip = table_.dialect_.skip;
        for (bool more = true; more;) {
            const std::size_t n = source_.Read(block.data(), block.size());
            more = n == block.size();
            std::string_view text = decoder.Decode({block.data(), n}, !more);
            for (; skip > 0 && !text.empty(); --skip) {
                const std::size_t end = text.find('\n');
                if (end == std::string_view::npos) {
                    text = {};
                    break;
                }
                text.remove_prefix(end + 1);
            }
            parser.Feed(text);
        }
        parser.Finish();
    }

    // Null builders are passed over.
    void TakeRow(const Row& row, const std::vector<ColumnBuilder*>& builders) const {
        for (std::size_t k = 0; k < builders.size(); ++k) {
            if (!builders[k]) continue;
            if (k < row.size())
                builders[k]->Add(row[k], table_.rows_);
            else
                builders[k]->AddMissing();
        }
    }

    void CountBeyond(const Row& row) {
        if (row.size() <= names_.size()) return;
        const auto begin = row.begin() + static_cast<std::ptrdiff_t>(names_.size());
        const auto more = std::find_if(begin, row.end(), [](std::string_view cell) { return !cell.empty(); });
        if (more == row.end()) return;
        if (beyond_++ == 0) firstBeyond_ = *more;
    }

    void Keep(const Row& row) {
        texts_->rows.push_back(texts_->ends.size());
        for (const std::string_view cell : row) {
            texts_->bytes.append(cell);
            texts_->ends.push_back(texts_->bytes.size());
        }
    }

    // Where the beginning was not like the rest the form is found anew, from rows all over the file.
    void ReadAgain(const SpreadSample& sample) {
        std::vector<ColumnBuilder> again;
        again.reserve(builders_.size());
        std::vector<ColumnBuilder*> chosen(builders_.size(), nullptr);
        for (std::size_t k = 0; k < builders_.size(); ++k) {
            ColumnForm form = BetterForm(k, sample);
            if (form == builders_[k].Form()) continue;
            chosen[k] = &again.emplace_back(names_[k], std::move(form), options_.missing);
        }
        if (again.empty()) return;
        table_.rows_ = 0;
        ParseAll([&](const Row& row) {
            ++table_.rows_;
            TakeRow(row, chosen);
        });
        for (std::size_t k = 0, next = 0; k < builders_.size(); ++k)
            if (chosen[k]) std::swap(Slot(k), again[next++]);
    }
    ColumnBuilder& Slot(std::size_t k) { return builders_[k]; }

    ColumnForm BetterForm(std::size_t column, const SpreadSample& sample) const {
        const ColumnBuilder& builder = builders_[column];
        const ColumnFacts& facts = builder.Facts();
        ColumnForm form = builder.Form();
        if (facts.unread == 0) return form;
        if (form.isAmbiguous) {
            // A single day beyond the twelfth decides.
            const TimeForm other =
                form.time == TimeForm::DAY_FIRST ? TimeForm::MONTH_FIRST : TimeForm::DAY_FIRST;
            if (ReadTime(facts.examples.front().text, other)) {
                form.time = other;
                form.isAmbiguous = false;
                return form;
            }
        }
        const auto unread = static_cast<double>(facts.unread);
        if (unread <= kTooManyUnread * static_cast<double>(facts.present + facts.unread)) return form;
        return FormOf(sample.CellsOf(column, options_.missing), names_[column], table_.dialect_.decimal,
                      options_.dates);
    }

    void Note() {
        const std::string table = "\"" + table_.name_ + "\": ", all = std::to_string(table_.rows_);
        if (beyond_ > 0) {
            table_.notes_.push_back(table + std::to_string(beyond_) + " of " + all +
                                    " rows have more fields than the header has names (" +
                                    std::to_string(names_.size()) + "); these fields are left out, \"" +
                                    firstBeyond_ + "\" first. Fields with commas need quotes.");
        }
    }

    ByteSource& source_;
    const ReadOptions& options_;
    Table table_;
    std::vector<std::string> names_;
    std::vector<ColumnBuilder> builders_;
    std::shared_ptr<Table::Texts> texts_;
    std::size_t beyond_ = 0;
    std::string firstBeyond_;
};

Table Table::Read(const std::string& path, const ReadOptions& options) {
    const std::unique_ptr<ByteSource> source = ByteSource::Open(path);
    return TableReader(*source, path == "-" ? "standard input" : path, options).Read();
}

Table Table::Parse(std::string_view bytes, const std::string& name, const ReadOptions& options) {
    const std::unique_ptr<ByteSource> source = ByteSource::Of(bytes);
    return TableReader(*source, name, options).Read();
}

std::vector<std::string> Table::NotesOf(std::size_t column) const {
    std::vector<std::string> notes;
    const ColumnFacts& facts = facts_[column];
    const std::string table = "\"" + name_ + "\": ";
    if (facts.unread > 0) {
        const ColumnFacts::Unread& first = facts.examples.front();
        notes.push_back(table + std::to_string(facts.unread) + " of " + std::to_string(rows_) +
                        " values of the column \"" + facts.name + "\" are no " + NameOf(facts.kind) +
                        "s and are left out; the first is \"" + first.text + "\" in row " +
                        std::to_string(first.row) + ".");
    }
    if (facts.isAmbiguous) {
        notes.push_back(table + "the dates of the column \"" + facts.name +
                        "\" can be read with the day or the month first; " + facts.form + " was taken.");
    }
    return notes;
}

std::size_t Table::IndexOf(const std::string& column) const {
    for (std::size_t k = 0; k < facts_.size(); ++k)
        if (facts_[k].name == column) return k;
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(column.data(), column.data() + column.size(), number);
    if (error == std::errc() && end == column.data() + column.size() && number >= 1 &&
        number <= facts_.size())
        return number - 1;
    std::string known;
    for (const ColumnFacts& facts : facts_) known.append(known.empty() ? "" : ", ").append(facts.name);
    throw Error("Cannot find the column \"" + column + "\" in \"" + name_ + "\"; it has: " + known);
}

std::string_view Table::Text(std::size_t row, std::size_t column) const {
    if (!texts_ || row >= texts_->rows.size()) return {};
    const std::size_t cell = texts_->rows[row] + column;
    const std::size_t end = row + 1 < texts_->rows.size() ? texts_->rows[row + 1] : texts_->ends.size();
    if (cell >= end) return {};
    const std::size_t begin = cell == 0 ? 0 : texts_->ends[cell - 1];
    return std::string_view(texts_->bytes).substr(begin, texts_->ends[cell] - begin);
}

const char* NameOf(Kind kind) {
    switch (kind) {
        case Kind::EMPTY:
            return "value";
        case Kind::NUMBER:
            return "number";
        case Kind::TIME:
            return "time";
        case Kind::DURATION:
            return "duration";
        case Kind::BOOLEAN:
            return "boolean";
        case Kind::TEXT:
            return "text";
    }
    return "";
}

}  // namespace zel::tables
