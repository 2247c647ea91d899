#include <zel/platform/Warning.h>

#include <cstdio>
#include <mutex>
#include <set>
#include <utility>

namespace zel {
namespace {

struct Warnings {
    std::mutex mutex;
    WarningHandler handler;
    std::set<std::string, std::less<>> given;
};

Warnings& TheWarnings() {
    static Warnings warnings;
    return warnings;
}

}  // namespace

WarningHandler SetWarningHandler(WarningHandler handler) {
    Warnings& warnings = TheWarnings();
    const std::lock_guard lock(warnings.mutex);
    return std::exchange(warnings.handler, std::move(handler));
}

void Warn(std::string_view message) {
    Warnings& warnings = TheWarnings();
    const std::lock_guard lock(warnings.mutex);
    if (warnings.given.contains(message)) return;
    const std::string& kept = *warnings.given.emplace(message).first;
    if (warnings.handler) {
        warnings.handler(kept);
    } else {
        std::fprintf(stderr, "warning: %s\n", kept.c_str());
    }
}

}  // namespace zel
