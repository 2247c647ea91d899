// Zel2Main's Windows metafiles.
#include "drawing/MetafileOutput.h"

#include "drawing/ResolutionDevice.h"

#include <zel/Zel2Main.h>
#include <zel/platform/DC.h>
#include <zel/platform/Metafile.h>
#include <zel/platform/Platform.h>
#include <zel/platform/SafeFile.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

constexpr int kCopyBlock = 1024;
constexpr int kClassicHeaderSize = 36;

// A recording context with its attribute context.
class Recorder {
  public:
    Recorder(const char* fileName, std::unique_ptr<zel::GraphicsDevice> attributes)
        : attributes_(std::move(attributes)) {
        dc_.Create(fileName);
        dc_.SetAttribDC(attributes_.m_hDC);
    }
    CMetaFileDC& Dc() { return dc_; }
    CDC& Attributes() { return attributes_; }
    HMETAFILE Close() { return dc_.Close(); }

  private:
    CDC attributes_;
    CMetaFileDC dc_;
};

// The header that host programs of the classic library expect: 32-bit fields where the published header has
// 16 bits, and a checksum over the ten words at its beginning.
std::array<std::uint8_t, kClassicHeaderSize> ClassicHeader(const CSize& box) {
    struct Header {
        DWORD key = 0x9AC6CDD7;
        DWORD handle = 0;
        LONG left = 0;
        LONG top = 0;
        LONG right = 0;
        LONG bottom = 0;
        WORD unitsPerInch = 1000;
        WORD padding = 0;
        DWORD reserved = 0;
        WORD checksum = 0;
        WORD padding2 = 0;
    } header;
    static_assert(sizeof(Header) == kClassicHeaderSize);
    header.right = box.cx;
    header.bottom = box.cy;
    std::array<WORD, kClassicHeaderSize / 2> words{};
    std::memcpy(words.data(), &header, sizeof header);
    for (int i = 0; i < 10; ++i)
        header.checksum = static_cast<WORD>(header.checksum ^ words[static_cast<std::size_t>(i)]);
    std::array<std::uint8_t, kClassicHeaderSize> bytes{};
    std::memcpy(bytes.data(), &header, sizeof header);
    return bytes;
}

// A file that is left open until the end of the scope.
class OpenFile {
  public:
    explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
    ~OpenFile() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    explicit operator bool() const { return descriptor_ >= 0; }
    ssize_t Read(void* buffer, std::size_t count) { return ::read(descriptor_, buffer, count); }
    void Write(const void* bytes, std::size_t count) {
        if (::write(descriptor_, bytes, count) < 0)
            return;  // classic: what follows the header may be missing
    }

  private:
    int descriptor_;
};

std::string TemporaryPattern() {
    const char* folder = std::getenv("TMPDIR");
    return std::string(folder && *folder ? folder : "/tmp") + "/wmfXXXXXX";
}

}  // namespace

HMETAFILE Zel2Main::CreateMF(const char* fileName) {
    // Only what keeps the file from being written is answered; what goes wrong in the drawing itself goes on.
    try {
        return zel::RecordMetafile(*this, fileName, nullptr);
    } catch (CFileException* e) {
        e->Delete();
        return nullptr;
    }
}

HMETAFILE zel::RecordMetafile(Zel2Main& root, const char* fileName, int* unitsPerInch) {
    const CSize size = root.Size();
    if (root.Rules() == ZelRules::EXACT) {
        const int resolution = FinestResolution(size);
        if (unitsPerInch) *unitsPerInch = resolution;
        Recorder recorder(fileName, std::make_unique<ResolutionDevice>(
                                        Platform::Get().CreateScreenCompatibleDevice(), resolution));
        root.PrepareMappingFor(&recorder.Dc(), nullptr, 0, 0);
        CPoint origin;
        CSize extent;
        root.Map()->GetLogical(origin, extent);
        const CSize logical(std::max(1, Magnitude(extent.cx)), std::max(1, Magnitude(extent.cy)));
        recorder.Dc().SetMapMode(MM_ANISOTROPIC);
        recorder.Dc().SetWindowExt(logical.cx, logical.cy);
        recorder.Dc().SetViewportExt(logical.cx, logical.cy);
        LeaveOutUnseen(recorder.Dc().m_hDC, resolution);
        root.Draw(&recorder.Dc());
        return recorder.Close();
    }
    Recorder recorder(fileName, Platform::Get().CreateScreenCompatibleDevice());
    CMetaFileDC& dc = recorder.Dc();
    CDC& attributes = recorder.Attributes();
    const int vx = MulDiv(attributes.GetDeviceCaps(LOGPIXELSX), size.cx, 1000);
    const int vy = MulDiv(attributes.GetDeviceCaps(LOGPIXELSY), size.cy, 1000);
    CPoint origin;
    CSize extent;
    root.Map()->GetLogical(origin, extent);
    ::SetMapMode(dc.m_hDC, MM_ANISOTROPIC);
    ::SetWindowOrg(dc.m_hDC, CPoint(0, 0));
    ::SetWindowExt(dc.m_hDC, size);
    ::SetViewportOrg(dc.m_hDC, CPoint(0, 0));
    ::SetViewportExt(dc.m_hDC, CSize(vx, vy));
    attributes.SetMapMode(MM_ANISOTROPIC);
    attributes.SetWindowOrg(origin.x, origin.y);
    attributes.SetWindowExt(std::max(origin.x, zel::Add(origin.x, extent.cx)),
                            std::max(origin.y, zel::Add(origin.y, extent.cy)));
    attributes.SetViewportOrg(0, 0);
    attributes.SetViewportExt(vx, vy);
    root.PrepareMappingFor(&dc, nullptr, 0, 0);
    root.Draw(&dc);
    return recorder.Close();
}

void zel::WritePlaceableMetafile(Zel2Main& root, const char* fileName) {
    int unitsPerInch = 0;
    const std::unique_ptr<ZelMetafileHandle, decltype(&DeleteMetaFile)> metafile(
        RecordMetafile(root, nullptr, &unitsPerInch), &DeleteMetaFile);
    CPoint origin;
    CSize extent;
    root.Map()->GetLogical(origin, extent);
    const CRect box(0, 0, Magnitude(extent.cx), Magnitude(extent.cy));
    const auto header = PlaceableHeader(box, static_cast<WORD>(unitsPerInch));
    const auto& bytes = GetMetaFileBits(metafile.get());
    SafeFile file(fileName);
    file.Write(header.data(), header.size());
    file.Write(bytes.data(), bytes.size());
    file.Commit();
}

int Zel2Main::CreatePlaceableMF(const char* fileName) {
    if (rules_ == ZelRules::CLASSIC) return CreateClassicPlaceableMF(fileName);
    try {
        zel::WritePlaceableMetafile(*this, fileName);
        return 1;
    } catch (CFileException* e) {
        e->Delete();
        return 0;
    }
}

int Zel2Main::CreateClassicPlaceableMF(const char* fileName) {
    std::string temporary = TemporaryPattern();
    OpenFile source(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!source) return 0;
    const HMETAFILE metafile = CreateMF(temporary.c_str());
    const CSize box = Map()->ToDevice(Map()->ToDevice(Size()));
    const auto header = ClassicHeader(box);
    if (!metafile) return 1;
    DeleteMetaFile(metafile);
    OpenFile target(::open(fileName, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    // The recorder has put its file in the place of the one that was reserved.
    OpenFile recorded(::open(temporary.c_str(), O_RDONLY | O_CLOEXEC));
    if (!target || !recorded) return 1;
    target.Write(header.data(), header.size());
    char block[kCopyBlock];
    ssize_t count = 0;
    do {
        count = recorded.Read(block, sizeof block);
        if (count > 0) target.Write(block, static_cast<std::size_t>(count));
    } while (count == kCopyBlock);
    return 1;
}
