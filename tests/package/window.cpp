// A program outside the library's tree: a window with a view.
#include <zel/platform/Exception.h>
#include <zel/platform/FrameWnd.h>
#include <zel/platform/GraphicsDevice.h>
#include <zel/platform/WindowPeer.h>
#include <zel/widgets/Widgets.h>
#include <zel/zel.h>

#include <cstdio>

int main() {
    try {
        zel::widgets::Install();
        auto* frame = new CFrameWnd;
        frame->Create("Outside", CRect(0, 0, 400, 300));
        auto* view = new CZelView;
        frame->SetView(view);
        auto* root = new Zel2Main;
        root->Add(new Zel2Rect(CRect(0, 0, 999, 999), -1, root->RegisterColor("red", RGB(255, 0, 0), 0),
                               Zel2Rect::RECTANGLE, -1));
        view->SetDrawing(root);
        frame->ShowWindow(SW_SHOW);
        view->UpdateWindow();
        const bool red = view->Peer()->ClientDevice().GetPixel(CPoint(20, 20)) == RGB(255, 0, 0);
        frame->DestroyWindow();
        return red ? 0 : 1;
    } catch (CException* e) {
        std::fprintf(stderr, "%s\n", zel::TakeMessage(e).c_str());
        return 1;
    }
}
