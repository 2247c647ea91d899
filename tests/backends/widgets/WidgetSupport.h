// Real widgets under the hand of a test.
#pragma once

#include <zel/platform/Wnd.h>
#include <zel/widgets/Widgets.h>

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <gtest/gtest.h>

namespace zel::test {

class OnWidgets : public testing::Test {
  protected:
    static void SetUpTestSuite() { widgets::Install(); }
    ~OnWidgets() override {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }
    static void Settle() {
        for (int i = 0; i < 5; ++i) QApplication::processEvents();
    }
    static void Show(QWidget& widget) {
        widget.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
        widget.activateWindow();
        Settle();
    }
    // Does something while a dialog or a rubber band has the events; tried again until it can be done.
    static void Soon(const std::function<bool()>& action, int attempts = 100) {
        QTimer::singleShot(20, qApp, [=] {
            if (action()) return;
            if (attempts == 0) {
                ADD_FAILURE() << "nothing to act on appeared";
                if (QWidget* modal = QApplication::activeModalWidget()) modal->close();
                return;
            }
            Soon(action, attempts - 1);
        });
    }
};

}  // namespace zel::test
