#include "editor/formattoolbar.h"

#include "editor/glyphicon.h"
#include "editor/texteditor.h"

#include <QDoubleValidator>
#include <QFontComboBox>
#include <QLayout>
#include <QLineEdit>
#include <QLocale>
#include <QToolButton>

#include <array>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr double smallestSize = 1;
constexpr double largestSize = 999;
constexpr int fractionDigits = 2;
constexpr std::array offeredSizes {8,  9,  10, 11, 12, 13, 14, 16, 18,
                                   20, 24, 28, 32, 36, 48, 64, 72, 96};

QString sizeText(double size)
{
    return QLocale().toString(size, 'g', QLocale::FloatingPointShortest);
}

QString withShortcut(const QString &text, const QKeySequence &shortcut)
{
    return u"%1 (%2)"_s.arg(text, shortcut.toString(QKeySequence::NativeText));
}

} // namespace

FormatToolbar::FormatToolbar(TextEditor &editor, TextCommands &commands, QWidget *parent)
    : QToolBar(u"Format"_s, parent)
    , m_editor(editor)
    , m_commands(commands)
{
    setObjectName(u"formatToolbar"_s);
    setMovable(false);
    setFloatable(false);
    setIconSize(QSize(18, 18));
    layout()->setSpacing(4);
    layout()->setContentsMargins(6, 3, 6, 3);
    addStyle(TextCommand::Bold, glyphIcon(Glyph::Bold), u"Bold"_s);
    addStyle(TextCommand::Italic, glyphIcon(Glyph::Italic), u"Italic"_s);
    addStyle(TextCommand::Underline, glyphIcon(Glyph::Underline), u"Underline"_s);
    addSeparator();
    addFamilies();
    addSizes();
    connect(&m_editor, &QTextEdit::currentCharFormatChanged, this, &FormatToolbar::showFormat);
    connect(&m_editor, &QTextEdit::cursorPositionChanged, this,
            [this] { showFormat(m_editor.currentCharFormat()); });
    connect(&m_editor, &TextEditor::contentReplaced, this,
            [this] { showFormat(m_editor.currentCharFormat()); });
    showFormat(m_editor.currentCharFormat());
}

void FormatToolbar::addStyle(TextCommand command, const QIcon &icon, const QString &tip)
{
    QAction &action = m_commands.action(command);
    action.setIcon(icon);
    action.setIconVisibleInMenu(false);
    action.setToolTip(withShortcut(tip, action.shortcut()));
    addAction(&action);
}

void FormatToolbar::addFamilies()
{
    m_family = new QFontComboBox(this);
    m_family->setAccessibleName(u"Font"_s);
    m_family->setToolTip(u"Font"_s);
    m_family->setMinimumContentsLength(10);
    m_family->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_family->setMaximumWidth(220);
    m_family->setFocusPolicy(Qt::ClickFocus);
    addWidget(m_family);
    connect(m_family, &QComboBox::textActivated, this, [this](const QString &family) {
        QTextCharFormat format;
        format.setFontFamilies({family});
        apply(format);
    });
}

void FormatToolbar::addSizes()
{
    m_size = new QComboBox(this);
    m_size->setAccessibleName(u"Font Size"_s);
    m_size->setToolTip(u"Font Size"_s);
    m_size->setEditable(true);
    m_size->setInsertPolicy(QComboBox::NoInsert);
    m_size->setCompleter(nullptr);
    m_size->setFocusPolicy(Qt::ClickFocus);
    for (const int size : offeredSizes) {
        m_size->addItem(sizeText(size));
    }
    m_size->setValidator(new QDoubleValidator(smallestSize, largestSize, fractionDigits, m_size));
    m_size->setMinimumContentsLength(4);
    m_size->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    addWidget(m_size);
    connect(m_size, &QComboBox::activated, this,
            [this](int index) { applySize(m_size->itemText(index)); });
    connect(m_size->lineEdit(), &QLineEdit::returnPressed, this,
            [this] { applySize(m_size->currentText()); });
}

void FormatToolbar::addLockAction(QAction *action)
{
    auto *space = new QWidget(this);
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    addWidget(space);
    addAction(action);
    if (auto *button = qobject_cast<QToolButton *>(widgetForAction(action))) {
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    }
}

void FormatToolbar::setFormattingEnabled(bool enabled)
{
    m_family->setEnabled(enabled);
    m_size->setEnabled(enabled);
}

void FormatToolbar::applySize(const QString &text)
{
    bool isNumber = false;
    const double size = QLocale().toDouble(text, &isNumber);
    if (!isNumber || size < smallestSize || size > largestSize) {
        showFormat(m_editor.currentCharFormat());
        return;
    }
    QTextCharFormat format;
    format.setFontPointSize(size);
    apply(format);
}

void FormatToolbar::apply(const QTextCharFormat &format)
{
    m_editor.applyCharFormat(format);
    showFormat(m_editor.currentCharFormat());
    m_editor.setFocus();
}

void FormatToolbar::showFormat(const QTextCharFormat &format)
{
    const QFont font = format.font().resolve(m_editor.document()->defaultFont());
    if (m_family->currentText() != font.family()) {
        const QSignalBlocker quiet(m_family);
        m_family->setEditText(font.family());
    }
    m_size->setEditText(
        sizeText(font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF()));
}

} // namespace quorvane
