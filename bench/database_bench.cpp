// A million points from SQLite and from PostgreSQL, beside bare loops over SQLite's and ODBC's C interfaces
// that do nothing but store the same points.
#include "tests/database/PostgresServer.h"

#include <zel/Zel2DaoPointSet.h>
#include <zel/odbc/Install.h>
#include <zel/platform/Exception.h>
#include <zel/sqlite/Install.h>

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sql.h>
#include <sqlext.h>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kPoints = 1'000'000;
constexpr const char* kQuery = "SELECT x,y FROM points";
constexpr const char* kFill =
    "INSERT INTO points WITH RECURSIVE c(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM c WHERE n < 1000000) "
    "SELECT n * 0.001, sin(n * 0.001) FROM c";

std::string sqliteFile;
std::unique_ptr<zel::test::PostgresServer> server;

// The most memory that the process has had since the last call with `restart`, in megabytes.
double PeakMegabytes(bool restart) {
    if (restart) std::ofstream("/proc/self/clear_refs") << "5";
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) return std::atof(line.c_str() + 6) / 1024;
    }
    return 0;
}

void Require(bool good, const char* what) {
    if (good) return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

void Count(benchmark::State& state, double megabytesBefore) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kPoints));
    state.counters["peak_MB"] = PeakMegabytes(false) - megabytesBefore;
}

void Fill(benchmark::State& state, const std::string& name, const std::string& connect) {
    CDaoDatabase database;
    database.Open(name.c_str(), FALSE, TRUE, connect.c_str());
    const double before = PeakMegabytes(true);
    for (auto _ : state) {
        Zel2DaoPointSet points;
        Require(points.Create(&database, "points", "x", "y") == 1 && points.NPoints() == kPoints,
                "not filled");
    }
    Count(state, before);
}

void BareSqlite(benchmark::State& state) {
    sqlite3* database = nullptr;
    const int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX;
    Require(sqlite3_open_v2(sqliteFile.c_str(), &database, flags, nullptr) == SQLITE_OK, "cannot open");
    const double before = PeakMegabytes(true);
    for (auto _ : state) {
        std::vector<double> xs, ys;
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(database, kQuery, -1, &statement, nullptr);
        while (sqlite3_step(statement) == SQLITE_ROW) {
            xs.push_back(sqlite3_column_double(statement, 0));
            ys.push_back(sqlite3_column_double(statement, 1));
        }
        sqlite3_finalize(statement);
        Require(ys.size() == kPoints, "not read");
    }
    Count(state, before);
    sqlite3_close(database);
}

void BareOdbc(benchmark::State& state, const std::string& settings) {
    SQLHENV environment = nullptr;
    SQLHDBC connection = nullptr;
    SQLAllocHandle(SQL_HANDLE_ENV, nullptr, &environment);
    SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
    std::string connect = server->Connect().substr(5) + settings;
    Require(SQL_SUCCEEDED(SQLDriverConnect(connection, nullptr, reinterpret_cast<SQLCHAR*>(connect.data()),
                                           SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT)),
            "cannot connect");
    const double before = PeakMegabytes(true);
    for (auto _ : state) {
        std::vector<double> xs, ys;
        SQLHSTMT statement = nullptr;
        SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement);
        std::string query = kQuery;
        SQLExecDirect(statement, reinterpret_cast<SQLCHAR*>(query.data()), SQL_NTS);
        double x = 0, y = 0;
        SQLLEN xLength = 0, yLength = 0;
        SQLBindCol(statement, 1, SQL_C_DOUBLE, &x, sizeof x, &xLength);
        SQLBindCol(statement, 2, SQL_C_DOUBLE, &y, sizeof y, &yLength);
        while (SQL_SUCCEEDED(SQLFetch(statement))) {
            xs.push_back(x);
            ys.push_back(y);
        }
        SQLFreeHandle(SQL_HANDLE_STMT, statement);
        Require(ys.size() == kPoints, "not read");
    }
    Count(state, before);
    SQLDisconnect(connection);
    SQLFreeHandle(SQL_HANDLE_DBC, connection);
    SQLFreeHandle(SQL_HANDLE_ENV, environment);
}

void MakeDatabases(const std::filesystem::path& folder) {
    zel::sqlite::Install();
    zel::odbc::Install();
    sqliteFile = (folder / "points.sqlite").string();
    CDaoDatabase file;
    file.Create(sqliteFile.c_str());
    server = std::make_unique<zel::test::PostgresServer>();
    CDaoDatabase remote;
    remote.Open("", FALSE, FALSE, server->Connect().c_str());
    for (CDaoDatabase* database : {&file, &remote}) {
        database->Execute("CREATE TABLE points (x DOUBLE PRECISION, y DOUBLE PRECISION)");
        database->Execute(kFill);
    }
    remote.Execute("ANALYZE points");
}

int Run(int argc, char** argv, const std::filesystem::path& folder) {
    MakeDatabases(folder);
    const auto add = [](const char* name, auto function) {
        benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMillisecond)->UseRealTime();
    };
    add("FillFromSqlite", [](benchmark::State& state) { Fill(state, sqliteFile, ""); });
    add("BareSqlite", BareSqlite);
    add("FillFromPostgres", [](benchmark::State& state) { Fill(state, "", server->Connect()); });
    add("BareOdbc", [](benchmark::State& state) { BareOdbc(state, ""); });
    add("BareOdbcInPieces",
        [](benchmark::State& state) { BareOdbc(state, "UseDeclareFetch=1;Fetch=4096;"); });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    server.reset();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::string pattern = (std::filesystem::temp_directory_path() / "zel-bench-XXXXXX").string();
    const std::filesystem::path folder = mkdtemp(pattern.data());
    int code = 1;
    try {
        code = Run(argc, argv, folder);
    } catch (CException* e) {
        std::fprintf(stderr, "%s\n", zel::TakeMessage(e).c_str());
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
    }
    std::filesystem::remove_all(folder);
    return code;
}
