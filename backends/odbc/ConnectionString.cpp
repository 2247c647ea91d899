#include "backends/odbc/ConnectionString.h"

#include "backends/odbc/Api.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace zel::odbc {
namespace {

std::string Lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// The value of a key, without its braces; empty when it is not there.
std::string ValueOf(const std::string& settings, const std::string& key) {
    const std::string lower = ";" + Lower(settings);
    const std::size_t found = lower.find(";" + key + "=");
    if (found == std::string::npos) return {};
    const std::size_t begin = found + key.size() + 1;  // in `settings`, which has no leading semicolon
    if (begin < settings.size() && settings[begin] == '{') {
        const std::size_t end = settings.find('}', begin);
        return settings.substr(begin + 1, end == std::string::npos ? end : end - begin - 1);
    }
    const std::size_t end = settings.find(';', begin);
    return settings.substr(begin, end == std::string::npos ? end : end - begin);
}

bool HasKey(const std::string& settings, const std::string& key) {
    return (";" + Lower(settings)).find(";" + Lower(key) + "=") != std::string::npos;
}

// The driver that a data source names in the user's or the system's list.
std::string DriverOfSource(const std::string& source) {
    std::array<char, 512> driver{};
    SQLGetPrivateProfileString(source.c_str(), "Driver", "", driver.data(), static_cast<int>(driver.size()),
                               "odbc.ini");
    return driver.data();
}

bool IsPostgres(const std::string& settings) {
    std::string driver = ValueOf(settings, "driver");
    if (driver.empty() && HasKey(settings, "dsn")) driver = DriverOfSource(ValueOf(settings, "dsn"));
    const std::string lower = Lower(driver);
    return lower.find("postgres") != std::string::npos || lower.find("psql") != std::string::npos;
}

// Left alone the driver fetches a whole result before it delivers its first row, calls truth values texts,
// may end a whole transaction for one mistake in it, and waits for ever for a server that a broken network
// has cut off.
constexpr const char* kPostgresSettings[][2] = {
    {"UseDeclareFetch", "1"},
    {"Fetch", "4096"},
    {"BoolsAsChar", "0"},
    {"TrueIsMinus1", "0"},
    {"Protocol", "7.4-2"},
    {"pqopt", "{keepalives_idle=20 keepalives_interval=10 keepalives_count=3 tcp_user_timeout=60000}"}};

}  // namespace

std::string SourceName(const DatabaseAddress& address) {
    const std::string source = ValueOf(address.connect, "dsn");
    if (!source.empty()) return "\"" + source + "\"";
    if (!address.name.empty()) return address.Shown();
    const std::string server = ValueOf(address.connect, "server"),
                      database = ValueOf(address.connect, "database");
    if (server.empty() && database.empty()) return address.Shown();
    const std::string port = ValueOf(address.connect, "port");
    return "\"" + database + "\" at " + server + (port.empty() ? "" : ":" + port);
}

std::string DriverString(const DatabaseAddress& address) {
    const std::size_t prefix = address.connect.find(';');
    std::string settings = prefix == std::string::npos ? "" : address.connect.substr(prefix + 1);
    if (!settings.empty() && settings.back() != ';') settings += ';';
    if (!address.name.empty() && !HasKey(settings, "DSN") && !HasKey(settings, "DRIVER"))
        settings = "DSN=" + address.name + ";" + settings;
    if (IsPostgres(settings)) {
        for (const auto& [key, value] : kPostgresSettings) {
            if (!HasKey(settings, key)) settings += std::string(key) + "=" + value + ";";
        }
    }
    return settings;
}

}  // namespace zel::odbc
