// Examples made for tests.
#pragma once

#include "Support.h"
#include "examples/gallery.h"

#include <cstdlib>
#include <memory>
#include <ostream>
#include <string>

// For the names of tests.
inline void PrintTo(const Example& example, std::ostream* out) {
    *out << example.name;
}

namespace zel::test {

// The example on the data of a folder. What it stores meanwhile lies in a folder of its own, since tests run
// at the same time.
inline std::unique_ptr<Zel2Main> MakeExample(const Example& example, const std::string& data) {
    const TemporaryFolder own;
    const char* const before = std::getenv("TMPDIR");
    const std::string kept = before ? before : "";
    setenv("TMPDIR", (own / "").c_str(), 1);
    auto drawing = example.make(data);
    before ? setenv("TMPDIR", kept.c_str(), 1) : unsetenv("TMPDIR");
    return drawing;
}

}  // namespace zel::test
