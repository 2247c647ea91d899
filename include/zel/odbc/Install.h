// The ODBC driver: databases on servers.
#pragma once

namespace zel::odbc {

// Lets CDaoDatabase open what unixODBC has a driver for, with connection strings such as
//
//     "ODBC;DSN=weather;UID=me;PWD=secret"
//     "ODBC;DRIVER={PostgreSQL Unicode};SERVER=db.example.org;DATABASE=weather;UID=me;PWD=secret"
//
// or with "ODBC;" and the name of a data source. Safe to call more than once, before databases are opened.
void Install();

}  // namespace zel::odbc
