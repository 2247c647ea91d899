#include "apps/zelview/Editing.h"

#include <algorithm>
#include <vector>

namespace zel::view {
namespace {

constexpr int kPasteOffset = 200;  // world units
constexpr CSize kTextSize(2000, 500);

std::vector<Zel2*> Members(const Zel2Selection& selection) {
    std::vector<Zel2*> members;
    members.reserve(static_cast<std::size_t>(selection.GetSize()));
    for (int i = 0; i < static_cast<int>(selection.GetSize()); ++i) members.push_back(selection[i]);
    return members;
}

// Takes the marks of the selection off its objects while it lives: they are no part of a document.
class Unmarked {
  public:
    explicit Unmarked(const Zel2Selection& selection) {
        for (Zel2* object : Members(selection)) {
            Unmark(object);
            if (auto* field = dynamic_cast<Zel2DataField*>(object)) {
                Unmark(field->Value());
                Unmark(field->Label());
            }
        }
    }
    ~Unmarked() {
        for (const auto& [object, bits] : marked_) object->SetStatus(bits, 1);
    }
    Unmarked(const Unmarked&) = delete;
    Unmarked& operator=(const Unmarked&) = delete;

  private:
    void Unmark(Zel2* object) {
        if (auto* box = dynamic_cast<Zel2TRect*>(object)) box->GetText();
        if (auto* text = dynamic_cast<Zel2Text*>(object)) text->GetText();
        for (const unsigned long bit : {Zel2::SELECTED, Zel2::FOCUS}) {
            if (!object->GetStatus(bit)) continue;
            object->ResetStatus(bit);
            marked_.emplace_back(object, bit);
        }
    }
    std::vector<std::pair<Zel2*, unsigned long>> marked_;
};

bool HasEditor(const Zel2* object) {
    return dynamic_cast<const Zel2TRect*>(object) || dynamic_cast<const Zel2DataField*>(object);
}

// The edit field that is open over an object; null when there is none.
CZel2Edit* EditorOf(Zel2* object) {
    auto* const field = dynamic_cast<Zel2DataField*>(object);
    auto* const box = field ? field->Value() : dynamic_cast<Zel2TRect*>(object);
    auto* const text = dynamic_cast<Zel2Text*>(object);
    return box ? box->Editor() : text ? text->Editor() : nullptr;
}

// Selects without opening editors: the keyboard is to move and size what is chosen.
void Choose(Zel2Selection& selection, const std::vector<Zel2*>& objects) {
    selection.RemoveAll();
    selection.accumulate = 1;
    selection.Select(1);  // an empty selection that will deselect what it is given
    for (Zel2* object : objects) {
        selection.Add(object);
        HasEditor(object) ? object->SetStatus(Zel2::SELECTED, 1) : static_cast<void>(object->Select(1));
        object->UpdateWindow();
    }
    if (!objects.empty()) selection.SetFocus(objects.back());
}

Zel2Graph* FirstGraph(Zel2Set& set) {
    for (int i = 0; i < set.GetCount(); ++i) {
        Zel2* const child = set[i];
        if (auto* graph = dynamic_cast<Zel2Graph*>(child)) return graph;
        auto* const inner = dynamic_cast<Zel2Set*>(child);
        if (Zel2Graph* graph = inner ? FirstGraph(*inner) : nullptr) return graph;
    }
    return nullptr;
}

// The graph that is selected or holds what is.
Zel2Graph* GraphFor(Zel2Main& drawing, const Zel2Selection& selection) {
    for (Zel2* object : Members(selection)) {
        for (; object; object = object->GetParent()) {
            if (auto* graph = dynamic_cast<Zel2Graph*>(object)) return graph;
        }
    }
    return FirstGraph(drawing);
}

bool StandsIn(const Zel2* object, const std::vector<Zel2*>& others) {
    for (const Zel2* outer = object->GetParent(); outer; outer = outer->GetParent()) {
        if (std::find(others.begin(), others.end(), outer) != others.end()) return true;
    }
    return false;
}

// The child after the one that is or holds `selected`, round and round; places that were left are passed
// over.
Zel2* ChildAfter(Zel2Main& drawing, const Zel2* selected, int by) {
    const int count = drawing.GetCount();
    int at = by > 0 ? -1 : count;
    for (int i = 0; i < count; ++i) {
        for (const Zel2* object = selected; object; object = object->GetParent()) {
            if (drawing[i] == object) at = i;
        }
    }
    for (int step = 0; step < count; ++step) {
        at = (at + by + count) % count;
        if (drawing[at]) return drawing[at];
    }
    return nullptr;
}

}  // namespace

Bytes StateOf(Zel2Main& drawing, Zel2Selection& selection) {
    const Unmarked unmarked(selection);
    return DocumentBytes(drawing);
}

void EndTyping(Zel2Selection& selection) {
    const std::vector<Zel2*> members = Members(selection);
    if (std::none_of(members.begin(), members.end(), EditorOf)) return;
    Zel2* const focus = selection.GetFocus();
    Choose(selection, members);
    selection.SetFocus(focus);
}

void EditText(Zel2Selection& selection) {
    Zel2* const object = selection.GetFocus();
    if (object && !EditorOf(object)) {
        object->EditInPlace();
    } else {
        EndTyping(selection);
    }
}

bool Nudge(Zel2Selection& selection, const CSize& by, bool size) {
    for (Zel2* object : Members(selection)) {
        const CSize now = object->Size();
        if (!size) {
            object->MoveTo(object->Origin() + by);
        } else if (now.cx + by.cx > 0 && now.cy + by.cy > 0) {
            object->MoveTo(CRect(object->Origin(), now + by - CSize(1, 1)));
        }
    }
    return selection.GetSize() > 0;
}

int DeleteSelected(Zel2Selection& selection) {
    int deleted = 0;
    while (selection.GetSize() > 0) {
        Zel2* const object = selection[static_cast<int>(selection.GetSize()) - 1];
        object->Select(0);
        object->UpdateWindow();
        selection.Forget(object);
        if (auto* set = dynamic_cast<Zel2Set*>(object->GetParent())) {
            set->Del(object);
            ++deleted;
        }
    }
    return deleted;
}

Bytes CopySelected(Zel2Main& drawing, Zel2Selection& selection) {
    const std::vector<Zel2*> members = Members(selection);
    if (members.empty()) return {};
    const Unmarked unmarked(selection);
    Zel2Main copied;
    copied.SetRules(drawing.Rules());
    copied.Colors()->CopyFrom(drawing.Colors());
    copied.Pens()->CopyFrom(drawing.Pens());
    copied.Fonts()->CopyFrom(drawing.Fonts());
    copied.Symbols()->CopyFrom(drawing.Symbols());
    for (Zel2* object : members) {
        if (StandsIn(object, members)) continue;
        std::unique_ptr<Zel2> copy = DeepCopy(*object);
        // Places count from the drawing, whatever the object stood in.
        if (!dynamic_cast<Zel2PointSet*>(object)) copy->Origin(object->AbsOrigin());
        copied.Add(copy.release());
    }
    return DocumentBytes(copied);
}

int Paste(Zel2Main& drawing, Zel2Selection& selection, const Bytes& copied, bool sameDrawing) {
    const std::unique_ptr<Zel2Main> source = LoadDocument(copied.data(), copied.size(), "the clipboard");
    Zel2Graph* const graph = GraphFor(drawing, selection);
    std::unique_ptr<Zel2Main> foreign;
    std::vector<Zel2*> pasted;
    for (int i = 0; i < source->GetCount(); ++i) {
        Zel2* const object = (*source)[i];
        auto* const series = dynamic_cast<Zel2PointSet*>(object);
        if (!object || (series && (!graph || !sameDrawing))) continue;
        source->Del(i);
        object->SetParent(nullptr);
        if (series) {
            graph->AddIn(object);
            graph->UpdateWindow();
        } else {
            object->Origin(object->Origin() + CSize(kPasteOffset, -kPasteOffset));
            if (!sameDrawing && !foreign) foreign = std::make_unique<Zel2Main>();
            (sameDrawing ? drawing : *foreign).Add(object);
        }
        pasted.push_back(object);
    }
    if (foreign) {
        foreign->SetRules(source->Rules());
        foreign->Colors()->CopyFrom(source->Colors());
        foreign->Pens()->CopyFrom(source->Pens());
        foreign->Fonts()->CopyFrom(source->Fonts());
        foreign->Symbols()->CopyFrom(source->Symbols());
        drawing.Add(foreign.release());
    }
    if (!pasted.empty()) Choose(selection, pasted);
    return static_cast<int>(pasted.size());
}

void PasteText(Zel2Main& drawing, Zel2Selection& selection, const std::string& text, const CPoint& at) {
    auto* const box = new Zel2TRect(CRect(at, kTextSize), text.c_str(), -1, -1);
    drawing.Add(box);
    box->RegisterFont("Text", "Arial", 100, 0, 0, 0, 0, RGB(0, 0, 0), RGB(0, 0, 0));
    Choose(selection, {box});
}

void SelectAll(Zel2Main& drawing, Zel2Selection& selection) {
    std::vector<Zel2*> all;
    for (int i = 0; i < drawing.GetCount(); ++i) {
        if (drawing[i]) all.push_back(drawing[i]);
    }
    Choose(selection, all);
}

void SelectNext(Zel2Main& drawing, Zel2Selection& selection, int by) {
    const int last = static_cast<int>(selection.GetSize()) - 1;
    Zel2* const next = ChildAfter(drawing, last >= 0 ? selection[last] : nullptr, by);
    if (next) Choose(selection, {next});
}

}  // namespace zel::view
