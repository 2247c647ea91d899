#include "core/ArchiveFields.h"

#include <zel/DrawTool.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>

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
    SetName(other.name_);
    printer_ = other.printer_;
    CopyOpacity(other);
    scale_ = other.scale_;
}

void DrawTool::SetName(const char* name) {
    name_ = name;
    if (table_) table_->renamed_ = true;
}

DrawTool* DrawTool::ACopy() {
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

BYTE DrawTool::InkOpacity() const {
    return static_cast<BYTE>(std::lround(opacity_ * 255));
}

void DrawTool::ExchangeName(CArchive& ar) {
    zel::Exchange(ar, name_);
    if (table_ && ar.IsLoading()) table_->renamed_ = true;
}

void DrawTool::Serialize(CArchive& ar) {
    ExchangeName(ar);
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
    for (const auto& tool : other->tools_) Append(std::unique_ptr<DrawTool>(tool ? tool->ACopy() : nullptr));
}

void DrawToolTable::Clear() {
    tools_.clear();
    indexOfName_.clear();
    renamed_ = false;
}

void DrawToolTable::Append(std::unique_ptr<DrawTool> tool) {
    if (tool) tool->table_ = this;
    tools_.push_back(std::move(tool));
    NoteName(Count() - 1);
}

void DrawToolTable::NoteName(int index) const {
    const DrawTool* tool = Get(index);
    if (tool) indexOfName_.try_emplace(tool->NameRef().GetString(), index);
}

int DrawToolTable::Size() {
    return Count();
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
    Append(std::move(owned));
    if (dc_) tool->OpenOn(dc_, scale_);
    return Count() - 1;
}

DrawTool* DrawToolTable::Get(int i) const {
    return i >= 0 && i < Count() ? tools_[static_cast<std::size_t>(i)].get() : nullptr;
}

DrawTool* DrawToolTable::Get(const char* name) const {
    return Get(GetIndex(name));
}

int DrawToolTable::GetIndex(const char* name) const {
    if (!name) return -1;
    if (renamed_) {
        indexOfName_.clear();
        for (int i = 0; i < Count(); ++i) NoteName(i);
        renamed_ = false;
    }
    const auto found = indexOfName_.find(name);
    return found != indexOfName_.end() ? found->second : -1;
}

void DrawToolTable::OpenOn(CDC* dc, int scale) {
    dc_ = dc;
    scale_ = scale;
    for (const auto& tool : tools_) {
        if (!tool) continue;
        tool->SetPrinter(dc ? dc->m_bPrinting : 0);
        tool->OpenOn(dc, scale);
    }
}

void DrawToolTable::Close() {
    for (const auto& tool : tools_) {
        if (tool) tool->Close();
    }
    dc_ = nullptr;
}

void DrawToolTable::Serialize(CArchive& ar) {
    int count = Count();
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
