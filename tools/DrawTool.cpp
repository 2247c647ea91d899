#include "core/ArchiveFields.h"

#include <zel/DrawTool.h>
#include <zel/platform/DC.h>

IMPLEMENT_SERIAL(DrawTool, CObject, 0)
IMPLEMENT_SERIAL(DrawToolTable, CObject, 0)

namespace {
constexpr std::size_t kRoomForTools = 10;
}

DrawTool::DrawTool(const DrawTool& other) : CObject() {
    CopyBase(other);
}

DrawTool& DrawTool::operator=(const DrawTool& other) {
    if (this == &other) return *this;
    CopyBase(other);
    dc_ = nullptr;
    return *this;
}

void DrawTool::CopyBase(const DrawTool& other) {
    name_ = other.name_;
    printer_ = other.printer_;
    CopyOpacity(other);
    scale_ = other.scale_;
}

DrawTool* DrawTool::ACopy() const {
    return nullptr;
}

void DrawTool::OpenOn(CDC* dc, int scale) {
    dc_ = dc;
    scale_ = scale;
}

void DrawTool::Close() {
    dc_ = nullptr;
}

int DrawTool::SetPrinter(int on) {
    const int previous = printer_;
    printer_ = on;
    return previous;
}

void DrawTool::Edit() {}

namespace {
double WithinOpacities(double opacity) {
    return opacity < 0 ? 0 : opacity < 1 ? opacity : 1;
}
}  // namespace

void DrawTool::Opacity(double opacity) {
    opacity_ = WithinOpacities(opacity);
    if (dc_) OpenOn(dc_, scale_);
}

void DrawTool::ExchangeOpacity(CArchive& ar) {
    if (ar.IsLoading()) opacity_ = 1;
    if (zel::HasSince(ar, 2)) zel::Exchange(ar, opacity_);
    opacity_ = WithinOpacities(opacity_);
}

void DrawTool::Serialize(CArchive& ar) {
    zel::Exchange(ar, name_);
}

DrawToolTable::DrawToolTable() {
    tools_.reserve(kRoomForTools);
}

DrawToolTable::DrawToolTable(const DrawToolTable& other) : CObject() {
    DrawToolTable::CopyFrom(&other);
}

DrawToolTable& DrawToolTable::operator=(const DrawToolTable& other) {
    CopyFrom(&other);
    return *this;
}

void DrawToolTable::CopyFrom(const DrawToolTable* other) {
    if (other == this) return;
    Clear();
    tools_.reserve(other->tools_.size());
    for (const auto& tool : other->tools_) {
        std::unique_ptr<DrawTool> copy(tool->ACopy());
        if (!copy) continue;
        indexOfName_.try_emplace(copy->NameRef().GetString(), Size());
        tools_.push_back(std::move(copy));
    }
}

void DrawToolTable::Clear() {
    tools_.clear();
    indexOfName_.clear();
}

int DrawToolTable::Size() const {
    return static_cast<int>(tools_.size());
}

// Tables without an editing dialog have nothing to accept.
int DrawToolTable::Edit() {
    return 0;
}

int DrawToolTable::Register(DrawTool* tool) {
    std::unique_ptr<DrawTool> owned(tool);
    if (!owned) return -1;
    const int existing = GetIndex(owned->NameRef());
    if (existing >= 0) return existing;
    const int index = Size();
    indexOfName_[owned->NameRef().GetString()] = index;
    tools_.push_back(std::move(owned));
    if (dc_) tools_.back()->OpenOn(dc_, scale_);
    return index;
}

DrawTool* DrawToolTable::Get(int i) const {
    return i >= 0 && i < Size() ? tools_[static_cast<std::size_t>(i)].get() : nullptr;
}

DrawTool* DrawToolTable::Get(const char* name) const {
    return Get(GetIndex(name));
}

int DrawToolTable::GetIndex(const char* name) const {
    if (!name) return -1;
    // A tool can be renamed after it was registered, so a hit is checked and a miss is searched.
    const auto hit = indexOfName_.find(name);
    if (hit != indexOfName_.end() && tools_[static_cast<std::size_t>(hit->second)]->NameRef() == name) {
        return hit->second;
    }
    for (int i = 0; i < Size(); ++i) {
        if (tools_[static_cast<std::size_t>(i)]->NameRef() == name) return i;
    }
    return -1;
}

void DrawToolTable::OpenOn(CDC* dc, int scale) {
    dc_ = dc;
    scale_ = scale;
    for (const auto& tool : tools_) {
        tool->SetPrinter(dc ? dc->m_bPrinting : 0);
        tool->OpenOn(dc, scale);
    }
}

void DrawToolTable::Close() {
    for (const auto& tool : tools_) tool->Close();
    dc_ = nullptr;
}

void DrawToolTable::Serialize(CArchive& ar) {
    int count = Size();
    zel::Exchange(ar, count);
    if (ar.IsStoring()) {
        for (const auto& tool : tools_) ar.WriteObject(tool.get());
        return;
    }
    Clear();
    if (count < 0) count = 0;
    ar.CheckCount(count, 2);  // an object's tag alone takes two bytes
    tools_.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) Register(zel::ReadOwned<DrawTool>(ar).release());
}
