#include "Program.h"

#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using zel::test::Content;
using zel::test::Program;

// A folder in which nothing can be made or replaced while it lives, whoever runs the test.
class ReadOnly {
  public:
    explicit ReadOnly(const std::string& folder) : folder_(folder) {
        fs::permissions(folder_, fs::perms(0555));
        // Permissions do not bind the superuser.
        if (user_ == 0 && ::seteuid(65534) != 0) ADD_FAILURE() << "cannot give up rights";
    }
    ~ReadOnly() {
        EXPECT_EQ(::seteuid(user_), 0);
        fs::permissions(folder_, fs::perms(0755));
    }
    ReadOnly(const ReadOnly&) = delete;
    ReadOnly& operator=(const ReadOnly&) = delete;

  private:
    std::string folder_;
    uid_t user_ = ::geteuid();
};

// A window with unsaved work, which must be there unharmed after whatever a test does.
class BadInput : public Program {
  protected:
    BadInput() {
        Click(At(1500, 1500));
        Do("move_Up");
        EXPECT_TRUE(window_.isWindowModified());
        shown_ = &Drawing();
        work_ = State();
        file_ = Content(path_);
    }
    void ExpectUnharmed() {
        EXPECT_EQ(&Drawing(), shown_);
        EXPECT_EQ(State(), work_);
        EXPECT_TRUE(window_.isWindowModified());
        EXPECT_EQ(window_.Path().toStdString(), path_);
        EXPECT_EQ(window_.windowTitle().toStdString(), "[*]drawing.zel");
        EXPECT_EQ(window_.Steps().UndoName(), "Move");
        EXPECT_EQ(Content(path_), file_);
    }
    // What the message box said that appeared meanwhile.
    template <class Action>
    std::string Told(Action action) {
        std::string told;
        Soon([&told] {
            auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || !box->button(QMessageBox::Ok)) return false;
            told = box->text().toStdString();
            box->button(QMessageBox::Ok)->click();
            return true;
        });
        EXPECT_FALSE(action());
        Settle();
        return told;
    }
    void ExpectRefused(const std::string& path, const char* reason) {
        EXPECT_THAT(Told([&] { return window_.Open(QString::fromStdString(path)); }),
                    AllOf(HasSubstr(path), HasSubstr(reason)));
        ExpectUnharmed();
    }

    Zel2Main* shown_;
    zel::view::Bytes work_;
    std::string file_;
};

TEST_F(BadInput, ForeignDocumentsAreRefused) {
    const auto make = [&](const char* name, const std::string& content) {
        std::ofstream(folder_ / name, std::ios::binary) << content;
        return folder_ / name;
    };
    std::string newer = file_;
    newer[8] = 99;
    ExpectRefused(make("newer.zel", newer), "version 99 is newer than this program's");
    ExpectRefused(make("picture.zel", "\x89PNG\r\n\x1A\n" + std::string(60, 'x')), "no drawing document");
    ExpectRefused(make("empty.zel", ""), "0 bytes");
    std::string spoiled = file_;
    spoiled.back() ^= 1;
    ExpectRefused(make("spoiled.zel", spoiled), "damaged");
    ExpectRefused(make("binary.csv", newer), "");
    ExpectRefused(make("empty.csv", ""), "");
    fs::create_directory(folder_ / "folder.zel");
    ExpectRefused(folder_ / "folder.zel", "directory");
    ExpectRefused(path_ + "/below.zel", "Not a directory");
    // The same by the way people take, with the changes given up: what cannot be opened costs nothing.
    QMimeData dropped;
    dropped.setUrls({QUrl::fromLocalFile(QString::fromStdString(folder_ / "newer.zel"))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, {});
    ASSERT_TRUE(QApplication::sendEvent(&window_, &enter));
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, {});
    EXPECT_THAT(Told([&] {
                    Answer(QMessageBox::Discard);
                    return !QApplication::sendEvent(&window_, &drop);
                }),
                HasSubstr("newer.zel"));
    ExpectUnharmed();
}

TEST_F(BadInput, PlacesThatCannotBeWrittenAreTold) {
    for (const auto& [path, reason] :
         {std::pair(path_ + "/below.zel", "Not a directory"),
          std::pair(folder_ / "none/drawing.zel", "No such"), std::pair(folder_ / "", "directory")}) {
        EXPECT_THAT(Told([&, path = path] { return window_.SaveAs(QString::fromStdString(path)); }),
                    AllOf(HasSubstr(path), HasSubstr(reason)));
        ExpectUnharmed();
    }
    const std::size_t files = folder_.FileCount();
    {
        const ReadOnly closed(folder_ / "");
        const std::string other = folder_ / "other.zel";
        EXPECT_THAT(Told([&] { return window_.SaveAs(QString::fromStdString(other)); }),
                    AllOf(HasSubstr(other), HasSubstr("Permission denied")));
        EXPECT_THAT(Told([&] { return window_.Save(); }),
                    AllOf(HasSubstr(path_), HasSubstr("Permission denied")));
        window_.KeepCopy();  // by the clock: it asks nobody
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        ExpectUnharmed();
    }
    EXPECT_EQ(folder_.FileCount(), files) << "and nothing is left lying about";
    EXPECT_TRUE(window_.Save()) << "when the folder is open again";
    EXPECT_EQ(Content(path_), std::string(work_.begin(), work_.end()));
}

// From pipes, which deliver when the test wants them to.
TEST_F(BadInput, ACancelledLoadLeavesTheOldDrawing) {
    for (const auto& [name, content] :
         {std::pair("pipe.zel", file_), std::pair("pipe.csv", std::string("x,y\n1,2\n2,4\n"))}) {
        const std::string pipe = folder_ / name;
        ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
        std::thread writer;
        Soon([&, content = content] {
            auto* const bar = qobject_cast<QProgressDialog*>(QApplication::activeModalWidget());
            if (!bar) return false;
            bar->findChild<QPushButton*>()->click();
            // Who has cancelled is told nothing.
            QTimer::singleShot(1000, &window_, [] {
                auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                if (!box) return;
                ADD_FAILURE() << box->text().toStdString();
                box->close();
            });
            writer = std::thread([pipe, content] { std::ofstream(pipe) << content; });
            return true;
        });
        EXPECT_FALSE(window_.Open(QString::fromStdString(pipe)));
        writer.join();
        ExpectUnharmed();
    }
}

// The arrows belong to the text that is edited, not to the object around it.
TEST_F(BadInput, ArrowsStayInTheTextThatIsEdited) {
    Click(At(1000, 3200));
    auto* const field = dynamic_cast<Zel2DataField*>(Drawing()[2]);
    ASSERT_TRUE(field && field->Value()->Editor());
    auto* const editor = Area()->findChild<QLineEdit*>();
    ASSERT_TRUE(editor);
    window_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    editor->setFocus();
    const CPoint origin = field->Origin();
    const CSize size = field->Size();
    const CPoint scrolled = window_.View().GetDeviceScrollPosition();
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right}) {
        for (const Qt::KeyboardModifiers modifiers :
             {Qt::KeyboardModifiers(), Qt::KeyboardModifiers(Qt::ShiftModifier),
              Qt::KeyboardModifiers(Qt::ControlModifier)}) {
            QTest::keyClick(editor, key, modifiers);
            Settle();
            EXPECT_EQ(field->Origin(), origin);
            EXPECT_EQ(field->Size(), size);
        }
    }
    EXPECT_EQ(window_.View().GetDeviceScrollPosition(), scrolled);
    EXPECT_TRUE(field->Value()->Editor()) << "and it stays open";
    ExpectUnharmed();
}

}  // namespace
