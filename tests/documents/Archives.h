// Drawings to bytes and back, and what is drawn of them.
#pragma once

#include <zel/platform/Archive.h>
#include <zel/platform/File.h>
#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <memory>
#include <string>

namespace zel::test {

inline std::string Drawn(Zel2Main& root) {
    RecordingDevice device(960);
    CDC dc(device);
    root.PrepareMappingFor(&dc, nullptr, 0, 0);
    root.Draw(&dc);
    dc.Flush();
    return device.Text();
}

// The fields of a drawing in the classic dialect.
inline std::string ClassicBytes(Zel2Main& root) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    root.Serialize(ar);
    ar.Close();
    return {reinterpret_cast<const char*>(file.GetData()), file.GetLength()};
}

inline std::unique_ptr<Zel2Main> FromClassicBytes(const std::string& bytes) {
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    auto root = std::make_unique<Zel2Main>();
    root->Serialize(ar);
    return root;
}

}  // namespace zel::test
