#include "platform/graphics/MetafileDevice.h"

#include <zel/platform/Gdi.h>
#include <zel/platform/Metafile.h>
#include <zel/platform/SafeFile.h>

struct ZelMetafileHandle {
    std::vector<std::uint8_t> bytes;
};

HDC CreateMetaFile(const char* fileName) {
    return zel::CreateDeviceContext(std::make_unique<zel::MetafileDevice>(fileName ? fileName : ""));
}

HMETAFILE CloseMetaFile(HDC dc) {
    if (!dc) return nullptr;
    auto* recorder = dynamic_cast<zel::MetafileDevice*>(&zel::DeviceOf(dc));
    if (!recorder) return nullptr;
    struct Ending {
        HDC dc;
        ~Ending() { DeleteDC(dc); }
    } const ending{dc};
    auto metafile = std::make_unique<ZelMetafileHandle>();
    metafile->bytes = recorder->Finish();
    if (!recorder->FileName().empty()) {
        zel::SafeFile file(recorder->FileName());
        file.Write(metafile->bytes.data(), metafile->bytes.size());
        file.Commit();
    }
    return metafile.release();
}

BOOL DeleteMetaFile(HMETAFILE metafile) {
    delete metafile;
    return metafile ? TRUE : FALSE;
}

const std::vector<std::uint8_t>& GetMetaFileBits(HMETAFILE metafile) {
    return metafile->bytes;
}

void zel::LeaveOutUnseen(HDC recorder, int unitsPerInch) {
    if (auto* device = dynamic_cast<MetafileDevice*>(&DeviceOf(recorder)))
        device->LeaveOutUnseen(unitsPerInch);
}

std::array<std::uint8_t, 22> zel::PlaceableHeader(const CRect& box, WORD unitsPerInch) {
    constexpr DWORD kKey = 0x9AC6CDD7;
    WORD words[11] = {static_cast<WORD>(kKey & 0xFFFF), static_cast<WORD>(kKey >> 16), 0};
    const LONG sides[] = {box.left, box.top, box.right, box.bottom};
    for (int i = 0; i < 4; ++i)
        words[3 + i] = static_cast<WORD>(std::clamp<LONG>(sides[i], INT16_MIN, INT16_MAX));
    words[7] = unitsPerInch;
    for (int i = 0; i < 10; ++i) words[10] = static_cast<WORD>(words[10] ^ words[i]);
    std::array<std::uint8_t, 22> bytes{};
    for (std::size_t i = 0; i < 11; ++i) {
        bytes[2 * i] = static_cast<std::uint8_t>(words[i] & 0xFF);
        bytes[2 * i + 1] = static_cast<std::uint8_t>(words[i] >> 8);
    }
    return bytes;
}
