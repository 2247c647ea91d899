#include "apps/zel/Dump.h"

#include <zel/ZelDocument.h>
#include <zel/platform/Archive.h>
#include <zel/platform/Exception.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <string>

namespace zel::cli {
namespace {

constexpr int kDocumentBegin = 0x89;  // no archive of a drawing begins so

// One line, whatever stands in the text.
std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += {'\\', c};
        } else if (static_cast<unsigned char>(c) < ' ') {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(c));
            quoted += code;
        } else {
            quoted += c;
        }
    }
    return quoted + '"';
}

class Dump : public ArchiveTrace {
  public:
    explicit Dump(std::ostream& out) : out_(out) {}

    void Number(std::uint64_t offset, std::size_t size, bool isFloat, const std::string& value) override {
        Begin(offset) << (isFloat ? "float" : "int") << 8 * size << " " << value << "\n";
    }
    void Text(std::uint64_t offset, const std::string& text) override {
        Begin(offset) << "text " << Quoted(text) << "\n";
    }
    void Block(std::uint64_t offset, const std::uint8_t* bytes, std::size_t count) override {
        Begin(offset) << count << " bytes:" << std::hex << std::setfill('0');
        for (std::size_t i = 0; i < std::min(count, kShownBytes); ++i)
            out_ << " " << std::setw(2) << static_cast<int>(bytes[i]);
        out_ << std::dec << (count > kShownBytes ? " ..." : "") << "\n";
    }
    void BeginObject(std::uint64_t offset, const char* className, std::uint32_t number,
                     bool newClass) override {
        Begin(offset) << (newClass ? "object of the new class " : "object of class ") << className
                      << ", number " << number << "\n";
        ++depth_;
    }
    void EndObject() override { --depth_; }
    void Reference(std::uint64_t offset, std::uint32_t number) override {
        if (number == 0)
            Begin(offset) << "no object\n";
        else
            Begin(offset) << "object number " << number << " again\n";
    }

  private:
    static constexpr std::size_t kShownBytes = 16;

    std::ostream& Begin(std::uint64_t offset) {
        return out_ << std::setfill(' ') << std::setw(10) << offset << "  " << std::string(2 * depth_, ' ');
    }
    std::ostream& out_;
    std::size_t depth_ = 0;
};

// What is wrong with a document's header or checksums does not keep us from looking at its content.
void PrintHeader(const char* path, std::ostream& out) {
    if (std::ifstream(path, std::ios::binary).get() != kDocumentBegin) return;
    try {
        const DocumentFacts facts = CheckDocument(path);
        out << "document of version " << facts.version << ", "
            << (facts.rules == ZelRules::EXACT ? "exact" : "classic") << " rules, " << facts.contentLength
            << " bytes of content, checksums right\n";
    } catch (const FormatError& e) {
        out << e.what() << "\n";
    }
}

}  // namespace

void PrintDump(const char* path, std::ostream& out) {
    PrintHeader(path, out);
    Dump trace(out);
    TraceDrawing(path, trace);
}

}  // namespace zel::cli
