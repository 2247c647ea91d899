#include "backends/odbc/Connection.h"

#include <zel/odbc/Install.h>

namespace zel::odbc {
namespace {

class Driver : public DatabaseDriver {
  public:
    bool Accepts(const DatabaseAddress& address) const override {
        return HasConnectPrefix(address.connect, "ODBC");
    }
    std::unique_ptr<DatabaseConnection> Connect(const DatabaseAddress& address) override {
        if (!environment_) {
            environment_ = Handle(SQL_HANDLE_ENV, nullptr);
            SQLSetEnvAttr(environment_.Get(), SQL_ATTR_ODBC_VERSION,
                          reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
        }
        return std::make_unique<Connection>(environment_.Get(), address);
    }

  private:
    Handle environment_;  // made when the first database is opened
};

}  // namespace

void Install() {
    static const bool installed = [] {
        InstallDatabaseDriver(std::make_unique<Driver>());
        return true;
    }();
    (void)installed;
}

}  // namespace zel::odbc
