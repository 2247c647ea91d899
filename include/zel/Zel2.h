// The base of every object that can stand in a drawing.
#pragma once

#include <zel/DrawSymbolKind.h>
#include <zel/Mouse.h>
#include <zel/WorldFrame.h>
#include <zel/ZelRules.h>
#include <zel/platform/Archive.h>
#include <zel/platform/Geometry.h>
#include <zel/platform/Object.h>

#include <memory>
#include <vector>

class CDC;
class CRgn;
class CWnd;
struct CPrintInfo;
class DrawColor;
class DrawColorTable;
class DrawFont;
class DrawFontTable;
class DrawPen;
class DrawPenTable;
class DrawSymbol;
class DrawSymbolTable;
class Mapping;
class Zel2Selection;

// A drawable object: a link to the parent that holds it, a position relative to that parent, and a status
// word.
//
// A drawing is a tree. Containers (Zel2Set) own their children; the root (Zel2Main) owns the coordinate
// mapping and the tool tables. An object draws itself in OnDraw on the context that DC() answers, and finds
// what it needs (tables, mapping, window, context, scale, printing flag, rules) by asking its parent, and so
// on up to the first object that knows. Without a parent each question has a harmless answer, stated below.
//
// To make a new kind of object, derive from it and override OnDraw; add Size when it covers an area,
// Serialize and DECLARE_SERIAL when it is to be stored.
//
// Units: positions and sizes are world units, thousandths of an inch with y upwards by convention. Points of
// mouse operations are device pixels.
class Zel2 : public CObject {
    DECLARE_SERIAL(Zel2)
  public:
    // Bits of the status word.
    enum Status : DWORD {
        SELECTED = 0x1,
        PROPAGATE = 0x2,
        FOCUS = 0x4,
        // In reports with exact rules: on one page with the beginning of the object after it; on a new page.
        KEEP_WITH_NEXT = 0x100,
        BREAK_BEFORE = 0x200
    };
    // Codes of IsClass and GetParentClass.
    enum ClassCode { CLASS_CONTAINER = 1, CLASS_GRAPH = 4 };
    // Heights, in world units, that are left on the page in hand and on each page after it.
    struct PageRoom {
        int first;
        int rest;
        bool empty;  // whether nothing stands on the page in hand
    };
    // Codes of OnNotify.
    enum Notification : long {
        RESIZED = 1,
        // The user has changed the object's text in place; beyond the codes that hosts give their objects.
        EDITED = 0x10000
    };

    Zel2() = default;
    // Stores the four values as given. The object does not add itself to the parent: the parent's Add does.
    Zel2(Zel2* parent, CPoint origin, unsigned long status, CSize size);
    // Copies every field, the parent's address included.
    Zel2(const Zel2& other);
    Zel2& operator=(const Zel2& other);

    // Position and status. The parent is restored by the container that loads the object.
    void Serialize(CArchive& ar) override;

    // Called around an output pass: attach to `dc` at an output scale in thousandths, and let go again.
    virtual void OpenOn(CDC* dc, int scale);
    virtual void Close();

    // Sets (`on` not 0) or clears the bits of `mask`.
    virtual void SetStatus(unsigned long mask, int on);

    // A point relative to this object's origin, in logical units; unchanged when there is no mapping.
    virtual CPoint R2L(const CPoint& rel);
    // A point of the enclosing graph's world coordinates in logical and in drawing units; (0, 0) outside a
    // graph.
    virtual CPoint F2L(double x, double y);
    virtual CPoint F2R(double x, double y);

    // Look-ups; in brackets the answer without a parent.
    virtual int IsPrinting();                      // [0]
    virtual DrawColorTable* Colors();              // [null]
    virtual DrawFontTable* Fonts();                // [null]
    virtual DrawPenTable* Pens();                  // [null]
    virtual DrawSymbolTable* Symbols();            // [null]
    virtual Mapping* Map();                        // [null]
    virtual CWnd* Window();                        // [null]
    virtual int Scale();                           // [1000]
    virtual CDC* DC();                             // [null]
    virtual int GetColorIndex(const char* name);   // [-1]
    virtual int GetFontIndex(const char* name);    // [-1]
    virtual int GetPenIndex(const char* name);     // [-1]
    virtual int GetSymbolIndex(const char* name);  // [-1]
    virtual void ResetClip();
    virtual void SetClipLog(CRgn* region);

    // Whether the object is of the kind `code`: see ClassCode. Containers answer to every odd code.
    virtual int IsClass(int code);

    // Moves the object to a rectangle of logical units given from the root; only where there is a mapping.
    virtual void MoveToAbs(const CRect& r);
    // Moves and sizes the object to a rectangle relative to the parent, both ends included, and invalidates
    // the area it leaves and the area it comes to.
    virtual void MoveTo(const CRect& r);
    virtual void MoveTo(const CPoint& p);
    virtual CSize Size();
    virtual CSize MinSize();
    virtual void SetSize(const CSize& size);

    // Control points (handles), in drawing units from the root.
    virtual unsigned int nCpt();
    virtual CPoint Cpt(int i);

    virtual void OnDraw();
    virtual void OnPrint(CDC* dc, CPrintInfo* info);
    virtual void OnPrintGraph(CDC* dc, CPrintInfo* info);

    // Draws the markers of the control points on the window at once, outside any output pass.
    virtual void DrawCPT();
    virtual void DrawCPT(int i);
    // The control point whose marker lies within 2 pixels of `pt`; -1 for none or when not selected.
    virtual int CptAt(const CPoint& pt);
    // The edge at `pt`; -1 in the base.
    virtual int EdgeAt(const CPoint& pt);
    virtual int IsIn(const CPoint& pt);
    virtual MouseAction OnMouse(const MouseStatus& ms);
    // A click at a point that is not the beginning of a drag: what reacts to it by itself, such as a legend,
    // returns 1, and nothing is selected.
    virtual int OnClick(const CPoint& pt);
    // Selects (1) or deselects (0) and redraws; answers 1.
    virtual int Select(int on);
    // Adds the object to `sel` when it lies wholly within the device rectangle, or when it covers the point.
    virtual void SelectAt(const CRect& r, Zel2Selection* sel);
    virtual void SelectAt(const CPoint& pt, Zel2Selection* sel);

    // The object's half of dragging; see Zel2Selection for the whole. The forms with an index drag one
    // control point.
    virtual void StartDrag(const CPoint& pt);
    virtual void StartDrag(int cpt);
    virtual void Drag(int cpt, CPoint pt);
    virtual void EndDrag();
    virtual void EndDrag(int cpt);
    virtual void DragTo(const CPoint& pt);

    // A message from a child: `sender` is the child through which it came. Passed on to the parent; 0 at the
    // root.
    virtual int OnNotify(Zel2* sender, long code);

    // `object`, with all that stands in it, is about to leave the tree below this object; passed on to the
    // parent.
    virtual void OnLeave(Zel2* object);

    // Registers a tool with the nearest registry; -1 when there is none. Arguments as those of the tools' own
    // constructors.
    virtual int RegisterColor(const char* name, unsigned long screen, unsigned long printer);
    virtual int RegisterPen(const char* name, int style, int width, unsigned long screen,
                            unsigned long printer, int* pattern);
    virtual int RegisterFont(const char* name, const char* face, int ptSize10, int bold, int italic,
                             int underline, int strikeOut, unsigned long screen, unsigned long printer);
    virtual int RegisterSymbol(const char* name, CSize size, zel::SymbolKind type, const char* text,
                               int penWidth, unsigned long penScreen, unsigned long penPrinter,
                               unsigned long brushScreen, unsigned long brushPrinter, int border,
                               const char* face, int fontSize, unsigned long fontScreen,
                               unsigned long fontPrinter, int* xs, int* ys, int n);
    virtual void SaveTools(CDC* dc);
    virtual void RestoreTools(CDC* dc);

    // Beyond the classic interface.

    // The rule set of the drawing [CLASSIC].
    virtual ZelRules Rules();
    // The world range that this object gives to what stands in it; null for all but graphs.
    virtual const WorldFrame* Frame();
    // The nearest frame that an ancestor gives; null outside graphs.
    const WorldFrame* EnclosingFrame() const;
    // Breaks the object for pages: it keeps what fits into room.first, and the answer is what follows, each
    // piece within room.rest. Nothing is answered, and the object left as it is, when it fits, when it cannot
    // be broken, or when not even its beginning fits on a page that is not empty. On an empty page something
    // is kept whatever its height.
    virtual std::vector<std::unique_ptr<Zel2>> SplitPages(const PageRoom& room);
    // The least height of a page that takes the beginning of the object.
    virtual int BeginningHeight();
    // The height that the object takes on a printed page.
    virtual int PrintedHeight();
    // The area that the object paints, its marks excepted: device pixels, corners ordered. What an object
    // that paints more than its size tells says in an override. Needs a mapping.
    virtual CRect PaintedArea();
    // Lets the user edit the object's text in the window where it stands; false for objects without one.
    virtual bool EditInPlace();

    Zel2* GetParent() const { return parent_; }
    // Sets the link and nothing else; null detaches.
    void SetParent(Zel2* parent) { parent_ = parent; }
    // The nearest ancestor (never the object itself) that is of the kind `code`; null when there is none.
    Zel2* GetParentClass(int code) const;
    bool IsExact() { return Rules() == ZelRules::EXACT; }

    int GetStatus(unsigned long mask) const { return (status_ & static_cast<DWORD>(mask)) != 0 ? 1 : 0; }
    void ResetStatus(unsigned long mask) { SetStatus(mask, 0); }
    int Selected() const { return static_cast<int>(status_ & SELECTED); }

    // 1 when colours, fonts, pens and a mapping can be found; symbols are not asked for.
    int Ready();
    // The tool at an index of the nearest table; null when there is no table or no such index.
    DrawColor* Color(int i);
    DrawFont* Font(int i);
    DrawPen* Pen(int i, int = 0);
    DrawSymbol* Symbol(int i);

    CPoint Origin() const { return origin_; }
    void Origin(const CPoint& origin) { origin_ = origin; }
    // The position counted from the root.
    CPoint AbsOrigin() const;
    CRect AbsRect();

    // Invalidates the area that the object paints (PaintedArea); 0 when there is no window.
    int UpdateWindow();
    // Kept for host code; without effect. Clipping is SetClipLog and ResetClip.
    void SetClip(CRect&) {}
    void SetClip() {}

  protected:
    virtual Zel2* GetSelectableAt(const CPoint& pt);
    friend class Zel2Set;

    // The parent's absolute origin; (0, 0) at the root.
    CPoint ParentOrigin() const { return parent_ ? parent_->AbsOrigin() : CPoint(); }
    // The area in device pixels, corners ordered; as it is where there is no mapping.
    CRect DeviceRect();
    CSize DragOffset() const { return dragOffset_; }

  private:
    Zel2* parent_ = nullptr;
    CPoint origin_;
    DWORD status_ = 0;
    CSize dragOffset_;
};
