// The root of a drawing.
#pragma once

#include <zel/Mapping.h>
#include <zel/Zel2Tools.h>
#include <zel/platform/GdiTypes.h>

#include <functional>
#include <utility>
#include <vector>

// A tool registry that adds what only the root of a drawing has: the coordinate mapping, the window that
// shows the drawing, the context of the output pass in progress, and a stack of clip regions.
//
// Units: the drawing is laid out in thousandths of an inch, y upwards, with its lower left corner at (0, 0).
// To draw: PrepareMappingFor(&dc, nullptr, 0, 0), then Draw(&dc). To write a file: zel::Export. To keep the
// drawing: zel::SaveDocument.
//
// Copies share children, tables, mapping, window and context: only one of them may be destroyed with the
// children and the mapping.
class Zel2Main : public Zel2Tools {
    DECLARE_SERIAL(Zel2Main)
  public:
    Zel2Main();
    Zel2Main(const Zel2Main& other);
    Zel2Main& operator=(const Zel2Main& other);
    ~Zel2Main() override;

    // The window (borrowed) in which changed areas are invalidated; null for none.
    void SetWindow(CWnd* window) { window_ = window; }
    // Takes ownership of `mapping`. The previous mapping is not deleted: it is the caller's again.
    void SetMapping(Mapping* mapping) { mapping_ = mapping; }
    // Is called with each object that leaves the drawing, with all that stands in it, while it is still
    // there: for who keeps pointers to objects. Not copied or stored.
    void SetLeaveHandler(std::function<void(Zel2*)> handler) { leaveHandler_ = std::move(handler); }
    // Is called with each object whose text the user has changed in place. Not copied or stored.
    void SetEditHandler(std::function<void(Zel2*)> handler) { editHandler_ = std::move(handler); }
    // The rule set of the drawing; stored in documents, not in classic archives.
    void SetRules(ZelRules rules) { rules_ = rules; }

    // A root that stands in another drawing passes these up to it; its tables and rules stay its own.
    Mapping* Map() override;
    CWnd* Window() override;
    CDC* DC() override;
    int Scale() override;
    int IsPrinting() override;
    ZelRules Rules() override;
    void OnLeave(Zel2* object) override;
    int OnNotify(Zel2* sender, long code) override;
    // Pushes and pops a clip level during an output pass; outside of one both do nothing. Classic rules keep
    // the stack but leave the context unclipped; exact rules clip to the intersection of all levels (device
    // units).
    void SetClipLog(CRgn* region) override;
    void ResetClip() override;

    // Sets world and logical rectangle for output on `dc`: 1000 world units to an inch, y up. On a printing
    // context with `info` and both `a` and `b` not 0 the world grows by 800 - (page - 1) * a * b in height
    // and the drawing moves right by 300 logical units.
    void PrepareMappingFor(CDC* dc, CPrintInfo* info, int a, int b);
    // One complete pass over the tree. When drawing raises an exception the context's objects are selected
    // back, all tools are closed, and the exception goes on: the next pass starts clean.
    void Draw(CDC* dc);
    // One printed page.
    void OnPrint(CDC* dc, CPrintInfo* info) override;

    // Writes the drawing into a Windows metafile on disk, or in memory when `fileName` is null. Null on
    // failure.
    HMETAFILE CreateMF(const char* fileName);
    // Writes the drawing into a metafile file with a placeable header: 36 bytes long with classic rules, the
    // published 22 bytes with exact ones. Classic rules answer 0 only when the temporary file cannot be made;
    // exact rules answer 0 on any failure and leave an existing file whole.
    int CreatePlaceableMF(const char* fileName);

    void Serialize(CArchive& ar) override;

  private:
    class Pass;

    int CreateClassicPlaceableMF(const char* fileName);
    template <class DrawTree>
    void RunPass(CDC* dc, DrawTree drawTree);
    void SelectTopClip();

    Mapping* mapping_ = nullptr;
    CWnd* window_ = nullptr;
    CDC* dc_ = nullptr;
    std::function<void(Zel2*)> leaveHandler_;
    std::function<void(Zel2*)> editHandler_;
    std::vector<HRGN> clipLevels_;
    ZelRules rules_ = ZelRules::CLASSIC;
};
