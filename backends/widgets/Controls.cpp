#include "backends/widgets/Peer.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include <algorithm>
#include <type_traits>

namespace zel::widgets {
namespace {

QString FromUtf8(const std::string& text) {
    return QString::fromStdString(text);
}

// A native control: its host sees focus and keys first and may leave them to it.
class ControlPeer : public Peer {
  public:
    using Peer::Peer;

  protected:
    // Keys that the program's shortcuts must leave alone while the control has the keyboard.
    virtual bool KeepsKey(int) const { return false; }
    void AdoptControl(QWidget* control, QWidget* focused = nullptr) {
        Adopt(control);
        filter_.peer = this;
        (focused ? focused : control)->installEventFilter(&filter_);
        if (!Spec().area.IsRectEmpty()) Move(Spec().area);
    }

  private:
    struct Filter : QObject {
        ControlPeer* peer = nullptr;
        bool eventFilter(QObject*, QEvent* event) override { return peer->Filtered(event); }
    };

    bool Filtered(QEvent* event) {
        switch (event->type()) {
            case QEvent::FocusIn:
                return Send(WM_SETFOCUS), false;
            case QEvent::FocusOut:
                return Send(WM_KILLFOCUS), false;
            case QEvent::ShortcutOverride:
                if (!KeepsKey(static_cast<QKeyEvent*>(event)->key())) return false;
                event->accept();
                return true;
            case QEvent::KeyPress: {
                const UINT key = VirtualKey(static_cast<QKeyEvent*>(event)->key());
                return key != 0 && Send(WM_KEYDOWN, key);
            }
            default:
                return false;
        }
    }

    Filter filter_;
};

Qt::Alignment AlignmentOf(DWORD style) {
    const DWORD side = style & (ES_CENTER | ES_RIGHT);
    return side == ES_CENTER ? Qt::AlignHCenter : side == ES_RIGHT ? Qt::AlignRight : Qt::AlignLeft;
}

// Byte offsets of UTF-8 text and positions in Qt's.
int ToUtf16(const QString& text, int bytes) {
    if (bytes < 0) return static_cast<int>(text.size());
    return static_cast<int>(QString::fromUtf8(text.toUtf8().left(bytes)).size());
}
int ToUtf8(const QString& text, int position) {
    return static_cast<int>(text.left(position).toUtf8().size());
}

// Who edits a text means its caret with the arrows, also where the caret cannot go any further.
bool MovesCaret(int key) {
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
}

// A field of one line makes no use of up and down, and the window around it must not either.
class LineEdit : public QLineEdit {
  public:
    using QLineEdit::QLineEdit;

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        QLineEdit::keyPressEvent(event);
        if (MovesCaret(event->key())) event->accept();
    }
};

// Without a frame and a ground where the text stands in a drawing.
template <class Edit>
void Plain(Edit* edit) {
    edit->setFrame(false);
    QPalette palette = edit->palette();
    palette.setBrush(QPalette::Base, Qt::transparent);
    edit->setPalette(palette);
    edit->setAutoFillBackground(false);
}

class LineEditPeer : public ControlPeer {
  public:
    explicit LineEditPeer(const WindowSpec& spec) : ControlPeer(spec), edit_(new LineEdit(ParentWidget())) {
        AdoptControl(edit_);
        edit_->setText(FromUtf8(spec.text));
        edit_->setAlignment(AlignmentOf(spec.style) | Qt::AlignVCenter);
        edit_->setReadOnly(spec.style & ES_READONLY);
        SetExtendedStyle(spec.extendedStyle);
        QObject::connect(edit_, &QLineEdit::textEdited, Context(), [this] { Notify(EN_CHANGE); });
    }
    void SetText(const std::string& text) override {
        if (edit_) edit_->setText(FromUtf8(text));
    }
    std::string GetText() const override { return edit_ ? edit_->text().toStdString() : std::string(); }
    void SetExtendedStyle(DWORD style) override {
        if (edit_ && style & WS_EX_TRANSPARENT) Plain(edit_.data());
    }
    // A negative end is that of the text; a negative begin selects nothing.
    void SelectText(int begin, int end) override {
        if (!edit_) return;
        if (begin < 0) {
            edit_->deselect();
            return;
        }
        const int first = ToUtf16(edit_->text(), begin);
        edit_->setSelection(first, ToUtf16(edit_->text(), end) - first);
    }
    std::pair<int, int> SelectedText() const override {
        if (!edit_) return {0, 0};
        const QString text = edit_->text();
        if (!edit_->hasSelectedText()) {
            const int caret = ToUtf8(text, edit_->cursorPosition());
            return {caret, caret};
        }
        return {ToUtf8(text, edit_->selectionStart()), ToUtf8(text, edit_->selectionEnd())};
    }

  protected:
    bool KeepsKey(int key) const override { return MovesCaret(key); }

  private:
    Live<QLineEdit> edit_;
};

class TextEditPeer : public ControlPeer {
  public:
    explicit TextEditPeer(const WindowSpec& spec)
        : ControlPeer(spec), edit_(new QPlainTextEdit(ParentWidget())) {
        AdoptControl(edit_);
        edit_->setReadOnly(spec.style & ES_READONLY);
        edit_->setLineWrapMode(spec.style & ES_AUTOHSCROLL ? QPlainTextEdit::NoWrap
                                                           : QPlainTextEdit::WidgetWidth);
        edit_->setTabChangesFocus(true);
        QTextOption option = edit_->document()->defaultTextOption();
        option.setAlignment(AlignmentOf(spec.style));
        edit_->document()->setDefaultTextOption(option);
        SetText(spec.text);
        SetExtendedStyle(spec.extendedStyle);
        QObject::connect(edit_, &QPlainTextEdit::textChanged, Context(), [this] {
            if (!setting_) Notify(EN_CHANGE);
        });
    }
    void SetText(const std::string& text) override {
        setting_ = true;
        if (edit_) edit_->setPlainText(FromUtf8(text));
        setting_ = false;
    }
    std::string GetText() const override {
        return edit_ ? edit_->toPlainText().toStdString() : std::string();
    }
    void SetExtendedStyle(DWORD style) override {
        if (!edit_ || !(style & WS_EX_TRANSPARENT)) return;
        edit_->setFrameShape(QFrame::NoFrame);
        edit_->document()->setDocumentMargin(0);
        QPalette palette = edit_->palette();
        palette.setBrush(QPalette::Base, Qt::transparent);
        edit_->setPalette(palette);
        edit_->viewport()->setAutoFillBackground(false);
    }
    void SelectText(int begin, int end) override {
        if (!edit_) return;
        const QString text = edit_->toPlainText();
        QTextCursor cursor = edit_->textCursor();
        if (begin < 0) {
            cursor.clearSelection();
        } else {
            cursor.setPosition(ToUtf16(text, begin));
            cursor.setPosition(ToUtf16(text, end), QTextCursor::KeepAnchor);
        }
        edit_->setTextCursor(cursor);
    }
    std::pair<int, int> SelectedText() const override {
        if (!edit_) return {0, 0};
        const QString text = edit_->toPlainText();
        const QTextCursor cursor = edit_->textCursor();
        return {ToUtf8(text, cursor.selectionStart()), ToUtf8(text, cursor.selectionEnd())};
    }
    void ShowCaret() override {
        if (edit_) edit_->ensureCursorVisible();
    }

  protected:
    bool KeepsKey(int key) const override { return MovesCaret(key); }

  private:
    Live<QPlainTextEdit> edit_;
    bool setting_ = false;
};

class ButtonPeer : public ControlPeer {
  public:
    explicit ButtonPeer(const WindowSpec& spec) : ControlPeer(spec), button_(Make()) {
        button_->setText(FromUtf8(spec.text));
        AdoptControl(button_);
        QObject::connect(button_, &QAbstractButton::clicked, Context(), [this] { Notify(BN_CLICKED); });
    }
    void SetText(const std::string& text) override {
        if (button_) button_->setText(FromUtf8(text));
    }
    std::string GetText() const override { return button_ ? button_->text().toStdString() : std::string(); }
    void SetCheck(int check) override {
        if (!button_) return;
        QButtonGroup* const group = button_->group();
        // The last one of a group cannot be turned off while it is exclusive.
        if (group) group->setExclusive(false);
        button_->setChecked(check != 0);
        if (group) group->setExclusive(true);
    }
    int GetCheck() const override { return button_ && button_->isChecked() ? 1 : 0; }

  private:
    QAbstractButton* Make() {
        QWidget* const parent = ParentWidget();
        switch (Spec().style & BS_TYPEMASK) {
            case BS_AUTOCHECKBOX:
                return new QCheckBox(parent);
            case BS_AUTORADIOBUTTON: {
                auto* radio = new QRadioButton(parent);
                GroupOf(parent)->addButton(radio);
                return radio;
            }
            default: {
                auto* push = new QPushButton(parent);
                push->setAutoDefault(true);
                push->setDefault((Spec().style & BS_TYPEMASK) == BS_DEFPUSHBUTTON);
                return push;
            }
        }
    }
    // The style WS_GROUP begins a new group of radio buttons.
    QButtonGroup* GroupOf(QWidget* parent) const {
        const auto groups = parent->findChildren<QButtonGroup*>(QString(), Qt::FindDirectChildrenOnly);
        return groups.isEmpty() || Spec().style & WS_GROUP ? new QButtonGroup(parent) : groups.last();
    }

    Live<QAbstractButton> button_;
};

// Texts and frames around groups: nothing can be done with them.
template <class Label>
class LabelPeer : public ControlPeer {
  public:
    explicit LabelPeer(const WindowSpec& spec) : ControlPeer(spec), label_(new Label(ParentWidget())) {
        AdoptControl(label_);
        if constexpr (std::is_same_v<Label, QLabel>) {
            label_->setAlignment(AlignmentOf(spec.style) | Qt::AlignVCenter);
            label_->setTextFormat(Qt::PlainText);
        }
        SetText(spec.text);
    }
    void SetText(const std::string& text) override {
        if (!label_) return;
        if constexpr (std::is_same_v<Label, QLabel>) {
            label_->setText(FromUtf8(text));
        } else {
            label_->setTitle(FromUtf8(text));
        }
    }
    std::string GetText() const override {
        if (!label_) return {};
        if constexpr (std::is_same_v<Label, QLabel>) {
            return label_->text().toStdString();
        } else {
            return label_->title().toStdString();
        }
    }

  private:
    Live<Label> label_;
};

class ComboPeer : public ControlPeer {
  public:
    explicit ComboPeer(const WindowSpec& spec) : ControlPeer(spec), combo_(new QComboBox(ParentWidget())) {
        AdoptControl(combo_);
        if ((spec.style & CBS_DROPDOWNLIST) != CBS_DROPDOWNLIST && spec.style & CBS_DROPDOWN) {
            combo_->setEditable(true);
            combo_->setInsertPolicy(QComboBox::NoInsert);
            QObject::connect(combo_, &QComboBox::editTextChanged, Context(), [this] {
                if (!setting_) Notify(CBN_EDITCHANGE);
            });
        }
        QObject::connect(combo_, &QComboBox::activated, Context(), [this] { Notify(CBN_SELCHANGE); });
    }
    // The height of the area includes the list, which Qt opens as it sees fit.
    void Move(const CRect& area) override {
        CRect field = area;
        const int own =
            combo_ ? ToDevice(QRect(QPoint(), combo_->sizeHint()), Factor()).Height() : area.Height();
        field.bottom = std::min<LONG>(area.bottom, area.top + own);
        Peer::Move(field);
    }
    void SetText(const std::string& text) override {
        const Quiet quiet(setting_);
        if (combo_) combo_->setCurrentText(FromUtf8(text));
    }
    std::string GetText() const override {
        return combo_ ? combo_->currentText().toStdString() : std::string();
    }
    void InsertItem(int at, const std::string& item) override {
        const Quiet quiet(setting_);
        if (!combo_) return;
        const int selected = combo_->currentIndex();
        combo_->insertItem(at, FromUtf8(item));
        // Qt selects the first item by itself.
        if (selected < 0) combo_->setCurrentIndex(-1);
    }
    void RemoveItem(int at) override {
        const Quiet quiet(setting_);
        if (combo_) combo_->removeItem(at);
    }
    int ItemCount() const override { return combo_ ? combo_->count() : 0; }
    std::string ItemText(int at) const override { return combo_ ? combo_->itemText(at).toStdString() : ""; }
    void SelectItem(int at) override {
        const Quiet quiet(setting_);
        if (combo_) combo_->setCurrentIndex(at);
    }
    int SelectedItem() const override { return combo_ ? combo_->currentIndex() : -1; }

  private:
    struct Quiet {
        explicit Quiet(bool& flag) : flag_(flag) { flag_ = true; }
        ~Quiet() { flag_ = false; }
        bool& flag_;
    };
    Live<QComboBox> combo_;
    bool setting_ = false;
};

class ListPeer : public ControlPeer {
  public:
    explicit ListPeer(const WindowSpec& spec) : ControlPeer(spec), list_(new QListWidget(ParentWidget())) {
        AdoptControl(list_);
        QObject::connect(list_, &QListWidget::currentRowChanged, Context(),
                         [this] { Notify(LBN_SELCHANGE); });
        QObject::connect(list_, &QListWidget::itemDoubleClicked, Context(), [this] { Notify(LBN_DBLCLK); });
    }
    void InsertItem(int at, const std::string& item) override {
        const QSignalBlocker quiet(list_);
        if (list_) list_->insertItem(at, FromUtf8(item));
    }
    void RemoveItem(int at) override {
        const QSignalBlocker quiet(list_);
        if (list_) delete list_->takeItem(at);
    }
    int ItemCount() const override { return list_ ? list_->count() : 0; }
    std::string ItemText(int at) const override { return list_ ? list_->item(at)->text().toStdString() : ""; }
    void SelectItem(int at) override {
        const QSignalBlocker quiet(list_);
        if (list_) list_->setCurrentRow(at);
    }
    int SelectedItem() const override { return list_ ? list_->currentRow() : -1; }

  private:
    Live<QListWidget> list_;
};

}  // namespace

std::unique_ptr<WindowPeer> MakeControl(const WindowSpec& spec) {
    switch (spec.kind) {
        case WindowKind::EDIT:
            if (spec.style & ES_MULTILINE) return std::make_unique<TextEditPeer>(spec);
            return std::make_unique<LineEditPeer>(spec);
        case WindowKind::BUTTON:
            if ((spec.style & BS_TYPEMASK) == BS_GROUPBOX)
                return std::make_unique<LabelPeer<QGroupBox>>(spec);
            return std::make_unique<ButtonPeer>(spec);
        case WindowKind::COMBO:
            return std::make_unique<ComboPeer>(spec);
        case WindowKind::LIST:
            return std::make_unique<ListPeer>(spec);
        default:
            return std::make_unique<LabelPeer<QLabel>>(spec);
    }
}

}  // namespace zel::widgets
