#include "editor/headings.h"

#include "editor/paragraphformats.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextFragment>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

/// All in sizes of the body's font.
struct Look
{
    double size;
    double before;
    double after;
};

constexpr std::array looks {
    Look {1.0, 0, 0},     Look {2.0, 1.6, 0.6}, Look {1.5, 1.3, 0.5}, Look {1.25, 1.1, 0.4},
    Look {1.1, 1.0, 0.4}, Look {1.0, 1.0, 0.3}, Look {0.9, 1.0, 0.3},
};
constexpr int mostSearched = 40; // paragraphs on either side, for one of the body
constexpr double pixelsPerPoint = 96.0 / 72;

const Look &lookOf(int level)
{
    return looks.at(std::size_t(std::clamp(level, 0, int(looks.size()) - 1)));
}

QTextCharFormat firstFormatOf(const QTextBlock &block)
{
    return block.begin().atEnd() ? block.charFormat() : block.begin().fragment().charFormat();
}

/// How the body looks that surrounds a paragraph: of it, what a heading changes.
QTextCharFormat bodyFormatAt(const QTextBlock &block)
{
    if (block.blockFormat().headingLevel() == 0) {
        return firstFormatOf(block);
    }
    QTextBlock above = block.previous();
    QTextBlock below = block.next();
    for (int searched = 0; searched < mostSearched; ++searched) {
        for (QTextBlock *candidate : {&below, &above}) {
            if (candidate->isValid() && candidate->blockFormat().headingLevel() == 0
                && candidate->length() > 1) {
                return firstFormatOf(*candidate);
            }
        }
        above = above.isValid() ? above.previous() : above;
        below = below.isValid() ? below.next() : below;
    }
    QTextCharFormat usual;
    usual.setFontPointSize(block.document()->defaultFont().pointSizeF());
    return usual;
}

double sizeOf(const QTextCharFormat &format, const QTextDocument &document)
{
    return format.hasProperty(QTextFormat::FontPointSize) ? format.fontPointSize()
                                                          : document.defaultFont().pointSizeF();
}

void restyle(QTextCharFormat &format, int level, const QTextCharFormat &body, double bodySize)
{
    if (level > 0) {
        format.setFontPointSize(std::round(2 * bodySize * lookOf(level).size) / 2);
        format.setFontWeight(QFont::Bold);
        return;
    }
    format.clearProperty(QTextFormat::FontWeight);
    if (body.hasProperty(QTextFormat::FontPointSize)) {
        format.setFontPointSize(bodySize);
    } else {
        format.clearProperty(QTextFormat::FontPointSize);
    }
}

void restyleText(const QTextBlock &block, const std::function<void(QTextCharFormat &)> &change)
{
    struct Run
    {
        int from;
        int to;
        QTextCharFormat format;
    };

    std::vector<Run> runs; // changing one would end the walk through them
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        runs.push_back(
            {fragment.position(), fragment.position() + fragment.length(), fragment.charFormat()});
    }
    QTextCursor cursor(block);
    QTextCharFormat empty = block.charFormat();
    change(empty);
    cursor.setBlockCharFormat(empty);
    for (Run &run : runs) {
        change(run.format);
        cursor.setPosition(run.from);
        cursor.setPosition(run.to, QTextCursor::KeepAnchor);
        cursor.setCharFormat(run.format);
    }
}

} // namespace

void setHeading(const QTextBlock &block, int level)
{
    if (level == 0 && block.blockFormat().headingLevel() == 0) {
        return;
    }
    const QTextCharFormat body = bodyFormatAt(block);
    const double bodySize = sizeOf(body, *block.document());
    restyleText(block, [&](QTextCharFormat &format) { restyle(format, level, body, bodySize); });
    changeBlock(block, [&](QTextBlockFormat &format) {
        const Look &look = lookOf(level);
        if (level == 0) {
            for (const int property : {QTextFormat::HeadingLevel, QTextFormat::BlockTopMargin,
                                       QTextFormat::BlockBottomMargin}) {
                format.clearProperty(property);
            }
            return;
        }
        format.setHeadingLevel(level);
        format.setTopMargin(std::round(look.before * bodySize * pixelsPerPoint));
        format.setBottomMargin(std::round(look.after * bodySize * pixelsPerPoint));
    });
}

void typeAsBlock(QTextCursor &cursor)
{
    if (!cursor.hasSelection() && cursor.block().length() == 1) {
        cursor.setCharFormat(cursor.blockCharFormat());
    }
}

Headings::Headings(TextEditor &editor, TextCommands &commands)
    : m_editor(editor)
{
    constexpr TextCommand all[] = {
        TextCommand::BodyText, TextCommand::Heading1, TextCommand::Heading2, TextCommand::Heading3,
        TextCommand::Heading4, TextCommand::Heading5, TextCommand::Heading6};
    for (int level = 0; level < int(std::size(all)); ++level) {
        const auto run = [this, level] {
            const QString name = level == 0 ? u"Body"_s : u"Heading"_s;
            m_editor.edit(name, [level](QTextCursor &cursor) {
                const QList<QTextBlock> blocks = selectedBlocks(cursor);
                for (const QTextBlock &block : blocks) {
                    setHeading(block, level);
                }
                typeAsBlock(cursor);
            });
            m_editor.setFocus();
        };
        commands.define(all[level], run, [this, level] {
            const int here = m_editor.textCursor().blockFormat().headingLevel();
            return MenuItemState {!m_editor.isReadOnly(), {}, here == level};
        });
    }
}

} // namespace quorvane
