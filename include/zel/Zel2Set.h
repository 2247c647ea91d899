// The container of the drawing tree.
#pragma once

#include <zel/Zel2.h>
#include <zel/platform/Collections.h>

#include <memory>

// An ordered list of child objects, drawn in list order: a later child lies over an earlier one. The set owns
// every child that is in it and deletes it with itself. A slot may be empty: removing by index keeps the
// other indexes.
//
// Copies share the children: both sets then believe that they own them, and the caller must DetachChildren()
// one of them before it is destroyed. For an independent copy see zel::DeepCopy.
class Zel2Set : public Zel2 {
    DECLARE_SERIAL(Zel2Set)
  public:
    Zel2Set() = default;
    // Copies the pointers of `children` when given; the first four arguments are not used (set position and
    // status afterwards). The children's links to their parent stay as they are.
    Zel2Set(Zel2* parent, CPoint origin, unsigned long status, CSize size, CObArray* children);
    // Shares the children of `other`; see the class comment.
    Zel2Set(const Zel2Set& other);
    // Lets go of the own children without deleting them, then shares those of `other`.
    Zel2Set& operator=(const Zel2Set& other);
    ~Zel2Set() override;

    // The number of slots, empty ones included.
    virtual int GetCount();
    // Appends `child` (null takes an empty slot), takes ownership, makes the set its parent; answers the
    // index.
    virtual int Add(Zel2* child);
    // The same for an object of which the type is known; returns it.
    template <class Object>
    Object* Add(std::unique_ptr<Object> child) {
        Object* const added = child.get();
        Add(static_cast<Zel2*>(child.release()));
        return added;
    }
    // Removes and deletes `child`; nothing happens when it is not in the set.
    virtual void Del(Zel2* child);
    // Empties slot `i` and hands its child back undeleted, its parent link unchanged; null when out of range.
    virtual Zel2* Del(int i);

    // Hands all children back: clears their parent links and empties the list.
    void DetachChildren();
    // The child in slot `i`, null for an empty slot. Throws CInvalidArgException* out of range.
    Zel2* operator[](int i);

    void Serialize(CArchive& ar) override;
    void OpenOn(CDC* dc, int scale) override;
    void Close() override;
    // Changes the own status, and that of all children when the propagate bit is set after the change.
    void SetStatus(unsigned long mask, int on) override;
    int IsClass(int code) override;
    // The extent that the children cover, from the set's own origin; never negative.
    CSize Size() override;
    // The children's control points, numbered one child after another.
    unsigned int nCpt() override;
    CPoint Cpt(int i) override;
    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    // Prints the children that belong on page `info->m_nCurPage` (from 1): as many whole first-child heights
    // to a page as fit into the printable height less one inch. Throws CInvalidArgException* when there is no
    // first child.
    void OnPrintGraph(CDC* dc, CPrintInfo* info) override;
    // The topmost child that is hit answers.
    MouseAction OnMouse(const MouseStatus& ms) override;
    // The topmost child that reacts does.
    int OnClick(const CPoint& pt) override;
    void SelectAt(const CRect& r, Zel2Selection* sel) override;
    void SelectAt(const CPoint& pt, Zel2Selection* sel) override;

  protected:
    Zel2* GetSelectableAt(const CPoint& pt) override;
    // Whether OnPrint lays the children out on pages with OnPrintGraph; tables say yes.
    virtual bool PrintsByPages();
    // Takes over the pointers of `other`, without touching their parent links.
    void ShareChildren(const Zel2Set& other) { children_.Copy(other.children_); }
    void DeleteChildren();
    // The child in slot `i`, null for an empty slot or one out of range.
    Zel2* ChildAt(int i) const {
        return i >= 0 && i < static_cast<int>(children_.GetSize()) ? SlotAt(i) : nullptr;
    }
    // Puts `child` into an existing slot and makes the set its parent; what was there is let go of.
    void SetChild(int i, Zel2* child);
    // The number of slots; new ones are empty, children beyond it are let go of undeleted.
    void ResizeSlots(int count) { children_.SetSize(count); }

    // Calls `visit(child)` for each child in index order; children added meanwhile are visited too.
    template <class Visit>
    void ForEachChild(Visit visit) {
        for (int i = 0; i < static_cast<int>(children_.GetSize()); ++i) {
            if (Zel2* child = SlotAt(i)) visit(child);
        }
    }

  private:
    Zel2* SlotAt(int i) const { return static_cast<Zel2*>(children_.GetAt(i)); }
    int ChildrenPerPage(CDC* dc);

    CObArray children_;
};
