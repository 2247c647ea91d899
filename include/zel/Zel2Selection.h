// The objects that the user has selected in a drawing.
#pragma once

#include <zel/Zel2.h>
#include <zel/platform/Collections.h>

// A list of selected objects in the order in which they were added; at most one of them has the focus. The
// selection owns nothing, and its destructor neither deselects nor deletes.
//
// A view drives dragging like this: StartDrag at the press over a selected object, DragTo at every move and
// at the release, then EndDrag.
class Zel2Selection : public CObArray {
  public:
    // Throws CInvalidArgException* out of range.
    Zel2* operator[](int i) const { return static_cast<Zel2*>(GetAt(i)); }

    // The object that has the focus, one of the elements; null for none. See SetFocus.
    Zel2* focus = nullptr;
    // What Select was last called with.
    int selected = 0;
    // 0: Add replaces the first element; otherwise it appends. Views set it before each gesture that selects.
    int accumulate = 0;

    Zel2* GetFocus() const { return focus; }

    // Null is ignored. Appends (once) or replaces the first element, which is not deselected; see
    // `accumulate`.
    void Add(Zel2* object);
    // 1 when any element is hit at `pt` (device pixels).
    int IsIn(const CPoint& pt);
    void Select(int on);
    // Adds `object` and gives it the focus; null takes the focus away and leaves the object in the list.
    void SetFocus(Zel2* object);
    // Deselects what Select selected, takes the focus away and empties the list.
    void RemoveAll();

    // Lets go, without touching them, of all members that are `object` or stand in it.
    void Forget(const Zel2* object);

    void StartDrag(CPoint& pt);
    void DragTo(CPoint& pt);
    void EndDrag();

  private:
    template <class Visit>
    void ForEach(Visit visit) {
        for (int i = 0; i < static_cast<int>(GetSize()); ++i) visit((*this)[i]);
    }
};
