// The fuzz target of the loader.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel::fuzz {

// The first byte of an input says what is done with the rest.
enum Mode : unsigned {
    COMPLETE = 1,  // the fields of a drawing in the complete dialect, else in the classic one
    DRAWN = 2,     // drawing is slow, so not all is drawn
    DOCUMENT = 4,  // a document with its header
    TRACED = 8,    // an archive is read under the eyes of a listener
    MENDED = 8     // a document's lengths and checksums are made right
};

}  // namespace zel::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);
