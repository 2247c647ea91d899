// ODBC's headers, made to live with ours.
#pragma once

#include <odbcinst.h>
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

// They make this name a macro; ours is a type.
#undef BOOL
