// The first bytes of a document.
#pragma once

#include <zel/ZelRules.h>

#include <array>
#include <cstdint>
#include <string>

namespace zel {

// 40 bytes, all integers little endian:
//   0  8  magic number: 0x89 "ZEL" CR LF 0x1A LF, which a transfer as text or to 7 bits spoils visibly
//   8  4  format version, from 1
//  12  4  rule set: 0 classic, 1 exact
//  16  8  length of the content that follows the header, in bytes
//  24  4  CRC-32 of the content
//  28  4  dialect of the content: 0, the complete one
//  32  4  reserved, 0
//  36  4  CRC-32 of the 36 bytes before
struct DocumentHeader {
    static constexpr std::size_t kSize = 40;
    using Bytes = std::array<std::uint8_t, kSize>;

    std::uint32_t version = 0;  // as read
    ZelRules rules = ZelRules::CLASSIC;
    std::uint64_t contentLength = 0;
    std::uint32_t contentChecksum = 0;

    // Whether these are the first bytes of a document.
    static bool Begins(const Bytes& bytes) { return bytes[0] == 0x89 && bytes[1] == 'Z'; }
    // The version that stands in a header of which nothing is checked; no newer one than is known.
    static int VersionIn(const Bytes& bytes);
    Bytes Encode() const;
    // Throws CArchiveException* that names `source` when the bytes are no header, or one of a newer version.
    static DocumentHeader Decode(const Bytes& bytes, const std::string& source);
};

}  // namespace zel
