// CString's message inserts.
#include <zel/platform/String.h>

#include <array>
#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <variant>
#include <vector>

namespace {

constexpr int kMostInserts = 99;

using Argument = std::variant<int, long, long long, double, const char*, const void*>;

struct Insert {
    int number;          // from 1
    std::string format;  // what follows the percent sign of a printf format: "s", "5.2f"
    std::size_t length;  // characters of the message after the percent sign
};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The insert whose number begins at `text`; nothing when it is none.
std::optional<Insert> ParseInsert(std::string_view text) {
    if (text.empty() || text[0] < '1' || text[0] > '9') return std::nullopt;
    Insert insert{text[0] - '0', "s", 1};
    if (text.size() > 1 && IsDigit(text[1])) {
        insert.number = insert.number * 10 + (text[1] - '0');
        insert.length = 2;
    }
    if (insert.length < text.size() && text[insert.length] == '!') {
        const std::size_t end = text.find('!', insert.length + 1);
        if (end != std::string_view::npos && end > insert.length + 1) {
            insert.format = text.substr(insert.length + 1, end - insert.length - 1);
            insert.length = end + 1;
        }
    }
    return insert;
}

// A printf format of exactly one conversion without "*" or "n".
bool IsUsableFormat(const std::string& format) {
    const std::size_t conversion = format.find_first_not_of("-+ #0123456789.hlLqjzt");
    return conversion != std::string::npos && conversion + 1 == format.size() &&
           std::string_view("diouxXcsSpeEfFgGaA").find(format[conversion]) != std::string_view::npos;
}

Argument Take(const std::string& format, va_list* arguments) {
    const char conversion = format.back();
    const bool longLong =
        format.find("ll") != std::string::npos || format.find_first_of("qj") != std::string::npos;
    const bool isLong = format.find_first_of("lzt") != std::string::npos;
    if (std::string_view("eEfFgGaA").find(conversion) != std::string_view::npos)
        return va_arg(*arguments, double);
    if (conversion == 's' || conversion == 'S') return va_arg(*arguments, const char*);
    if (conversion == 'p') return va_arg(*arguments, const void*);
    if (longLong) return va_arg(*arguments, long long);
    if (isLong) return va_arg(*arguments, long);
    return va_arg(*arguments, int);
}

std::string Printed(std::string format, const Argument& argument) {
    std::array<char, 512> small{};
    format.insert(format.begin(), '%');
    if (format.back() == 'S') format.back() = 's';
    std::erase(format, 'L');  // long doubles do not travel as message arguments
    return std::visit(
        [&](auto value) {
            using Value = decltype(value);
            const auto print = [&](char* to, std::size_t room) {
                if constexpr (std::is_same_v<Value, const char*>) {
                    return std::snprintf(to, room, format.c_str(), value ? value : "(null)");
                } else {
                    return std::snprintf(to, room, format.c_str(), value);
                }
            };
            const int length = print(small.data(), small.size());
            if (length < 0) return std::string();
            if (static_cast<std::size_t>(length) < small.size()) {
                return std::string(small.data(), static_cast<std::size_t>(length));
            }
            std::string text(static_cast<std::size_t>(length), '\0');
            print(text.data(), text.size() + 1);
            return text;
        },
        argument);
}

// The arguments in order, each of the type that the first insert of its number asks for. A number that no
// insert names between two others is read as a string, which takes the same place in the list.
std::vector<Argument> TakeArguments(std::string_view message, va_list* arguments, int count) {
    std::array<std::string, kMostInserts + 1> formats;
    int highest = 0;
    for (std::size_t at = message.find('%'); at != std::string_view::npos; at = message.find('%', at)) {
        const auto insert = ParseInsert(message.substr(++at));
        if (!insert) {
            if (at < message.size() && message[at] == '0') break;
            if (at < message.size()) ++at;
            continue;
        }
        at += insert->length;
        if (insert->number > count || !IsUsableFormat(insert->format)) continue;
        std::string& format = formats[static_cast<std::size_t>(insert->number)];
        if (format.empty()) format = insert->format;
        highest = std::max(highest, insert->number);
    }
    std::vector<Argument> taken;
    for (int i = 1; i <= highest; ++i) {
        const std::string& format = formats[static_cast<std::size_t>(i)];
        taken.push_back(Take(format.empty() ? "s" : format, arguments));
    }
    return taken;
}

}  // namespace

void CString::FormatMessage(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    FormatMessageV(format, &arguments);
    va_end(arguments);
}

void CString::FormatMessageV(const char* format, va_list* arguments) {
    FormatMessageV(format, arguments, kMostInserts);
}

void CString::FormatMessageV(const char* format, va_list* arguments, int count) {
    const std::string_view message(format ? format : "");
    const std::vector<Argument> values = TakeArguments(message, arguments, count);
    std::string text;
    for (std::size_t at = 0; at < message.size(); ++at) {
        if (message[at] != '%' || at + 1 == message.size()) {
            text += message[at];
            continue;
        }
        if (const auto insert = ParseInsert(message.substr(at + 1))) {
            const auto index = static_cast<std::size_t>(insert->number - 1);
            if (index < values.size() && IsUsableFormat(insert->format)) {
                text += Printed(insert->format, values[index]);
            } else {
                text += message.substr(at, insert->length + 1);
            }
            at += insert->length;
            continue;
        }
        const char escape = message[++at];
        if (escape == '0') break;
        if (escape == 'n') {
            text += '\n';
        } else if (escape == '%' || escape == '.' || escape == '!' || escape == ' ') {
            text += escape;
        } else {
            text += '%';
            text += escape;
        }
    }
    text_ = std::move(text);
}
