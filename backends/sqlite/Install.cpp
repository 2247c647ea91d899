#include "backends/sqlite/Connection.h"

#include <zel/sqlite/Install.h>

namespace zel::sqlite {
namespace {

class Driver : public DatabaseDriver {
  public:
    bool Accepts(const DatabaseAddress& address) const override {
        return address.connect.empty() || HasConnectPrefix(address.connect, "SQLite");
    }
    std::unique_ptr<DatabaseConnection> Connect(const DatabaseAddress& address) override {
        return std::make_unique<Connection>(address);
    }
};

}  // namespace

void Install() {
    static const bool installed = [] {
        InstallDatabaseDriver(std::make_unique<Driver>());
        return true;
    }();
    (void)installed;
}

}  // namespace zel::sqlite
