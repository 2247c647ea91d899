#include "database/Databases.h"

#include <zel/platform/DatabaseDriver.h>
#include <zel/zel.h>

#include <arpa/inet.h>
#include <chrono>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using zel::test::MessageOf;
using Clock = std::chrono::steady_clock;

double SecondsOf(const std::function<void()>& action) {
    const auto begin = Clock::now();
    action();
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

// A port that takes connections and never says a word.
class SilentServer {
  public:
    SilentServer() : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        bind(socket_, reinterpret_cast<sockaddr*>(&address), size);
        listen(socket_, 5);
        getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
    }
    ~SilentServer() { close(socket_); }
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;
    int Port() const { return port_; }

  private:
    int socket_;
    int port_ = 0;
};

class BadDatabases : public zel::test::EachDatabase {
  protected:
    static std::string OpenMessage(const std::string& name, const std::string& connect = "") {
        CDaoDatabase database;
        database.SetLoginTimeout(2);
        return MessageOf<CDaoException>([&] { database.Open(name.c_str(), FALSE, TRUE, connect.c_str()); });
    }
    // Rows n = 1 to 20000.
    void FillNumbers() {
        Run("CREATE TABLE numbers (n INTEGER, half DOUBLE PRECISION)");
        Run("INSERT INTO numbers WITH RECURSIVE c(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM c WHERE n < "
            "20000) "
            "SELECT n, n / 2.0 FROM c");
    }
    Zel2DaoPointSet points_;
};

TEST_P(BadDatabases, AreRefusedByName) {
    if (IsSqlite()) {
        EXPECT_THAT(OpenMessage("/no/such.sqlite"),
                    AllOf(HasSubstr("/no/such.sqlite"), HasSubstr("No such file")));
        EXPECT_THAT(OpenMessage("/tmp"), HasSubstr("it is a folder"));
        std::ofstream(folder_ / "text") << std::string(5000, 'x');
        EXPECT_THAT(OpenMessage(folder_ / "text"), HasSubstr("file is not a database"));
        CDaoDatabase database;
        EXPECT_THAT(MessageOf<CDaoException>([&] { database.Create((folder_ / "text").c_str()); }),
                    HasSubstr("there is a file of that name"));
        EXPECT_THAT(OpenMessage("x", "Oracle;"), HasSubstr("no driver for it is installed"));
        return;
    }
    EXPECT_THAT(OpenMessage("no such source", "ODBC;PWD=secret"),
                AllOf(HasSubstr("Data source name not found"), Not(HasSubstr("secret"))));
    const std::string server =
        "ODBC;DRIVER={PostgreSQL Unicode};SERVER=127.0.0.1;DATABASE=postgres;UID=zel;PWD=secret;";
    EXPECT_THAT(OpenMessage("", server + "PORT=1"), AllOf(HasSubstr("refused"), Not(HasSubstr("secret"))));
    const SilentServer silent;
    const double seconds = SecondsOf([&] {
        EXPECT_THAT(OpenMessage("", server + "PORT=" + std::to_string(silent.Port())), HasSubstr("timeout"));
    });
    EXPECT_LT(seconds, 10);
    EXPECT_THAT(OpenMessage("", zel::test::SharedServer().Connect() + "DATABASE=none"),
                HasSubstr("\"none\""));
}

TEST_P(BadDatabases, AreNotWaitedForWhenTheyAreLocked) {
    FillNumbers();
    CDaoDatabase other;
    Open(other);
    if (IsSqlite()) {
        other.Execute("BEGIN EXCLUSIVE");
    } else {
        other.BeginTrans();
        other.Execute("LOCK TABLE numbers IN ACCESS EXCLUSIVE MODE");
    }
    points_.Append(1, 1);
    database_.SetQueryTimeout(1);
    const char* words = IsSqlite() ? "database is locked" : "timeout";
    const double seconds =
        SecondsOf([&] { EXPECT_EQ(points_.Create(&database_, "numbers", "n", "half"), 0); });
    EXPECT_THAT(messages_.Take(), ElementsAre(AllOf(HasSubstr("'numbers'"), HasSubstr(words))));
    EXPECT_LT(seconds, 10);
    EXPECT_THAT(MessageOf<CDaoException>([&] { database_.Execute("DELETE FROM numbers"); }),
                HasSubstr(words));
    EXPECT_EQ(points_.NPoints(), 1U);
    other.Close();  // rolls back
    EXPECT_EQ(points_.Create(&database_, "numbers", "n", "half"), 1);
    EXPECT_EQ(points_.NPoints(), 20000U);
}

TEST_P(BadDatabases, KeepWhatTheyDeliveredBeforeTheyBroke) {
    FillNumbers();
    int created = 1;
    if (IsSqlite()) {
        database_.Close();
        // The end of the file is another's.
        const std::string file = folder_ / "test.sqlite";
        const auto size = static_cast<std::streamoff>(std::filesystem::file_size(file));
        std::fstream bytes(file, std::ios::in | std::ios::out | std::ios::binary);
        bytes.seekp(size / 2);
        bytes << std::string(static_cast<std::size_t>(size - size / 2), '\xFF');
        bytes.close();
        Open(database_);
        created = points_.Create(&database_, "numbers", "n", "half");
        EXPECT_THAT(messages_.Take(), ElementsAre(AllOf(HasSubstr("'numbers'"), HasSubstr("malformed"))));
    } else {
        created = points_.Create(&database_, "numbers", "n", "half",
                                 "n < 15000 OR pg_terminate_backend(pg_backend_pid())");
        EXPECT_THAT(messages_.Take(), ElementsAre(AllOf(HasSubstr("'numbers'"), HasSubstr("connection"))));
    }
    EXPECT_EQ(created, 0);
    EXPECT_GT(points_.NPoints(), 4000U);
    EXPECT_LT(points_.NPoints(), 20000U);
    EXPECT_EQ(points_.Y(3999), 2000);
}

// One query's mistake is no other query's end.
TEST_P(BadDatabases, GoOnBesideMistakes) {
    FillNumbers();
    CDaoRecordset reading(&database_);
    reading.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT n FROM numbers");
    reading.MoveNext();
    CDaoRecordset bad(&database_);
    EXPECT_NE(
        MessageOf<CDaoException>([&] { bad.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT nope FROM numbers"); }),
        "");
    EXPECT_FALSE(bad.IsOpen());
    CDaoRecordset other(&database_);
    other.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT COUNT(*) FROM numbers");
    int left = 0;
    for (; !reading.IsEOF(); reading.MoveNext()) ++left;
    EXPECT_EQ(left, 19999);
    database_.BeginTrans();
    Run("DELETE FROM numbers WHERE n > 10");
    EXPECT_NE(MessageOf<CDaoException>([&] { Run("DELETE FROM nothing"); }), "");
    database_.Rollback();
    other.Requery();
    EXPECT_EQ(double(DBField(&other, 0, false)), 20000);
}

// A document says what is read: whatever stands in it, nothing is changed. Each text hides its command or its
// effect in another way; several run on one connection, so that none may free those that follow.
TEST_P(BadDatabases, AreNotChangedByWhatIsRead) {
    Run("CREATE TABLE victim (a INTEGER, x DOUBLE PRECISION, t VARCHAR(9))");
    Run("INSERT INTO victim VALUES (1, 1, 'a'), (2, 2, 'b'), (3, 3, 'it''s; x')");
    if (!IsSqlite()) Run("CREATE SEQUENCE sq");
    const auto left = [&] {
        CDaoRecordset records(&database_);
        records.Open(AFX_DAO_USE_DEFAULT_TYPE,
                     IsSqlite() ? "SELECT COUNT(*) FROM victim"
                                : "SELECT (SELECT COUNT(*) FROM victim) + (SELECT COUNT(*) FROM "
                                  "pg_largeobject_metadata) + (SELECT is_called::int FROM sq)");
        return double(DBField(&records, 0, false));
    };
    constexpr const char* kSecond[] = {"x<10 /* ' */; delete from victim where a=1 /* ' */",
                                       "t <> E'\\''; delete from victim; --'",
                                       "t <> E'a''b\\'' || '\\'; delete from victim; --'",
                                       "t <> 1e'\\''; delete from victim; --'",
                                       "t <> '\\'; delete from victim; --'",
                                       "t <> $$'$$; delete from victim; --'",
                                       "t <> $a$ $b$ ' $a$; commit; delete from victim; --'",
                                       "x < 9 /* /* */ ; delete from victim; /* */ */",
                                       "x < 9 /*! ; delete from victim */",
                                       "x < 9 --; ' \n; delete from victim --'",
                                       "x < 9 and t <> {fn concat('a', 'b')}; delete from victim"};
    constexpr const char* kCalls[] = {
        "nextval('sq')",
        "lo_create(4710 + a)",
        "length(set_config('default_transaction_read_only', 'off', false))",
        "length(set_config('transaction_read_only', 'off', false))",
        "length(set_config('standard_conforming_strings', 'off', false))",
        "length(query_to_xml('delete from victim returning a', true, true, '')::text)",
        "nextval('sq')"};
    for (const bool readOnly : {true, false}) {
        CDaoDatabase database;
        Open(database, readOnly);
        for (const char* where : kSecond) {
            const int created = points_.Create(&database, "victim", "x", "a", where);
            EXPECT_EQ(left(), 3) << where;
            const std::vector<std::string> told = messages_.Take();
            if (IsSqlite()) continue;  // some of them are comments there
            EXPECT_EQ(created, 0) << where;
            EXPECT_THAT(told, ElementsAre(HasSubstr("more than one command"))) << where;
        }
        EXPECT_EQ(points_.Create(&database, "victim", "x", "a", "t = 'it''s; x' /* ; */ -- ;"), 1)
            << "no command";
        EXPECT_THAT(messages_.Take(), testing::IsEmpty());
        for (const char* y : kCalls) {
            if (IsSqlite() || !readOnly) break;
            points_.Create(&database, "victim", "x", y);
            EXPECT_EQ(left(), 3) << y;
            messages_.Take();
        }
        // Two at once, one of them failing; the other goes on.
        CDaoRecordset first(&database);
        first.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT a FROM victim ORDER BY a");
        EXPECT_EQ(points_.Create(&database, "victim", "x", "nope"), 0);
        EXPECT_EQ(messages_.Take().size(), 1U);
        EXPECT_EQ(points_.Create(&database, "victim", "x", "a"), 1);
        first.MoveNext();
        EXPECT_EQ(double(DBField(&first, 0, false)), 2);
    }
    Run("DROP TABLE victim");  // nobody holds it any more
}

INSTANTIATE_ON_EACH_DATABASE(BadDatabases);

TEST(Connections, LoseTheirPasswords) {
    EXPECT_EQ(zel::WithoutPasswords("ODBC;DSN=a;PWD={x;y};UID=me;Password=z;pqopt={sslpassword=q}"),
              "ODBC;DSN=a;UID=me;");
    EXPECT_EQ(zel::WithoutPasswords("ODBC;SERVER=compass;DATABASE={pass;age};PWD={a}};x=b};UID=me"),
              "ODBC;SERVER=compass;DATABASE={pass;age};UID=me;");
    EXPECT_EQ(zel::WithoutPasswords("ODBC;PWD=no;braces;UID=me"), "ODBC;UID=me;");
    EXPECT_EQ(zel::WithoutPasswords(""), "");
}

// Once by the clock, once by another thread.
TEST(Servers, CanFreezeWhileTheyAreRead) {
    zel::test::PostgresServer server;
    for (const bool cancelled : {false, true}) {
        CDaoDatabase database;
        database.SetSilenceLimit(cancelled ? 0 : 2);
        database.Open("", FALSE, TRUE, server.Connect().c_str());
        CDaoRecordset records(&database);
        records.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT n FROM generate_series(1, 300000) AS g(n)");
        server.Freeze();
        std::thread other([&] {
            std::this_thread::sleep_for(std::chrono::seconds(1));
            if (cancelled) database.Cancel();
        });
        std::string message;
        const double seconds = SecondsOf([&] {
            message = MessageOf<CDaoException>([&] {
                while (!records.IsEOF()) records.MoveNext();
            });
            records.Close();
            database.Close();
        });
        other.join();
        EXPECT_THAT(message, HasSubstr(cancelled ? "it was cancelled" : "no sign of life for 2 seconds"));
        EXPECT_LT(seconds, 20);
        server.Thaw();
    }
}

TEST(Servers, CanDieWhileTheyAreRead) {
    zel::test::PostgresServer server;
    zel::test::MessageLog messages;
    CDaoDatabase database;
    database.Open("", FALSE, FALSE, server.Connect().c_str());
    CDaoRecordset records(&database);
    records.Open(AFX_DAO_USE_DEFAULT_TYPE, "SELECT n FROM generate_series(1, 20000) AS g(n)");
    server.Kill();
    int seen = 0;
    const std::string message = MessageOf<CDaoException>([&] {
        for (; !records.IsEOF(); records.MoveNext()) ++seen;
    });
    EXPECT_NE(message, "");
    EXPECT_GT(seen, 100);
    EXPECT_NE(MessageOf<CDaoException>([&] { database.Execute("SELECT 1"); }), "");
}

}  // namespace
