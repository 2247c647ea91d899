// Connection strings.
#pragma once

#include <zel/platform/DatabaseDriver.h>

#include <string>

namespace zel::odbc {

// What the driver manager is given for an address: without the leading "ODBC;", with the data source that a
// name stands for, and with settings that a driver needs to deliver results in pieces and values in their own
// types. Settings that the address has already are left as they are.
std::string DriverString(const DatabaseAddress& address);

// A short name for messages, which must leave room for the database's own words: the data source, or the
// database and its server.
std::string SourceName(const DatabaseAddress& address);

}  // namespace zel::odbc
