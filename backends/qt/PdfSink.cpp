#include "backends/qt/PdfSink.h"

#include "backends/qt/Deflate.h"

#include <charconv>
#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>

namespace zel::qt {
namespace {

// The number that a text begins with.
std::optional<std::int64_t> NumberAt(std::string_view text) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end != text.data() ? std::optional(number) : std::nullopt;
}

std::string_view ViewOf(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

}  // namespace

qint64 PdfSink::writeData(const char* data, qint64 count) {
    heard_ += count;
    if (taking_) {
        taken_.append(data, count);
        return count;
    }
    written_ += count;
    return FileSink::writeData(data, count);
}

qint64 PdfSink::PassOn(const QByteArray& bytes) {
    written_ += bytes.size();
    return FileSink::writeData(bytes.constData(), bytes.size());
}

void PdfSink::Take() {
    taking_ = true;
}

namespace {

// Of objects that stand one after another as "N 0 obj ... endobj"; none when there is something else.
std::vector<int> NumbersOf(std::string_view bytes) {
    constexpr std::string_view kBegin = " 0 obj", kEnd = "endobj\n";
    std::vector<int> numbers;
    while (!bytes.empty()) {
        const auto number = NumberAt(bytes);
        const std::size_t end = bytes.find(kEnd);
        if (!number || end == std::string_view::npos ||
            !bytes.substr(std::to_string(*number).size()).starts_with(kBegin))
            return {};
        numbers.push_back(static_cast<int>(*number));
        bytes.remove_prefix(end + kEnd.size());
    }
    return numbers;
}

}  // namespace

std::vector<int> PdfSink::Taken(std::size_t count) {
    taking_ = false;
    const QByteArray bytes = std::exchange(taken_, {});
    std::vector<int> numbers = NumbersOf(ViewOf(bytes));
    if (numbers.size() != count) {
        PassOn(bytes);
        return {};
    }
    shifts_[heard_] = written_ - heard_;
    return numbers;
}

void PdfSink::WriteStream(int object, const std::string& dictionary, const std::string& stream) {
    const Deflated packed(stream);
    places_[object] = written_;
    PassOn(QByteArray::fromStdString(std::to_string(object) + " 0 obj\n<<\n" + dictionary +
                                     "/Filter /FlateDecode\n/Length " + std::to_string(packed.View().size()) +
                                     "\n>>\nstream\n" + std::string(packed.View()) +
                                     "\nendstream\nendobj\n"));
    shifts_[heard_] = written_ - heard_;
}

std::int64_t PdfSink::ShiftAt(std::int64_t place) const {
    const auto next = shifts_.upper_bound(place);
    return next == shifts_.begin() ? 0 : std::prev(next)->second;
}

void PdfSink::TakeRest() {
    taking_ = !places_.empty();
}

// The rest ends with the place of the table; the table has a line of twenty bytes for each object.
bool PdfSink::Complete() {
    if (!std::exchange(taking_, false)) return true;
    QByteArray rest = std::exchange(taken_, {});
    const std::int64_t begin = heard_ - rest.size();
    constexpr std::string_view kStart = "startxref\n", kTable = "xref\n0 ";
    constexpr std::size_t kLine = 20;
    const std::string_view text = ViewOf(rest);
    const std::size_t start = text.rfind(kStart);
    const auto table =
        start == std::string_view::npos ? std::nullopt : NumberAt(text.substr(start + kStart.size()));
    const std::size_t at = table && *table >= begin ? static_cast<std::size_t>(*table - begin) : text.size();
    const bool found = at < text.size() && text.substr(at).starts_with(kTable);
    const auto count = found ? NumberAt(text.substr(at + kTable.size())) : std::nullopt;
    const std::size_t lines = found ? text.find('\n', at + kTable.size()) + 1 : text.size();
    if (!count || *count < 0 || lines + static_cast<std::size_t>(*count) * kLine > start) {
        PassOn(rest);
        return false;
    }
    for (int object = 1; object < *count; ++object) {
        const std::size_t line = lines + static_cast<std::size_t>(object) * kLine;
        const std::int64_t place = NumberAt(text.substr(line)).value_or(0);
        const auto exchanged = places_.find(object);
        char digits[kLine];
        std::snprintf(
            digits, sizeof digits, "%010lld",
            static_cast<long long>(exchanged != places_.end() ? exchanged->second : place + ShiftAt(place)));
        rest.replace(static_cast<qsizetype>(line), 10, digits, 10);
    }
    const std::size_t number = start + kStart.size();
    const qlonglong moved = *table + ShiftAt(*table);
    rest.replace(static_cast<qsizetype>(number), static_cast<qsizetype>(std::to_string(*table).size()),
                 QByteArray::number(moved));
    PassOn(rest);
    return true;
}

}  // namespace zel::qt
