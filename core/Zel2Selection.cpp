#include <zel/Zel2Selection.h>

void Zel2Selection::Add(Zel2* object) {
    if (!object) return;
    if (!accumulate) {
        SetAtGrow(0, object);
        return;
    }
    for (int i = 0; i < static_cast<int>(GetSize()); ++i) {
        if ((*this)[i] == object) return;
    }
    CObArray::Add(object);
}

int Zel2Selection::IsIn(const CPoint& pt) {
    for (int i = 0; i < static_cast<int>(GetSize()); ++i) {
        if ((*this)[i]->IsIn(pt)) return 1;
    }
    return 0;
}

void Zel2Selection::Select(int on) {
    ForEach([=](Zel2* object) { object->Select(on); });
    selected = on;
}

void Zel2Selection::SetFocus(Zel2* object) {
    if (object == focus) return;
    if (focus) {
        focus->SetStatus(Zel2::FOCUS, 0);
        focus->UpdateWindow();
        focus = nullptr;
    }
    if (!object) return;
    Add(object);
    object->SetStatus(Zel2::FOCUS, 1);
    object->UpdateWindow();
    focus = object;
}

void Zel2Selection::RemoveAll() {
    if (selected) Select(0);
    SetFocus(nullptr);
    CObArray::RemoveAll();
}

void Zel2Selection::Forget(const Zel2* object) {
    const auto leaves = [object](const Zel2* member) {
        while (member && member != object) member = member->GetParent();
        return member != nullptr;
    };
    if (leaves(focus)) focus = nullptr;
    for (INT_PTR i = GetUpperBound(); i >= 0; --i) {
        if (leaves((*this)[static_cast<int>(i)])) RemoveAt(i);
    }
}

void Zel2Selection::StartDrag(CPoint& pt) {
    ForEach([&](Zel2* object) { object->StartDrag(pt); });
}

void Zel2Selection::DragTo(CPoint& pt) {
    ForEach([&](Zel2* object) { object->DragTo(pt); });
}

void Zel2Selection::EndDrag() {
    ForEach([](Zel2* object) { object->EndDrag(); });
}
