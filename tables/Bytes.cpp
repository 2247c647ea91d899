#include "tables/Bytes.h"

#include <zel/Error.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iconv.h>
#include <unistd.h>
#include <zlib.h>

namespace zel::tables {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr unsigned kBuffer = 1 << 17;

class MemorySource : public ByteSource {
  public:
    explicit MemorySource(std::string_view bytes) : bytes_(bytes) {}
    std::size_t Read(char* room, std::size_t n) override {
        const std::size_t taken = std::min(n, bytes_.size() - at_);
        std::memcpy(room, bytes_.data() + at_, taken);
        at_ += taken;
        return taken;
    }
    void Rewind() override { at_ = 0; }

  private:
    std::string_view bytes_;
    std::size_t at_ = 0;
};

// zlib reads files that are not compressed as they are.
class FileSource : public ByteSource {
  public:
    FileSource(gzFile file, std::string path) : file_(file), path_(std::move(path)) {
        gzbuffer(file_, kBuffer);
    }
    ~FileSource() override { gzclose(file_); }
    FileSource(const FileSource&) = delete;
    FileSource& operator=(const FileSource&) = delete;

    std::size_t Read(char* room, std::size_t n) override {
        const int count = gzread(file_, room, static_cast<unsigned>(n));
        if (count < 0) Fail();
        if (static_cast<std::size_t>(count) < n) {
            int code = Z_OK;
            gzerror(file_, &code);
            if (code != Z_OK && code != Z_STREAM_END) Fail();
        }
        return static_cast<std::size_t>(count);
    }
    void Rewind() override {
        if (gzrewind(file_) != 0) Fail();
    }

  private:
    [[noreturn]] void Fail() {
        const int number = errno;
        int code = Z_OK;
        const std::string why = gzerror(file_, &code);
        if (code == Z_ERRNO)
            throw FileError("Cannot read \"" + path_ + "\": " + std::strerror(number), path_, number);
        throw FormatError("Cannot unpack \"" + path_ + "\": " + why);
    }

    gzFile file_;
    std::string path_;
};

// What can be read only once.
class KeptSource : public MemorySource {
  public:
    explicit KeptSource(std::unique_ptr<std::string> bytes)
        : MemorySource(*bytes), bytes_(std::move(bytes)) {}

  private:
    std::unique_ptr<std::string> bytes_;
};

std::unique_ptr<ByteSource> OpenInput() {
    gzFile input = gzdopen(0, "rb");
    if (!input) throw FileError("Cannot read the standard input", "-", errno);
    FileSource source(input, "standard input");
    auto bytes = std::make_unique<std::string>();
    std::string block(kBuffer, '\0');
    while (const std::size_t n = source.Read(block.data(), block.size())) bytes->append(block, 0, n);
    return std::make_unique<KeptSource>(std::move(bytes));
}

// The length of the UTF-8 sequence that begins a text: 0 for none, more than the text has for one cut short.
std::size_t SequenceAt(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80) return 1;
    const std::size_t n = lead >= 0xC2 && lead < 0xE0   ? 2
                          : lead >= 0xE0 && lead < 0xF0 ? 3
                          : lead >= 0xF0 && lead < 0xF5 ? 4
                                                        : 0;
    for (std::size_t i = 1; i < std::min(n, text.size()); ++i)
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) return 0;
    return n;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t n = SequenceAt(text);
        if (n == 0) return false;
        if (n > text.size()) return true;  // the head may end within a character
        text.remove_prefix(n);
    }
    return true;
}

}  // namespace

std::unique_ptr<ByteSource> ByteSource::Open(const std::string& path) {
    if (path == "-") return OpenInput();
    std::FILE* const file = std::fopen(path.c_str(), "rbe");
    if (!file) throw FileError("Cannot open \"" + path + "\": " + std::strerror(errno), path, errno);
    const int descriptor = dup(fileno(file));
    std::fclose(file);
    gzFile zipped = descriptor < 0 ? nullptr : gzdopen(descriptor, "rb");
    if (!zipped) throw FileError("Cannot open \"" + path + "\": " + std::strerror(errno), path, errno);
    return std::make_unique<FileSource>(zipped, path);
}

std::unique_ptr<ByteSource> ByteSource::Of(std::string_view bytes) {
    return std::make_unique<MemorySource>(bytes);
}

std::string EncodingOf(std::string_view head) {
    if (head.starts_with(kUtf8Mark)) return "UTF-8";
    if (head.starts_with("\xFF\xFE")) return "UTF-16LE";
    if (head.starts_with("\xFE\xFF")) return "UTF-16BE";
    std::array<std::size_t, 2> zeros{};
    for (std::size_t i = 0; i < head.size(); ++i)
        if (head[i] == '\0') ++zeros[i % 2];
    if (zeros[1] > head.size() / 4 && zeros[0] < zeros[1] / 8) return "UTF-16LE";
    if (zeros[0] > head.size() / 4 && zeros[1] < zeros[0] / 8) return "UTF-16BE";
    return IsUtf8(head) ? "UTF-8" : "WINDOWS-1252";
}

Decoder::Decoder(const std::string& encoding) {
    if (encoding == "UTF-8" || encoding == "utf-8" || encoding == "utf8") return;
    iconv_t const converter = iconv_open("UTF-8", encoding.c_str());
    if (converter == reinterpret_cast<iconv_t>(-1))
        throw Error("Cannot read a table: the system does not know the encoding \"" + encoding + "\"");
    converter_ = converter;
}

Decoder::~Decoder() {
    if (converter_) iconv_close(converter_);
}

std::string_view Decoder::Decode(std::string_view bytes, bool last) {
    if (!converter_) {
        if (first_ && bytes.starts_with(kUtf8Mark)) bytes.remove_prefix(kUtf8Mark.size());
        first_ = first_ && bytes.empty();
        return bytes;
    }
    rest_.append(bytes);
    text_.clear();
    std::array<char, 1 << 14> room;
    char* in = rest_.data();
    std::size_t left = rest_.size();
    while (left > 0) {
        char* out = room.data();
        std::size_t free = room.size();
        const std::size_t done = iconv(converter_, &in, &left, &out, &free);
        text_.append(room.data(), room.size() - free);
        if (done != static_cast<std::size_t>(-1) || errno == E2BIG) continue;
        if (errno == EINVAL && !last) break;
        text_ += "\uFFFD";
        ++in;
        --left;
    }
    rest_.erase(0, rest_.size() - left);
    if (first_ && text_.starts_with(kUtf8Mark)) text_.erase(0, kUtf8Mark.size());
    first_ = first_ && text_.empty();
    return text_;
}

}  // namespace zel::tables
