// A program with a Qt application of its own, which ends before what the library keeps of fonts does.
#include <zel/qt/Install.h>
#include <zel/zel.h>

#include <QGuiApplication>

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    zel::qt::Install();
    Zel2Main root;
    const int font = root.RegisterFont("text", "Arial", 120, 0, 0, 0, 0, 0, 0);
    root.Add(new Zel2Text("text", CPoint(2000, 1500), font, DT_CENTER, 0, -1, -1, {-1, 0.0F}));
    root.SetSize(CSize(4000, 3000));
    zel::Export(root, argv[1]);
    return 0;
}
