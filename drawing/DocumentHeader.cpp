#include "drawing/DocumentHeader.h"

#include <zel/ZelDocument.h>
#include <zel/platform/Exception.h>

#include <cstring>
#include <zlib.h>

namespace zel {
namespace {

constexpr std::uint8_t kMagic[8] = {0x89, 'Z', 'E', 'L', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t kRulesAt = 12;
constexpr std::size_t kDialectAt = 28;
constexpr std::size_t kChecksumAt = 36;
constexpr std::uint32_t kCompleteDialect = 0;

template <class T>
void Put(DocumentHeader::Bytes& bytes, std::size_t at, T value) {
    for (std::size_t i = 0; i < sizeof(T); ++i) bytes[at + i] = static_cast<std::uint8_t>(value >> 8 * i);
}

template <class T>
T Take(const DocumentHeader::Bytes& bytes, std::size_t at) {
    T value = 0;
    for (std::size_t i = sizeof(T); i-- > 0;) value = static_cast<T>(value << 8 | bytes[at + i]);
    return value;
}

std::uint32_t HeaderChecksum(const DocumentHeader::Bytes& bytes) {
    return static_cast<std::uint32_t>(crc32(0, bytes.data(), kChecksumAt));
}

[[noreturn]] void Refuse(int cause, const std::string& source, const std::string& why) {
    AfxThrowArchiveException(cause, ("Cannot read the document \"" + source + "\": " + why).c_str());
}

}  // namespace

DocumentHeader::Bytes DocumentHeader::Encode() const {
    Bytes bytes{};
    std::memcpy(bytes.data(), kMagic, sizeof kMagic);
    Put<std::uint32_t>(bytes, 8, kDocumentVersion);
    Put<std::uint32_t>(bytes, kRulesAt, rules == ZelRules::EXACT ? 1 : 0);
    Put<std::uint64_t>(bytes, 16, contentLength);
    Put<std::uint32_t>(bytes, 24, contentChecksum);
    Put<std::uint32_t>(bytes, kDialectAt, kCompleteDialect);
    Put<std::uint32_t>(bytes, kChecksumAt, HeaderChecksum(bytes));
    return bytes;
}

int DocumentHeader::VersionIn(const Bytes& bytes) {
    return static_cast<int>(std::min<std::uint32_t>(Take<std::uint32_t>(bytes, 8), kDocumentVersion));
}

DocumentHeader DocumentHeader::Decode(const Bytes& bytes, const std::string& source) {
    if (std::memcmp(bytes.data(), kMagic, sizeof kMagic) != 0) {
        Refuse(CArchiveException::badClass, source, "it is no drawing document (its first bytes differ)");
    }
    const auto version = Take<std::uint32_t>(bytes, 8);
    if (version > kDocumentVersion) {
        Refuse(CArchiveException::badSchema, source,
               "its format version " + std::to_string(version) + " is newer than this program's version " +
                   std::to_string(kDocumentVersion));
    }
    if (Take<std::uint32_t>(bytes, kChecksumAt) != HeaderChecksum(bytes)) {
        Refuse(CArchiveException::genericException, source, "its header is damaged (the checksum differs)");
    }
    if (const auto dialect = Take<std::uint32_t>(bytes, kDialectAt); dialect != kCompleteDialect) {
        Refuse(CArchiveException::badSchema, source,
               "its content is in dialect " + std::to_string(dialect) + ", and documents are in dialect " +
                   std::to_string(kCompleteDialect));
    }
    const auto rules = Take<std::uint32_t>(bytes, kRulesAt);
    if (version == 0 || rules > 1) {
        Refuse(CArchiveException::badSchema, source,
               "there is no format version " + std::to_string(version) + " with rule set " +
                   std::to_string(rules));
    }
    DocumentHeader header;
    header.version = version;
    header.rules = rules == 1 ? ZelRules::EXACT : ZelRules::CLASSIC;
    header.contentLength = Take<std::uint64_t>(bytes, 16);
    header.contentChecksum = Take<std::uint32_t>(bytes, 24);
    return header;
}

}  // namespace zel
