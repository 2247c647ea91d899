#include <zel/platform/Dao.h>
#include <zel/platform/DatabaseDriver.h>

#include <algorithm>
#include <cctype>

namespace zel {
namespace {

constexpr std::size_t kLongestShown = 160;

std::vector<std::unique_ptr<DatabaseDriver>>& Drivers() {
    static std::vector<std::unique_ptr<DatabaseDriver>> drivers;
    return drivers;
}

std::string Lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// The part of a connection string from `begin` to its semicolon. Braces hold semicolons together; two closing
// ones are a character of the value.
std::string PartAt(const std::string& connect, std::size_t begin) {
    bool braced = false;
    std::size_t end = begin;
    for (; end < connect.size() && (braced || connect[end] != ';'); ++end) {
        if (connect[end] == '{') braced = true;
        if (connect[end] != '}') continue;
        const bool doubled = braced && end + 1 < connect.size() && connect[end + 1] == '}';
        if (doubled) {
            ++end;
        } else {
            braced = false;
        }
    }
    return connect.substr(begin, end - begin);
}

bool NamesPassword(const std::string& text) {
    const std::string lower = Lower(text);
    const auto has = [&](const char* word) { return lower.find(word) != std::string::npos; };
    return has("pwd") || has("pass") || has("secret") || has("token");
}

// By the name of a setting; a value may hold settings of its own. What has no name is the rest of a value
// that lacked its braces.
bool MayHoldPassword(const std::string& part, bool first) {
    const std::size_t equals = part.find('=');
    if (equals == std::string::npos) return !first;
    const std::string value = part.substr(equals + 1);
    return NamesPassword(part.substr(0, equals)) ||
           (value.find('=') != std::string::npos && NamesPassword(value));
}

}  // namespace

DatabaseDriver::~DatabaseDriver() = default;
DatabaseConnection::~DatabaseConnection() = default;
DatabaseCursor::~DatabaseCursor() = default;

void DatabaseCursor::ReadKey(int column, COleVariant& value) {
    Read(column, value);
}

std::size_t DatabaseCursor::ReadNumbers(int, int, std::vector<double>&, std::vector<double>&, bool& ended) {
    ended = false;
    return 0;
}

void DatabaseConnection::SetSilenceLimit(int) {}
void DatabaseConnection::Cancel() {}

std::string DatabaseConnection::Quoted(const std::string& name) const {
    std::string quoted = "\"";
    for (const char c : name) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

std::string WithoutPasswords(const std::string& connect) {
    std::string kept;
    for (std::size_t begin = 0; begin < connect.size();) {
        const std::string part = PartAt(connect, begin);
        begin += part.size() + 1;
        const bool first = begin == part.size() + 1;
        if (part.empty() || MayHoldPassword(part, first)) continue;
        kept += part + ";";
    }
    return kept;
}

std::string BracedForConnect(const std::string& value) {
    std::string braced = "{";
    for (const char c : value) braced += c == '}' ? std::string("}}") : std::string(1, c);
    return braced + "}";
}

std::string DatabaseAddress::Shown() const {
    // A connection string may have been given for a name.
    const bool harmless = name.find('=') == std::string::npos || !NamesPassword(name);
    return "\"" +
           (name.empty() ? WithoutPasswords(connect)
            : harmless   ? name
                         : WithoutPasswords(name)) +
           "\"";
}

void InstallDatabaseDriver(std::unique_ptr<DatabaseDriver> driver) {
    Drivers().push_back(std::move(driver));
}

std::unique_ptr<DatabaseConnection> Connect(const DatabaseAddress& address) {
    const auto& drivers = Drivers();
    const auto driver = std::find_if(drivers.rbegin(), drivers.rend(),
                                     [&](const auto& one) { return one->Accepts(address); });
    if (driver != drivers.rend()) return (*driver)->Connect(address);
    ThrowDatabaseError(CDaoException::invalidArgument, "open", "the database " + address.Shown(),
                       "no driver for it is installed; zel::sqlite opens files, zel::odbc servers");
}

bool HasConnectPrefix(const std::string& connect, const char* prefix) {
    return Lower(connect.substr(0, connect.find(';'))) == Lower(prefix);
}

std::string ShownQuery(const std::string& sql) {
    if (sql.size() <= kLongestShown) return "\"" + sql + "\"";
    std::size_t end = kLongestShown;
    // Not within a character.
    while (end > 0 && (static_cast<unsigned char>(sql[end]) & 0xC0) == 0x80) --end;
    return "\"" + sql.substr(0, end) + "...\"";
}

void ThrowDatabaseError(long number, const std::string& attempt, const std::string& subject,
                        const std::string& words) {
    const std::string message = "Cannot " + attempt + " " + subject + ": " + words;
    throw new CDaoException(static_cast<LONG>(number), subject.c_str(), words.c_str(), message.c_str());
}

}  // namespace zel

IMPLEMENT_DYNAMIC(CDaoException, CException)

CDaoException::CDaoException(LONG code, const char* source, const char* description, const char* message)
    : CException(message), m_scode(code), info_{code, source, description} {}
