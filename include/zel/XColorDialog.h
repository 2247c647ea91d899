// The colour picker.
#pragma once

#include <zel/ZelRules.h>
#include <zel/platform/Dialog.h>

#include <array>

// A dialog for choosing a colour by direct manipulation: three planes of two channels each, a slide for each
// channel, a luminance slide that darkens towards black or lightens towards white, a row of fixed colours,
// and a field for each channel. Pressing or dragging with the left button changes the colour at once.
class CXColorDialog : public CDialog {
    DECLARE_DYNAMIC(CXColorDialog)
  public:
    static constexpr UINT kTemplate = 303;
    enum Area { RED_GREEN, RED_BLUE, BLUE_GREEN, RED, GREEN, BLUE, LUMINANCE, FIXED, AREA_COUNT };

    // Starts from `*colour`, and OK writes there; null starts from white and keeps the result in the dialog.
    CXColorDialog(CWnd* parent, const char* caption, COLORREF* colour);

    // Exact rules keep channels from going below 0 at the dark end of the luminance slide.
    void SetRules(ZelRules rules) { rules_ = rules; }
    // The colour being edited, 24 bits.
    COLORREF Colour() const;
    // An area in client coordinates.
    CRect AreaRect(Area area) const { return areas_[area]; }

    virtual void UpdateAllPictures(CDC* dc);
    void PaintSlide(CRect& r, int red, int green, int blue, CDC* dc);
    void PaintLumin(CRect& r, CDC* dc);
    void PaintConstColors(CRect& r, CDC* dc);

  protected:
    BOOL OnInitDialog() override;
    void OnOK() override;
    void DoDataExchange(CDataExchange* dx) override;
    const zel::DialogTemplate* Template() const override;
    DECLARE_MESSAGE_MAP()
    void OnPaint();
    void OnLButtonDown(UINT flags, CPoint pt);
    void OnMouseMove(UINT flags, CPoint pt);
    void OnChangeEditR();
    void OnChangeEditG();
    void OnChangeEditB();

  private:
    struct Channels {
        int red;
        int green;
        int blue;
    };
    void MouseTo(const CPoint& pt);
    void MoveInPlane(int& across, int& down, const CRect& area, const CPoint& at) const;
    int ChannelAt(const CRect& area, int x) const;
    void MoveLuminance(const CRect& area, int x);
    void Changed();
    void ReadField(UINT id, int& channel);
    void PaintPlane(const CRect& r, Channels fixed, int Channels::*across, int Channels::*down, CDC* dc);
    void PaintBands(const CRect& r, int from, int width, Channels begin, Channels end, CDC* dc);
    void PaintFrame(const CRect& r, CDC* dc);
    void FrameBttn(const CPoint& at, CDC* dc);
    void ScrollBttn(const CRect& r, int x, CDC* dc);

    CString caption_;
    COLORREF default_ = RGB(255, 255, 255);
    COLORREF* result_;
    Channels now_{};
    std::array<CRect, AREA_COUNT> areas_;
    ZelRules rules_ = ZelRules::CLASSIC;
    mutable zel::DialogTemplate template_;
};
