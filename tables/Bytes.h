// The bytes of a file as UTF-8.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace zel::tables {

// A file, standard input, or bytes in memory, from its beginning to its end, as often as wanted. What gzip
// has compressed is unpacked (RFC 1952).
class ByteSource {
  public:
    virtual ~ByteSource() = default;
    // Fills `room`; fewer bytes only at the end. Throws FileError, or FormatError for damaged compression.
    virtual std::size_t Read(char* room, std::size_t n) = 0;
    virtual void Rewind() = 0;

    // Standard input for "-": it is kept in memory. Throws FileError.
    static std::unique_ptr<ByteSource> Open(const std::string& path);
    // Borrows the bytes.
    static std::unique_ptr<ByteSource> Of(std::string_view bytes);
};

// The encoding of a text by its first bytes: that of its byte-order mark, UTF-8 where all is valid UTF-8,
// else Windows-1252, which holds ISO 8859-1. UTF-16 is recognised without a mark where every second byte of
// many is 0.
std::string EncodingOf(std::string_view head);

// Turns bytes of an encoding into UTF-8, block by block, without a byte-order mark. Bytes that mean nothing
// become U+FFFD.
class Decoder {
  public:
    // Throws Error for an encoding that the system does not know.
    explicit Decoder(const std::string& encoding);
    ~Decoder();
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    // The text of a block; valid until the next call. `last` tells that no block follows.
    std::string_view Decode(std::string_view bytes, bool last);

  private:
    void* converter_ = nullptr;  // null for UTF-8
    bool first_ = true;
    std::string rest_;  // of a character that ends in the next block
    std::string text_;
};

}  // namespace zel::tables
