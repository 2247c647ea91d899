#include "apps/zelview/MainWindow.h"

#include "apps/zel/Figure.h"
#include "apps/zel/Grouping.h"
#include "apps/zel/Proposal.h"
#include "apps/zelview/Editing.h"

#include <zel/platform/Exception.h>
#include <zel/platform/MessageBox.h>
#include <zel/tables/Table.h>
#include <zel/widgets/Widgets.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QUuid>

namespace zel::view {
namespace {

constexpr int kCopyInterval = 20000;  // milliseconds between copies of unsaved work
constexpr int kCheckDelay = 300;      // until another program has finished writing
constexpr const char* kObjects = "application/x-zel-objects";
constexpr const char* kOrigin = "application/x-zel-origin";

QString Quoted(const QString& path) {
    return "\"" + path + "\"";
}

std::string Native(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

QString NameOf(ViewerEdit edit) {
    switch (edit) {
        case ViewerEdit::MOVE:
            return "Move";
        case ViewerEdit::RESIZE:
            return "Resize";
        case ViewerEdit::TEXT:
            return "Typing";
        case ViewerEdit::TABLE:
            return "Change of Tools";
    }
    return {};
}

// The figure that the kinds of the columns suggest.
std::unique_ptr<Zel2Main> FigureOf(const QString& path) {
    const tables::Table table = tables::Table::Read(Native(path));
    const cli::Proposal proposal = cli::ProposalFor(table);
    cli::FigureOptions options;
    options.title = QFileInfo(path).completeBaseName().toStdString();
    options.kind = proposal.kind;
    options.line = !proposal.points;
    options.symbols = proposal.points;
    const Column x = proposal.x.empty() ? Column() : table[proposal.x];
    std::vector<cli::Series> series;
    for (const std::string& y : proposal.ys) series.push_back({y, x, table[y], nullptr});
    if (!proposal.group.empty()) series = cli::Grouped(series, table[proposal.group]);
    if (x.GetKind() == Column::Kind::NUMBERS) options.xTitle = x.IsEmpty() ? proposal.ys.front() : proposal.x;
    if (proposal.ys.size() == 1 && !x.IsEmpty()) options.yTitle = proposal.ys.front();
    return cli::MakeFigure(series, options);
}

}  // namespace

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent), view_(new DrawingView) {
    viewWidget_ = widgets::Embed(view_, this);
    setCentralWidget(viewWidget_);
    setAcceptDrops(true);
    setWindowTitle("[*]Untitled");
    resize(1000, 750);
    position_ = new QLabel(this);
    values_ = new QLabel(this);
    page_ = new QLabel(this);
    for (QLabel* label : {page_, values_, position_}) {
        label->setContentsMargins(12, 0, 0, 0);
        statusBar()->addPermanentWidget(label);
    }
    MakeMenus();
    view_->SetMouseHandler([this](const Position& position) {
        ShowPosition(position);
        UpdateActions();
    });
    view_->Viewer()->SetEditHandler([this](ViewerEdit edit) { Edited(NameOf(edit)); });
    QObject::connect(&copyTimer_, &QTimer::timeout, this, [this] { KeepCopy(); });
    copyTimer_.start(kCopyInterval);
    checkTimer_.setSingleShot(true);
    QObject::connect(&checkTimer_, &QTimer::timeout, this, [this] { CheckFile(); });
    const auto changed = [this] { checkTimer_.start(kCheckDelay); };
    QObject::connect(&watcher_, &QFileSystemWatcher::fileChanged, this, changed);
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, changed);
    auto empty = std::make_unique<Zel2Main>();
    empty->SetRules(ZelRules::EXACT);
    Show(std::move(empty), true);
}

// The view goes with its widget; nothing may come back here from it.
MainWindow::~MainWindow() {
    view_->SetMouseHandler({});
    view_->Viewer()->SetEditHandler({});
}

// Failures

bool MainWindow::Say(const QString& what, const QString& why) {
    QMessageBox::warning(this, "Zel", what + "\n\n" + why);
    return false;
}

bool MainWindow::Try(const QString& what, const std::function<void()>& work) {
    try {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        work();
        QApplication::restoreOverrideCursor();
        return true;
    } catch (const Cancelled&) {
        QApplication::restoreOverrideCursor();
        statusBar()->showMessage("Cancelled.", 5000);
        return false;
    } catch (CException* e) {
        QApplication::restoreOverrideCursor();
        return Say(what, QString::fromStdString(TakeMessage(e)));
    } catch (const std::exception& e) {
        QApplication::restoreOverrideCursor();
        return Say(what, QString::fromStdString(WordsOf(e)));
    }
}

bool MainWindow::TryLong(const QString& what, const QString& label, const std::function<void(Work&)>& work) {
    return Try(what, [&] {
        const auto idle = [](bool* busy) { *busy = false; };
        busy_ = true;
        const std::unique_ptr<bool, decltype(idle)> end(&busy_, idle);
        RunWithProgress(this, label, work);
    });
}

// The drawing in the window stays until the other one is there whole.
bool MainWindow::Load(const QString& what, const QString& path, std::unique_ptr<Zel2Main>& drawing) {
    return TryLong(what, "Reading " + QFileInfo(path).fileName() + "…", [&](Work& work) {
        drawing = LoadDocument(Native(path).c_str());
        work.Check();
    });
}

// Documents

void MainWindow::Show(std::unique_ptr<Zel2Main> drawing, bool saved) {
    ZelViewer& viewer = *view_->Viewer();
    Zel2Main& shown = *drawing;
    view_->SetDrawing(drawing.release());
    history_.Reset(StateOf(shown, viewer.Selection()), saved);
    drawingId_ = QUuid::createUuid().toString();
    Command(ID_ZEL_FIT_WINDOW);
    ShowName();
    Watch();
    UpdateActions();
}

void MainWindow::ShowName() {
    setWindowTitle("[*]" + file_.Name());
    view_->SetPrintTitle(QFileInfo(file_.Name()).completeBaseName().toStdString());
}

bool MainWindow::Open(const QString& path) {
    if (path.endsWith(".csv", Qt::CaseInsensitive)) return OpenCsv(path);
    std::unique_ptr<Zel2Main> drawing;
    if (!Load("Cannot open " + Quoted(path) + ".", path, drawing)) return false;
    file_.DropCopy();
    file_.Attach(path);
    Show(std::move(drawing), true);
    Remember(file_.Path());
    if (file_.IsOpenElsewhere()) statusBar()->showMessage(file_.Name() + " is open in another window, too.");
    OfferCopies();
    return true;
}

bool MainWindow::OpenCsv(const QString& path) {
    std::unique_ptr<Zel2Main> drawing;
    const auto read = [&](Work& work) {
        drawing = FigureOf(path);
        work.Check();
    };
    if (!TryLong("Cannot make a drawing of " + Quoted(path) + ".",
                 "Reading " + QFileInfo(path).fileName() + "…", read))
        return false;
    file_.DropCopy();
    file_.Attach({});
    Show(std::move(drawing), false);
    return true;
}

void MainWindow::RecoverUntitled() {
    if (!DocumentFile::HasUntitledLeft()) {
        statusBar()->showMessage("Nothing that was not saved has been left.", 5000);
        return;
    }
    if (!MayLose()) return;
    file_.DropCopy();
    file_.Attach({});
    auto empty = std::make_unique<Zel2Main>();
    empty->SetRules(ZelRules::EXACT);
    Show(std::move(empty), true);
    OfferCopies();
}

// One after another, until one of them is in the window. Nothing is lost by a key that closes the question.
void MainWindow::OfferCopies() {
    for (QString copy = file_.TakeLeft(); !copy.isEmpty(); copy = file_.TakeLeft()) {
        QMessageBox box(
            QMessageBox::Question, "Zel",
            "The program ended before changes to " + Quoted(file_.Name()) + " were saved.\nThey are of " +
                QLocale().toString(QFileInfo(copy).lastModified(), QLocale::ShortFormat) + ". Recover them?",
            QMessageBox::Yes | QMessageBox::Ignore | QMessageBox::Discard, this);
        box.button(QMessageBox::Yes)->setText("&Recover");
        box.button(QMessageBox::Ignore)->setText("&Keep for Later");
        box.setDefaultButton(QMessageBox::Yes);
        box.setEscapeButton(QMessageBox::Ignore);
        const int answer = box.exec();
        std::unique_ptr<Zel2Main> drawing;
        if (answer == QMessageBox::Discard) {
            file_.DropCopy();
        } else if (answer == QMessageBox::Yes && Load("Cannot recover the changes.", copy, drawing)) {
            Show(std::move(drawing), false);
            return;
        } else {
            file_.LeaveForLater();
        }
    }
}

bool MainWindow::Save() {
    if (file_.Path().isEmpty()) return AskSaveAs();
    if (file_.HasChanged() && QFileInfo::exists(file_.Path()) &&
        QMessageBox::question(this, "Zel",
                              "Another program has changed " + Quoted(file_.Name()) +
                                  " since it was opened.\nReplace its work by yours?") != QMessageBox::Yes)
        return false;
    // What is being typed belongs to the document.
    EndTyping(view_->Viewer()->Selection());
    if (!watcher_.files().isEmpty()) watcher_.removePaths(watcher_.files());
    const bool saved = TryLong("Cannot save " + Quoted(file_.Path()) + ".", "Writing " + file_.Name() + "…",
                               [&](Work& work) { file_.Save(history_.Present(), work); });
    if (saved) history_.MarkSaved();
    Watch();
    UpdateActions();
    return saved;
}

bool MainWindow::SaveAs(const QString& path) {
    EndTyping(view_->Viewer()->Selection());
    const auto write = [&](Work& work) {
        DocumentFile target;
        target.Attach(path);
        if (target.IsOpenElsewhere() && target.Path() != file_.Path())
            throw std::runtime_error("It is open in another window.");
        target.Save(history_.Present(), work);
    };
    if (!TryLong("Cannot save " + Quoted(path) + ".", "Writing " + QFileInfo(path).fileName() + "…", write))
        return false;
    file_.DropCopy();
    file_.Attach(path);
    history_.MarkSaved();
    ShowName();
    Remember(file_.Path());
    Watch();
    UpdateActions();
    return true;
}

bool MainWindow::MayLose() {
    view_->Viewer()->Selection().RemoveAll();
    if (!history_.IsModified()) return true;
    const auto answer =
        QMessageBox::question(this, "Zel", "Save the changes to " + Quoted(file_.Name()) + "?",
                              QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    if (answer == QMessageBox::Save) return Save();
    return answer == QMessageBox::Discard;
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (busy_ || !MayLose()) {
        event->ignore();
        return;
    }
    file_.DropCopy();
    event->accept();
}

void MainWindow::KeepCopy() {
    if (busy_ || !history_.IsModified()) return;
    try {
        file_.KeepCopy(history_.Present(), history_.PresentNumber());
    } catch (CException* e) {
        // No reason to interrupt anybody's work.
        statusBar()->showMessage("Unsaved work cannot be kept: " + QString::fromStdString(TakeMessage(e)));
    }
}

// Other programs

void MainWindow::Watch() {
    const QStringList before = watcher_.files() + watcher_.directories();
    if (!before.isEmpty()) watcher_.removePaths(before);
    if (file_.Path().isEmpty()) return;
    watcher_.addPath(file_.Path());
    // A file that is replaced is a new one.
    watcher_.addPath(QFileInfo(file_.Path()).absolutePath());
}

void MainWindow::CheckFile() {
    if (busy_) checkTimer_.start(kCheckDelay);
    if (busy_ || asking_ || !file_.HasNews()) return;
    asking_ = true;
    if (!QFileInfo::exists(file_.Path())) {
        statusBar()->showMessage(file_.Name() + " is gone; saving writes it anew.");
    } else {
        const QString loss = history_.IsModified() ? "\nYour changes would be lost." : "";
        const auto answer = QMessageBox::question(
            this, "Zel", "Another program has changed " + Quoted(file_.Name()) + ".\nLoad it anew?" + loss);
        std::unique_ptr<Zel2Main> drawing;
        // After a refusal saving asks once more.
        if (answer == QMessageBox::Yes &&
            Load("Cannot open " + Quoted(file_.Path()) + ".", file_.Path(), drawing)) {
            file_.Acknowledge();
            Show(std::move(drawing), true);
        }
    }
    asking_ = false;
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const QString path = event->mimeData()->urls().value(0).toLocalFile();
    if (path.isEmpty()) return;
    event->acceptProposedAction();
    if (MayLose()) Open(path);
}

// Edits

void MainWindow::Record(const QString& edit) {
    if (Zel2Main* const drawing = view_->Drawing())
        history_.Push(StateOf(*drawing, view_->Viewer()->Selection()), edit.toStdString());
}

void MainWindow::Edited(const QString& edit) {
    Record(edit);
    UpdateActions();
}

void MainWindow::ShowState(const Bytes& state) {
    const int page = view_->Report() ? view_->Report()->SelectedPage() : 0;
    if (Try("Cannot go back.",
            [&] { view_->SetDrawing(LoadDocument(state.data(), state.size(), "the history").release()); })) {
        if (view_->Report()) GoToPage(page);
    }
    UpdateActions();
}

void MainWindow::Copy() {
    Zel2Main* const drawing = view_->Drawing();
    const Bytes copied = CopySelected(*drawing, view_->Viewer()->Selection());
    if (copied.empty()) return;
    auto* const objects = new QMimeData;
    objects->setData(kObjects, QByteArray(reinterpret_cast<const char*>(copied.data()),
                                          static_cast<qsizetype>(copied.size())));
    objects->setData(kOrigin, drawingId_.toUtf8());
    QApplication::clipboard()->setMimeData(objects);
    UpdateActions();
}

void MainWindow::PasteClipboard() {
    const QMimeData* const offered = QApplication::clipboard()->mimeData();
    Zel2Main& drawing = *view_->Drawing();
    Zel2Selection& selection = view_->Viewer()->Selection();
    int pasted = 0;
    if (offered && offered->hasFormat(kObjects)) {
        const QByteArray bytes = offered->data(kObjects);
        Try("Cannot paste.", [&] {
            pasted = Paste(drawing, selection, Bytes(bytes.begin(), bytes.end()),
                           offered->data(kOrigin) == drawingId_.toUtf8());
        });
    } else if (offered && offered->hasText() && !offered->text().isEmpty()) {
        const CSize size = view_->Viewer()->Root().Size();
        PasteText(drawing, selection, offered->text().toStdString(), CPoint(size.cx / 3, size.cy / 2));
        pasted = 1;
    }
    if (pasted == 0) {
        statusBar()->showMessage("The clipboard holds nothing that can stand in this drawing.");
        return;
    }
    view_->Invalidate();
    Edited("Paste");
}

// Exports go from a copy, which the window's painting does not touch.
void MainWindow::ExportNow(const QString& path, Work& work) {
    const Bytes& state = history_.Present();
    const std::unique_ptr<Zel2Main> drawing = LoadDocument(state.data(), state.size(), "the drawing");
    work.Check();
    Zel2Report* const report = Zel2Report::FirstIn(*drawing);
    ExportOptions options;
    options.title = file_.Name().toStdString();
    if (!report) {
        zel::Export(*drawing, Native(path).c_str(), options);
        return;
    }
    const bool complete =
        ExportReport(*drawing, *report, Native(path).c_str(), options, [&](int done, int all) {
            work.all = all;
            work.done = done;
            return !work.cancelled;
        });
    if (!complete) throw Cancelled();
}

bool MainWindow::Export(const QString& path) {
    EndTyping(view_->Viewer()->Selection());
    const bool written =
        TryLong("Cannot export to " + Quoted(path) + ".", "Writing " + QFileInfo(path).fileName() + "…",
                [&](Work& work) { ExportNow(path, work); });
    if (written) statusBar()->showMessage("Written: " + path, 5000);
    return written;
}

// The view

void MainWindow::Command(UINT id) {
    view_->SendMessage(WM_COMMAND, id);
    UpdateActions();
}

void MainWindow::Zoom(int direction) {
    CRect client;
    view_->GetClientRect(&client);
    view_->Viewer()->ZoomAbout(CPoint(client.Width() / 2, client.Height() / 2), direction);
}

void MainWindow::GoToPage(int page) {
    Zel2Report* const report = view_->Report();
    if (!report || page < 0 || page >= report->PageCount()) return;
    view_->Viewer()->Selection().RemoveAll();
    report->SelectPage(page);
    view_->Invalidate();
    UpdateActions();
}

QString MainWindow::Formatted(int thousandths) const {
    return QString::number(millimetres_ ? thousandths * 0.0254 : thousandths / 1000.0, 'f',
                           millimetres_ ? 1 : 3);
}

void MainWindow::ShowPosition(const Position& position) {
    lastPosition_ = position;
    position_->setText(Formatted(position.world.x) + ", " + Formatted(position.world.y) +
                       (millimetres_ ? " mm" : " in"));
    QString values = QString::fromStdString(position.chart);
    if (position.graph)
        values =
            QString("x = %1, y = %2").arg(position.graph->x, 0, 'g', 6).arg(position.graph->y, 0, 'g', 6);
    values_->setText(values);
}

}  // namespace zel::view
