#include "Program.h"

#include <zel/Zel2Edit.h>
#include <zel/platform/File.h>
#include <zel/platform/Platform.h>

#include <QAbstractButton>
#include <QClipboard>
#include <QLineEdit>
#include <QMimeData>
#include <QProcess>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <numeric>
#include <random>
#include <thread>
#ifdef __SANITIZE_ADDRESS__
// The header that declares it comes with some compilers only.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();  // NOLINT(bugprone-reserved-identifier)
#endif

namespace {

namespace fs = std::filesystem;
using zel::test::Content;
using zel::test::Program;
using zel::test::TemporaryFolder;
using zel::view::History;
using zel::view::MainWindow;

TEST_F(Program, UndoesEveryEditAndSavesTheResult) {
    const auto before = window_.Steps().Present();
    Click(At(1500, 1500));
    ASSERT_EQ(Selection().GetSize(), 1);
    EXPECT_FALSE(window_.isWindowModified()) << "selecting changes nothing";
    Drag(At(1500, 1500), At(1700, 1500));
    EXPECT_TRUE(window_.isWindowModified());
    EXPECT_EQ(window_.Steps().UndoName(), "Move");
    Drag(At(2200, 2000), At(2500, 2300));
    EXPECT_EQ(window_.Steps().UndoName(), "Resize");
    EXPECT_GT(Drawing()[0]->Size().cx, 1200);
    Do("move_Right");
    EXPECT_EQ(window_.Steps().UndoName(), "Move");
    Do("copy");
    Do("paste");
    ASSERT_EQ(Drawing().GetCount(), 4);
    EXPECT_EQ(Drawing()[3]->Origin(), Drawing()[0]->Origin() + CSize(200, -200));
    Do("delete");
    EXPECT_EQ(Drawing()[3], nullptr);
    Click(At(1000, 3200));
    auto* field = dynamic_cast<Zel2DataField*>(Drawing()[2]);
    ASSERT_TRUE(field->Value()->Editor());
    Area()->findChild<QLineEdit*>()->setText("typed");
    Do("deselect");
    EXPECT_EQ(window_.Steps().UndoName(), "Typing");
    const auto after = window_.Steps().Present();
    for (int i = 0; i < 6; ++i) Do("undo");
    EXPECT_FALSE(window_.Steps().CanUndo());
    EXPECT_EQ(window_.Steps().Present(), before);
    EXPECT_FALSE(window_.isWindowModified()) << "back at what is saved";
    for (int i = 0; i < 6; ++i) Do("redo");
    EXPECT_EQ(window_.Steps().Present(), after);
    ASSERT_TRUE(window_.Save());
    EXPECT_FALSE(window_.isWindowModified());
    const std::string saved = Content(path_);
    EXPECT_EQ(saved, std::string(after.begin(), after.end()));
    MainWindow again;
    ASSERT_TRUE(again.Open(QString::fromStdString(path_)));
    EXPECT_EQ(again.Steps().Present(), after) << "reopened, the same document";
    EXPECT_EQ(dynamic_cast<Zel2DataField*>((*again.View().Drawing())[2])->GetText(), "typed");
}

TEST_F(Program, PastesBetweenDrawingsAndRefusesForeignData) {
    Click(At(1500, 1500));
    Do("copy");
    MainWindow other;
    other.Action("paste")->trigger();
    Zel2Main& target = *other.View().Drawing();
    ASSERT_EQ(target.GetCount(), 1);
    auto* registry = dynamic_cast<Zel2Tools*>(target[0]);
    ASSERT_TRUE(registry) << "with the tools of its own";
    EXPECT_EQ((*registry)[0]->Color(0)->ScrColor(), RGB(200, 0, 0));
    other.Steps().MarkSaved();
    auto* garbage = new QMimeData;
    garbage->setData("application/x-zel-objects", "no document");
    QApplication::clipboard()->setMimeData(garbage);
    Answer(QMessageBox::Ok);
    Do("paste");
    EXPECT_EQ(Drawing().GetCount(), 3);
    auto* picture = new QMimeData;
    picture->setData("image/png", "x");
    QApplication::clipboard()->setMimeData(picture);
    Do("paste");
    EXPECT_EQ(Drawing().GetCount(), 3);
    EXPECT_FALSE(window_.isWindowModified());
    QApplication::clipboard()->setText("a text");
    Do("paste");
    EXPECT_EQ(dynamic_cast<Zel2TRect*>(Drawing()[3])->GetText(), "a text");
}

TEST_F(Program, AsksBeforeItLosesChanges) {
    Do("select_all");
    Do("delete");
    Answer(QMessageBox::Cancel);
    EXPECT_FALSE(window_.close());
    EXPECT_TRUE(window_.isVisible());
    const std::string before = Content(path_);
    Answer(QMessageBox::Discard);
    EXPECT_TRUE(window_.close());
    EXPECT_EQ(Content(path_), before);
}

TEST_F(Program, RecoversUnsavedWork) {
    Click(At(1500, 1500));
    Do("move_Up");
    window_.KeepCopy();
    const std::string copy = zel::view::DocumentFile::CopyPath(QString::fromStdString(path_)).toStdString();
    ASSERT_TRUE(fs::exists(copy));
    EXPECT_EQ(fs::status(copy).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    // A second window does not take it for the work of one that has ended, and keeps its own beside it.
    MainWindow second;
    ASSERT_TRUE(second.Open(QString::fromStdString(path_)));
    EXPECT_FALSE(second.isWindowModified());
    const std::string first = Content(copy);
    second.Action("select_all")->trigger();
    second.Action("delete")->trigger();
    second.KeepCopy();
    EXPECT_TRUE(fs::exists(copy + "-1"));
    EXPECT_EQ(Content(copy), first);
    second.Steps().MarkSaved();
    const std::string crashed = folder_ / "crashed.zel";
    fs::copy_file(path_, crashed);
    fs::copy_file(copy, zel::view::DocumentFile::CopyPath(QString::fromStdString(crashed)).toStdString());
    MainWindow after;
    // Esc loses nothing, not even when the document is changed and copied again.
    Soon([] {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box) QTest::keyClick(box, Qt::Key_Escape);
        return box != nullptr;
    });
    ASSERT_TRUE(after.Open(QString::fromStdString(crashed)));
    EXPECT_FALSE(after.isWindowModified());
    after.Action("select_all")->trigger();
    after.Action("delete")->trigger();
    after.KeepCopy();
    EXPECT_EQ(Content(folder_ / ".crashed.zel.unsaved"), first);
    after.Steps().MarkSaved();
    ASSERT_TRUE(after.Open(QString::fromStdString(path_)));
    EXPECT_FALSE(fs::exists(folder_ / ".crashed.zel.unsaved-1")) << "given up by whoever opens another";
    Answer(QMessageBox::Yes);
    ASSERT_TRUE(after.Open(QString::fromStdString(crashed)));
    EXPECT_TRUE(after.isWindowModified());
    EXPECT_EQ(after.Steps().Present(), window_.Steps().Present());
    ASSERT_TRUE(after.Save());
    EXPECT_FALSE(fs::exists(folder_ / ".crashed.zel.unsaved"));
    // What others have put there is not the user's work.
    fs::create_symlink(copy, folder_ / ".crashed.zel.unsaved");
    MainWindow trusting;
    ASSERT_TRUE(trusting.Open(QString::fromStdString(crashed)));
    EXPECT_FALSE(trusting.isWindowModified());
    window_.Steps().MarkSaved();
}

// A drawing of a table that never had a file, whose program is killed; then other files are opened.
TEST_F(Program, KeepsUntitledWorkUntilItIsDecided) {
    const std::string table = folder_ / "table.csv";
    std::ofstream(table) << "x,y\n1,2\n2,4\n";
    const QString untitled = zel::view::DocumentFile::CopyPath({});
    zel::view::Bytes lost;
    {
        MainWindow killed, beside;
        for (MainWindow* window : {&killed, &beside}) {
            ASSERT_TRUE(window->Open(QString::fromStdString(table)));
            window->KeepCopy();
        }
        lost = killed.Steps().Present();
    }
    EXPECT_EQ(Content(untitled.toStdString()), std::string(lost.begin(), lost.end()));
    EXPECT_TRUE(QFile::exists(untitled + "-1")) << "one for each window";
    MainWindow next;
    ASSERT_TRUE(next.Open(QString::fromStdString(path_)));
    ASSERT_TRUE(next.Open(QString::fromStdString(table)));
    next.KeepCopy();
    next.Steps().MarkSaved();
    EXPECT_EQ(Content(untitled.toStdString()), std::string(lost.begin(), lost.end()));
    Answer(QMessageBox::Yes);
    next.Action("recover")->trigger();
    EXPECT_EQ(next.Steps().Present(), lost);
    EXPECT_TRUE(next.isWindowModified());
    Answer(QMessageBox::Discard);
    next.close();
    EXPECT_FALSE(QFile::exists(untitled));
    EXPECT_TRUE(QFile::exists(untitled + "-1"));
    MainWindow last;
    Answer(QMessageBox::Discard);
    last.Action("recover")->trigger();
    EXPECT_FALSE(last.isWindowModified());
    EXPECT_FALSE(zel::view::DocumentFile::HasUntitledLeft());
}

TEST_F(Program, NoticesWhatOtherProgramsDo) {
    Zel2Main changed;
    changed.Add(new Zel2Rect(CRect(0, 0, 99, 99), -1, -1, Zel2Rect::RECTANGLE, -1));
    zel::SaveDocument(changed, path_.c_str());
    Answer(QMessageBox::No);
    window_.CheckFile();
    window_.CheckFile();  // asks once
    EXPECT_EQ(Drawing().GetCount(), 3);
    Answer(QMessageBox::No);
    EXPECT_FALSE(window_.Save());
    zel::SaveDocument(changed, path_.c_str());
    fs::last_write_time(path_, fs::file_time_type::clock::now() + std::chrono::seconds(5));
    Answer(QMessageBox::Yes);
    window_.CheckFile();
    EXPECT_EQ(Drawing().GetCount(), 1);
    fs::remove(path_);
    window_.CheckFile();
    EXPECT_TRUE(window_.Save()) << "what is gone is written anew";
    EXPECT_TRUE(fs::exists(path_));
}

TEST_F(Program, KeepsItsDrawingWhenAFileIsBad) {
    const std::string cut = folder_ / "cut.zel";
    std::ofstream(cut) << Content(path_).substr(0, 100);
    const std::string words = folder_ / "words.csv";
    std::ofstream(words) << "a,b\nx,y\n";
    for (const std::string& bad : {cut, words, (folder_ / "none.zel")}) {
        Answer(QMessageBox::Ok);
        EXPECT_FALSE(window_.Open(QString::fromStdString(bad))) << bad;
        EXPECT_EQ(Drawing().GetCount(), 3);
    }
    Answer(QMessageBox::Ok);
    EXPECT_FALSE(window_.SaveAs("/proc/drawing.zel"));
    Answer(QMessageBox::Ok);
    EXPECT_FALSE(window_.Export(QString::fromStdString(folder_ / "picture.xyz")));
    EXPECT_EQ(window_.Path().toStdString(), path_);
    Click(At(1500, 1500));
    Do("move_Up");
    const std::string before = Content(path_);
    {
        const zel::test::FullDisk disk(100);
        Answer(QMessageBox::Ok);
        EXPECT_FALSE(window_.Save());
    }
    EXPECT_EQ(Content(path_), before) << "the old file stays";
    EXPECT_TRUE(window_.isWindowModified()) << "and the work stays in the program";
    EXPECT_TRUE(window_.Save());
    EXPECT_NE(Content(path_), before);
}

TEST_F(Program, MakesADrawingOfATableAndExportsIt) {
    const std::string table = folder_ / "table.csv";
    std::ofstream(table) << "x,y,name\n1,2,a\n2,4,b\n3,8,c\n";
    ASSERT_TRUE(window_.Open(QString::fromStdString(table)));
    EXPECT_TRUE(window_.isWindowModified());
    EXPECT_TRUE(window_.Path().isEmpty());
    for (const char* ending : {"pdf", "png", "jpg", "svg", "wmf"}) {
        const std::string target = (folder_ / "picture") + "." + ending;
        EXPECT_TRUE(window_.Export(QString::fromStdString(target)));
        EXPECT_GT(fs::file_size(target), 100U) << target;
    }
    window_.Steps().MarkSaved();
}

TEST_F(Program, TurnsThePagesOfAReport) {
    Zel2Main drawing;
    drawing.SetRules(ZelRules::EXACT);
    auto* report = new Zel2Report;
    drawing.Add(report);
    report->SetPaper({});
    for (int i = 0; i < 5; ++i) {
        auto* box = new Zel2TRect(CRect(0, 0, 3000, 4000), ("box" + std::to_string(i)).c_str(), -1, -1);
        report->Append(box);
        box->RegisterFont("f", "Arial", 100, 0, 0, 0, 0, 0, 0);
    }
    const int pages = report->MakePages();
    ASSERT_GT(pages, 2);
    const std::string path = folder_ / "report.zel";
    zel::SaveDocument(drawing, path.c_str());
    ASSERT_TRUE(window_.Open(QString::fromStdString(path)));
    EXPECT_FALSE(window_.Action("page_previous")->isEnabled());
    Do("page_next");
    EXPECT_EQ(window_.View().Report()->SelectedPage(), 1);
    window_.Action("page_last")->trigger();
    EXPECT_FALSE(window_.Action("page_next")->isEnabled());
    EXPECT_EQ(window_.View().Report()->SelectedPage(), pages - 1);
    EXPECT_TRUE(window_.Export(QString::fromStdString(folder_ / "report.pdf")));
    const std::string printed = folder_ / "printed.pdf";
    auto paper = zel::Platform::Get().CreateFileDevice(
        {.path = printed, .format = "pdf", .width = 8.27, .height = 11.69, .title = {}});
    window_.View().PrintTo(*paper);
    for (const std::string& file : {folder_ / "report.pdf", printed}) {
        QProcess reader;
        reader.start("pdftotext", {QString::fromStdString(file), "-"});
        ASSERT_TRUE(reader.waitForFinished());
        const QString text = reader.readAllStandardOutput();
        EXPECT_EQ(text.count('\f'), pages) << file;
        for (const char* box : {"box0", "box4"}) EXPECT_EQ(text.count(box), 1) << file;
    }
}

TEST_F(Program, ShowsWhereThePointerIs) {
    std::optional<zel::view::Position> seen;
    window_.View().SetMouseHandler([&](const zel::view::Position& position) { seen = position; });
    Move(At(4500, 1000), {});
    ASSERT_TRUE(seen && seen->graph);
    EXPECT_NEAR(seen->world.x, 4500, 20);
    EXPECT_NEAR(seen->graph->x, 5, 0.2);
    EXPECT_NEAR(seen->graph->y, 5, 0.4);
    Move(At(500, 500), {});
    EXPECT_FALSE(seen->graph);
}

// Every action that people reach by the keyboard alone, once in each state.
TEST_F(Program, EveryActionCanBeChosen) {
    for (const char* state : {"select_all", "deselect"}) {
        for (QAction* action : window_.findChildren<QAction*>()) {
            const QString name = action->objectName();
            const bool opens = name.isEmpty() || name.startsWith("drawing_") ||
                               action->text().endsWith("…") || name == "about" || name == "quit" ||
                               name == "save" || name == "redo";
            if (opens) continue;
            Do(state);
            action->trigger();
            Settle();
        }
    }
    window_.Steps().MarkSaved();
}

TEST_F(Program, LongWorkCanBeCancelled) {
    int beats = 0;
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, [&] { ++beats; });
    heart.start(50);
    Soon([] {
        auto* const bar = qobject_cast<QProgressDialog*>(QApplication::activeModalWidget());
        if (!bar) return false;
        bar->findChild<QPushButton*>()->click();
        return true;
    });
    const auto endless = [](zel::view::Work& work) {
        for (;; std::this_thread::sleep_for(std::chrono::milliseconds(5))) work.Check();
    };
    EXPECT_THROW(zel::view::RunWithProgress(&window_, "Waiting…", endless), zel::view::Cancelled);
    EXPECT_GT(beats, 10) << "the window lived on";
    const std::string message = zel::test::MessageOf<CFileException>(
        [&] { zel::view::RunWithProgress(&window_, "", [](auto&) { CFile("/none", CFile::modeRead); }); });
    EXPECT_NE(message.find("/none"), std::string::npos) << "what is thrown beside the window arrives";
    // Saving that is given up leaves the old file, and nothing else.
    const std::string before = Content(path_);
    zel::view::DocumentFile file;
    file.Attach(QString::fromStdString(path_));
    const std::size_t files = folder_.FileCount();
    zel::view::Work work;
    work.cancelled = true;
    EXPECT_THROW(file.Save(zel::view::Bytes(5000000), work), zel::view::Cancelled);
    EXPECT_EQ(Content(path_), before);
    EXPECT_EQ(folder_.FileCount(), files);
}

TEST(Steps, AreBounded) {
    History history;
    history.Reset({0}, true);
    for (int i = 1; i <= 300; ++i) history.Push({static_cast<std::uint8_t>(i)}, "edit");
    std::size_t steps = 0;
    while (history.CanUndo()) {
        history.Undo();
        ++steps;
    }
    EXPECT_EQ(steps, History::kMostSteps);
    EXPECT_TRUE(history.IsModified()) << "what is saved cannot be reached any more";
    history.Push({1}, "new");
    EXPECT_FALSE(history.CanRedo());
}

std::size_t HeapInUse() {
#ifdef __SANITIZE_ADDRESS__
    return __sanitizer_get_current_allocated_bytes();
#else
    const auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
#endif
}

// Edits on both sides of a long series, in the file as on the paper, that also change the length.
TEST(Steps, ShareTheLongSeriesOfADrawing) {
    constexpr int kPoints = 1000000;
    Zel2Main drawing;
    std::vector<double> x(kPoints), y(kPoints);
    std::mt19937_64 random(1);
    std::iota(x.begin(), x.end(), 0.0);
    std::generate(y.begin(), y.end(), [&] { return std::generate_canonical<double, 53>(random); });
    auto* const first = new Zel2TRect(CRect(0, 0, 99, 99), "", -1, -1);
    auto* const graph = new Zel2Graph;
    auto* const last = new Zel2Rect(CRect(0, 0, 99, 99), -1, -1, Zel2Rect::RECTANGLE, -1);
    for (Zel2* object : {static_cast<Zel2*>(first), static_cast<Zel2*>(graph), static_cast<Zel2*>(last)})
        drawing.Add(object);
    auto* const series = new Zel2PointArray;
    series->SetPoints(x, y);
    graph->AddIn(series);

    const zel::view::Bytes begin = zel::DocumentBytes(drawing);
    const std::size_t before = HeapInUse();
    History history;
    history.Reset(begin, true);
    for (int i = 1; i <= 20; ++i) {
        first->SetText("%0*d", i, i);
        last->MoveTo(CPoint(i, i));
        history.Push(zel::DocumentBytes(drawing), "edit");
    }
    EXPECT_LT(HeapInUse() - before, 3 * begin.size());
    const zel::view::Bytes end = history.Present();
    EXPECT_EQ(end, zel::DocumentBytes(drawing));
    while (history.CanUndo()) history.Undo();
    EXPECT_EQ(history.Present(), begin);
    while (history.CanRedo()) history.Redo();
    EXPECT_EQ(history.Present(), end);
}

}  // namespace
