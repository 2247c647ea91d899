// A drawing with one object of every class, in which hardly two fields are equal, and what each field is.
#pragma once

#include <zel/zel.h>

#include <memory>
#include <string>

namespace zel::test {

// Facts are lines `place = value`, places as the format's page names the fields.
struct KnownDrawing {
    std::unique_ptr<Zel2Main> drawing;
    std::string facts;
};
KnownDrawing MakeKnownDrawing();

}  // namespace zel::test
