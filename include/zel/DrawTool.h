// Named drawing tools and the tables that hold them.
#pragma once

#include <zel/platform/Archive.h>
#include <zel/platform/Object.h>
#include <zel/platform/String.h>
#include <zel/platform/WinTypes.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

class CDC;
class DrawToolTable;

// The base of colours, pens, fonts and plotting symbols: a name, a printer flag that chooses between a screen
// and a printer variant, and the context that the tool is open on.
//
// A tool is open between OpenOn and Close; only then may it hold platform objects. Drawing with a closed tool
// does nothing.
class DrawTool : public CObject {
    DECLARE_SERIAL(DrawTool)
  public:
    DrawTool() = default;
    explicit DrawTool(const char* name) : name_(name) {}
    // A copy is never open.
    DrawTool(const DrawTool& other);

    // A new copy of the tool's own kind, owned by the caller; null in the base.
    virtual DrawTool* ACopy();
    // Attaches to `dc` (borrowed) at an output scale in thousandths.
    virtual void OpenOn(CDC* dc, int scale);
    virtual void Close();
    // Stores the printer flag and answers the previous one.
    virtual int SetPrinter(int on);
    // Edits the tool interactively; the base does nothing.
    virtual void Edit();
    virtual DrawTool& operator=(const DrawTool& other);

    // The name only.
    void Serialize(CArchive& ar) override;

    CString Name() const { return name_; }
    void Name(const char* name) { SetName(name); }
    CString GetName() const { return name_; }
    void SetName(const char* name);
    // How much the tool's ink covers, from 0 to 1, opaque; other values are brought within, and what is no
    // number is opaque. Documents keep it, classic archives do not. A tool that is open goes on with it.
    // Metafiles, which know opaque ink only, show it as on white paper.
    double Opacity() const { return opacity_; }
    void Opacity(double opacity);
    // The name without a copy.
    const CString& NameRef() const { return name_; }

  protected:
    CDC* Dc() const { return dc_; }
    void AttachDc(CDC* dc) { dc_ = dc; }
    bool Printing() const { return printer_ != 0; }
    void StoreScale(int scale) { scale_ = scale; }
    int OutputScale() const { return scale_; }
    // The opacity as devices take it, 0 to 255.
    BYTE InkOpacity() const;
    // The field of the opacity in documents; loading from where there is none makes the tool opaque.
    void ExchangeOpacity(CArchive& ar);
    void CopyOpacity(const DrawTool& other) { opacity_ = other.opacity_; }
    // Copies name, printer flag, opacity and scale; the own context stays.
    void CopyBase(const DrawTool& other);

    // Stores or loads the name.
    void ExchangeName(CArchive& ar);

    int printer_ = 0;

  private:
    friend class DrawToolTable;

    CString name_ = "<Unknown>";
    DrawToolTable* table_ = nullptr;  // which finds the tool by its name
    CDC* dc_ = nullptr;
    int scale_ = 0;
    double opacity_ = 1;
};

// The tools of one kind in a drawing, found by index (dense from 0, never changing once given) or by name.
// The table owns its tools. The first tool of a name wins: later ones of the same name are discarded.
class DrawToolTable : public CObject {
    DECLARE_SERIAL(DrawToolTable)
  public:
    DrawToolTable();
    // A deep copy; the copy is closed.
    DrawToolTable(const DrawToolTable& other);

    // Replaces the own tools by copies of those of `other`, unopened, in the same places: that of a tool
    // which does not copy itself stays empty.
    virtual void CopyFrom(const DrawToolTable* other);
    virtual int Size();
    // Edits the table interactively and answers whether changes were accepted. Tables without an editor
    // answer 0.
    virtual int Edit();
    virtual DrawToolTable& operator=(const DrawToolTable& other);

    // Takes ownership of `tool` and answers its index. When the name is taken, `tool` is deleted and the
    // index of the tool that has the name is answered. In an open table the new tool is opened at once. Null
    // answers -1.
    int Register(DrawTool* tool);
    // Null when there is no such tool.
    DrawTool* Get(int i) const;
    DrawTool* Get(const char* name) const;
    // The index of the first tool with exactly this name, renamed ones included; -1 when there is none.
    int GetIndex(const char* name) const;

    // Opens every tool on `dc` (borrowed), with the printer flag that the context has.
    void OpenOn(CDC* dc, int scale);
    void Close();

    // The count and the tools. Loading replaces the content; a repeated name keeps its first tool.
    void Serialize(CArchive& ar) override;

  protected:
    CDC* Dc() const { return dc_; }
    // The scale of the last OpenOn.
    int OutputScale() const { return scale_; }

  private:
    friend class DrawTool;

    int Count() const { return static_cast<int>(tools_.size()); }
    void Clear();
    void Append(std::unique_ptr<DrawTool> tool);
    void NoteName(int index) const;

    std::vector<std::unique_ptr<DrawTool>> tools_;
    // The first tool of each name; made anew after a tool was renamed.
    mutable std::unordered_map<std::string, int> indexOfName_;
    mutable bool renamed_ = false;
    CDC* dc_ = nullptr;
    int scale_ = 0;
};
