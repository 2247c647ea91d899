// Windows, dialogs and printers through Qt's widgets.
#pragma once

class CView;
class CWnd;
class QWidget;

namespace zel::widgets {

// Installs windows, images, PDF and SVG as the program's platform. Safe to call more than once, at the start
// of main. Makes a Qt application object where there is none; a host with its own makes a QApplication first.
// Without a display, and with QT_QPA_PLATFORM unset, windows go offscreen. Throws zel::Error
// when the host's application object cannot show widgets.
void Install();

// Gives `view` a window that is a child widget of `parent` and returns the widget, which owns the view from
// then on. Put it into a layout like any other widget. Throws zel::Error when the view refuses.
//
//     auto* view = new CZelView;
//     layout->addWidget(zel::widgets::Embed(view, parent));
//     view->SetDrawing(drawing);
QWidget* Embed(CView* view, QWidget* parent = nullptr);

// The widget of a window, to put it into a layout or to give it an icon; null for one without a window.
QWidget* WidgetOf(const CWnd& window);

}  // namespace zel::widgets
