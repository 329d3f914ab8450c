#include "editor/paragraphstyles.h"

#include "editor/linespacing.h"
#include "editor/listlevels.h"
#include "editor/paragraphformats.h"
#include "editor/paragraphsheet.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"

#include <QTextBlock>
#include <QTextList>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace quorvane {

ParagraphStyles::ParagraphStyles(TextEditor &editor, TextCommands &commands, NSWindow &sheets)
    : m_editor(editor)
    , m_sheets(sheets)
{
    defineAlignments(commands);
    defineSpacings(commands);
    const auto writes = [this] {
        return MenuItemState {!m_editor.isReadOnly(), {}, {}};
    };
    commands.define(
        TextCommand::IncreaseIndent, [this] { indent(1); }, writes);
    commands.define(
        TextCommand::DecreaseIndent, [this] { indent(-1); },
        [this] {
            const QTextCursor cursor = m_editor.textCursor();
            const bool isIndented = cursor.hasSelection() || cursor.currentList()
                || cursor.blockFormat().leftMargin() > 0;
            return MenuItemState {!m_editor.isReadOnly() && isIndented, {}, {}};
        });
    commands.define(
        TextCommand::Paragraph, [this] { openSheet(); }, writes);
}

ParagraphStyles::~ParagraphStyles() = default;

void ParagraphStyles::defineAlignments(TextCommands &commands)
{
    struct Row
    {
        TextCommand command;
        Qt::AlignmentFlag alignment;
        QString name;
    };

    const Row rows[] = {{TextCommand::AlignLeft, Qt::AlignLeft, u"Align Left"_s},
                        {TextCommand::AlignCentre, Qt::AlignHCenter, u"Align Centre"_s},
                        {TextCommand::AlignRight, Qt::AlignRight, u"Align Right"_s},
                        {TextCommand::Justify, Qt::AlignJustify, u"Justify"_s}};
    for (const Row &row : rows) {
        const Qt::AlignmentFlag alignment = row.alignment;
        commands.define(
            row.command,
            [this, alignment, name = row.name] {
                change(name,
                       [alignment](QTextBlockFormat &format) { format.setAlignment(alignment); });
            },
            [this, alignment] {
                const Qt::Alignment here = m_editor.textCursor().blockFormat().alignment();
                return MenuItemState {!m_editor.isReadOnly(), {}, here.testFlag(alignment)};
            });
    }
}

void ParagraphStyles::defineSpacings(TextCommands &commands)
{
    constexpr std::pair<TextCommand, double> rows[] = {{TextCommand::SingleSpacing, 1},
                                                       {TextCommand::WiderSpacing, 1.5},
                                                       {TextCommand::DoubleSpacing, 2}};
    for (const auto &[command, multiple] : rows) {
        const LineSpacing spacing {LineSpacing::Kind::Multiple, multiple};
        commands.define(
            command,
            [this, spacing] {
                change(u"Line Spacing"_s,
                       [spacing](QTextBlockFormat &format) { setLineSpacing(format, spacing); });
            },
            [this, spacing] {
                const QTextBlockFormat here = m_editor.textCursor().blockFormat();
                return MenuItemState {!m_editor.isReadOnly(), {}, lineSpacingOf(here) == spacing};
            });
    }
}

void ParagraphStyles::change(const QString &name,
                             const std::function<void(QTextBlockFormat &)> &change)
{
    m_editor.edit(name, [&change](QTextCursor &cursor) { changeBlocks(cursor, change); });
    m_editor.ensureCursorVisible();
    m_editor.setFocus();
}

void ParagraphStyles::indent(int by)
{
    m_editor.edit(by > 0 ? u"Increase Indent"_s : u"Decrease Indent"_s, [by](QTextCursor &cursor) {
        const QList<QTextBlock> blocks = selectedBlocks(cursor);
        for (const QTextBlock &block : blocks) {
            if (block.textList()) {
                changeListLevel(block, by);
                continue;
            }
            changeBlock(block, [by](QTextBlockFormat &format) {
                const double steps = format.leftMargin() / indentStep;
                const double next = by > 0 ? std::floor(steps + 1.01) : std::ceil(steps - 1.01);
                setIndents(format, std::max(0.0, next) * indentStep, format.textIndent());
            });
        }
    });
    m_editor.setFocus();
}

void ParagraphStyles::openSheet()
{
    if (m_sheet && m_sheet->isVisible()) {
        return;
    }
    m_sheet = std::make_unique<ParagraphSheet>(m_editor.textCursor().blockFormat(),
                                               m_editor.textCursor().currentList() != nullptr,
                                               m_editor.window());
    m_sheets.beginSheet(*m_sheet, [this](int code) {
        if (code == QDialog::Accepted) {
            change(u"Paragraph"_s, [this](QTextBlockFormat &format) { m_sheet->applyTo(format); });
        }
    });
}

} // namespace quorvane
