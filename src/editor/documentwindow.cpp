#include "editor/documentwindow.h"

#include "editor/accessiblepopups.h"
#include "editor/formattoolbar.h"
#include "editor/lockedpage.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"

#include <QEvent>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {
constexpr QSize initialSize(820, 640);
constexpr QSize smallestSize(480, 320);
} // namespace

class DocumentWindow::Toolbar final : public NSToolbar
{
public:
    explicit Toolbar(QToolBar &bar)
        : m_bar(bar)
    { }

    bool isVisible() const override { return !m_bar.isHidden(); }

    void setVisible(bool visible) override { m_bar.setVisible(visible); }

    // The bar cannot be rearranged: there is no configuration to keep.
    void setAutosavesConfiguration(bool) override { }

private:
    QToolBar &m_bar;
};

DocumentWindow::DocumentWindow(QWidget *parent)
    : QMainWindow(parent)
{
    tellOfAccessiblePopups();
    // The window's own menu would bring a hidden toolbar back, on a locked window too.
    setContextMenuPolicy(Qt::NoContextMenu);
    m_pages = new QStackedWidget(this);
    m_lockedPage = new LockedPage(m_pages);
    m_editorPage = new QWidget(m_pages);
    m_editor = new TextEditor(m_editorPage);
    m_editorColumn = new QVBoxLayout(m_editorPage);
    m_editorColumn->setContentsMargins(0, 0, 0, 0);
    m_editorColumn->setSpacing(0);
    m_editorColumn->addWidget(m_editor);
    m_pages->addWidget(m_lockedPage);
    m_pages->addWidget(m_editorPage);
    setCentralWidget(m_pages);
    m_commands = new TextCommands(this);
    m_commands->takeKeysFrom(*m_editor);
    followEditor();
    m_toolbar = new FormatToolbar(*m_editor, *m_commands, this);
    addToolBar(m_toolbar);
    m_modernToolbar = std::make_unique<Toolbar>(*m_toolbar);
    setMinimumSize(smallestSize);
    resize(initialSize);
    showEditorAppearance();
}

DocumentWindow::~DocumentWindow()
{
    delete m_toolbar; // refers to the editor
}

// How a command stands depends on the text at the caret and on what is selected.
void DocumentWindow::followEditor()
{
    connect(m_editor, &QTextEdit::currentCharFormatChanged, m_commands,
            &TextCommands::validateLater);
    connect(m_editor, &QTextEdit::cursorPositionChanged, m_commands, &TextCommands::validateLater);
    connect(m_editor, &QTextEdit::selectionChanged, m_commands, &TextCommands::validateLater);
    connect(m_editor, &QTextEdit::textChanged, m_commands, &TextCommands::validateLater);
    connect(m_editor, &TextEditor::contentReplaced, m_commands, &TextCommands::validateLater);
}

void DocumentWindow::addAboveText(QWidget *bar)
{
    m_editorColumn->insertWidget(m_editorColumn->indexOf(m_editor), bar);
}

void DocumentWindow::addBelowText(QWidget *bar)
{
    m_editorColumn->insertWidget(m_editorColumn->indexOf(m_editor) + 1, bar);
}

NSToolbar &DocumentWindow::modernToolbar()
{
    return *m_modernToolbar;
}

void DocumentWindow::showLockedAppearance()
{
    m_editor->setContentHidden(true);
    m_pages->setCurrentWidget(m_lockedPage);
    m_commands->validate();
    m_lockedPage->focusPassword();
}

void DocumentWindow::showEditorAppearance()
{
    m_pages->setCurrentWidget(m_editorPage);
    m_editor->setContentHidden(false);
    m_commands->validate();
    m_editor->setFocus();
}

bool DocumentWindow::showsLockedAppearance() const
{
    return m_pages->currentWidget() == m_lockedPage;
}

void DocumentWindow::setReadOnly(bool readOnly)
{
    m_editor->setReadOnly(readOnly);
    if (readOnly) { // the caret goes on leading through the text
        m_editor->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    }
    m_commands->validate();
}

// Nothing runs while a sheet is up. It is told before the sheet is known to be up, or gone.
bool DocumentWindow::event(QEvent *event)
{
    if (event->type() == QEvent::WindowBlocked || event->type() == QEvent::WindowUnblocked) {
        m_commands->validateLater();
    }
    return QMainWindow::event(event);
}

} // namespace quorvane
