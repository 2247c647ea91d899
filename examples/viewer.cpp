// A program with a window, and without a header of Qt's: shows the document that it is given, or a small
// drawing.
//
//     zel_viewer [FILE.zel]
#include <zel/platform/FrameWnd.h>
#include <zel/widgets/Widgets.h>
#include <zel/zel.h>

#include <cmath>
#include <cstdio>
#include <memory>

namespace {

std::unique_ptr<Zel2Main> SmallDrawing() {
    auto root = std::make_unique<Zel2Main>();
    root->SetRules(ZelRules::EXACT);
    auto* graph = new Zel2Graph;
    root->Add(graph);
    graph->SetCoord(0, -1, 10, 1);
    auto* points = new Zel2PointArray;
    for (int i = 0; i <= 500; ++i) points->Append(i / 50.0, std::sin(i / 20.0) * std::exp(-i / 250.0));
    points->SetPen(root->RegisterPen("Curve", DrawPen::SOLID, 4, RGB(200, 30, 30), RGB(0, 0, 0), nullptr));
    graph->AddIn(points);
    return root;
}

class ViewerApp : public CWinApp {
  public:
    explicit ViewerApp(const char* file) : file_(file) {}

    BOOL InitInstance() override {
        std::unique_ptr<Zel2Main> drawing = file_ ? zel::LoadDocument(file_) : SmallDrawing();
        auto* frame = new CFrameWnd;
        frame->Create(file_ ? file_ : "Zel");
        m_pMainWnd = frame;
        auto* view = new CZelView;
        if (!frame->SetView(view)) return FALSE;
        view->SetDrawing(drawing.release());
        const UINT buttons[] = {ID_ZEL_SELECT, ID_ZEL_ZOOM_RECTANGLE, ID_ZEL_ZOOM_IN,   ID_ZEL_ZOOM_OUT,
                                ID_SEPARATOR,  ID_ZEL_FIT_HEIGHT,     ID_ZEL_FIT_WIDTH, ID_ZEL_FIT_WINDOW,
                                ID_SEPARATOR,  ID_ZEL_FONTS,          ID_ZEL_COLORS,    ID_ZEL_PENS};
        view->CreateToolBar(AFX_IDW_TOOLBAR, buttons, 12);
        frame->ShowWindow(SW_SHOW);
        view->SendMessage(WM_COMMAND, ID_ZEL_FIT_WINDOW);
        return TRUE;
    }

  private:
    const char* file_;
};

}  // namespace

int main(int argc, char** argv) {
    try {
        zel::widgets::Install();
        return ViewerApp(argc > 1 ? argv[1] : nullptr).Run();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
    }
    return 1;
}
