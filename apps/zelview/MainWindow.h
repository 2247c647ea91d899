// The program's window.
#pragma once

#include "apps/zelview/DocumentFile.h"
#include "apps/zelview/DrawingView.h"
#include "apps/zelview/History.h"

#include <QFileSystemWatcher>
#include <QKeySequence>
#include <QMainWindow>
#include <QTimer>

#include <functional>
#include <memory>

class QAction;
class QLabel;
class QMenu;

namespace zel::view {

// One window with one document. What can fail tells the user why and answers false; the document stays as it
// was then.
class MainWindow : public QMainWindow {
  public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    // Shows a document, a classic archive excepted; a CSV file becomes a new drawing. Offers unsaved work
    // that an earlier run has left. Does not ask for changes of the document before: see MayLose.
    bool Open(const QString& path);
    bool OpenCsv(const QString& path);
    // Offers what earlier runs have left of drawings that never had a file, in the place of the drawing in
    // the window; asks for its changes before.
    void RecoverUntitled();
    bool Save();
    bool SaveAs(const QString& path);
    // In the format of the ending; all pages of a report.
    bool Export(const QString& path);
    // Asks what to do with unsaved changes; true when the document may go.
    bool MayLose();

    DrawingView& View() { return *view_; }
    History& Steps() { return history_; }
    QString Path() const { return file_.Path(); }
    // The action of a name, as the menus have it; for tests and toolbars.
    QAction* Action(const QString& name) const;
    // Writes unsaved work beside the document at once; otherwise it happens by the clock.
    void KeepCopy();
    // Looks whether another program has changed the file, and asks what to do about it.
    void CheckFile();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    using Slot = std::function<void()>;
    // The shortcuts of an action: one, or all that the desktop knows for a command.
    struct Keys {
        Keys() = default;
        Keys(const char* key) : all{QKeySequence(key)} {}
        Keys(QKeySequence::StandardKey command) : all(QKeySequence::keyBindings(command)) {}
        QList<QKeySequence> all;
    };

    // Menus, in MainWindowMenus.cpp.
    void MakeMenus();
    void MakeFileMenu();
    void MakeEditMenu();
    void MakeViewMenu();
    void MakePageMenu();
    void MakeHelpMenu();
    void MakeToolBar();
    QAction* Add(QMenu* menu, const char* name, const QString& text, const Keys& keys, const Slot& slot);
    QAction* AddCommand(QMenu* menu, const char* name, const QString& text, const Keys& keys, UINT command);
    void AddMoves(QMenu* menu);
    void ShowRecent();
    void Remember(const QString& path);
    void UpdateActions();

    // Runs `work`; a failure is told under `what`.
    bool Try(const QString& what, const std::function<void()>& work);
    // The same for work that may take its time: it runs beside the window, and the user can cancel it.
    bool TryLong(const QString& what, const QString& label, const std::function<void(Work&)>& work);
    bool Load(const QString& what, const QString& path, std::unique_ptr<Zel2Main>& drawing);
    bool Say(const QString& what, const QString& why);
    void Show(std::unique_ptr<Zel2Main> drawing, bool saved);
    void ShowName();
    void ShowState(const Bytes& state);
    void Record(const QString& edit);
    void Edited(const QString& edit);
    void OfferCopies();
    void Watch();
    void ExportNow(const QString& path, Work& work);
    void Zoom(int direction);
    void Command(UINT id);
    void GoToPage(int page);
    // Opens the drawing after (`by` 1) or before (-1) this one in its folder, round and round.
    void OpenNeighbour(int by);
    void Copy();
    void PasteClipboard();
    void ShowPosition(const Position& position);
    QString Formatted(int thousandths) const;
    void AskOpen();
    void AskCsv();
    bool AskSaveAs();
    void AskExport();

    DrawingView* view_;  // its widget owns it
    QWidget* viewWidget_ = nullptr;
    History history_;
    DocumentFile file_;
    QString drawingId_;  // tells the clipboard where objects come from
    QFileSystemWatcher watcher_;
    QTimer copyTimer_;
    QTimer checkTimer_;
    QMenu* recent_ = nullptr;
    QLabel* position_ = nullptr;
    QLabel* values_ = nullptr;
    QLabel* page_ = nullptr;
    Position lastPosition_;
    bool millimetres_ = true;
    bool asking_ = false;
    bool busy_ = false;
};

}  // namespace zel::view
