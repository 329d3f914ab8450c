#include "editor/objectselection.h"

#include "editor/adaptivecolours.h"
#include "editor/placedattachment.h"
#include "editor/texteditor.h"

#include <QPainter>
#include <QTextBlock>
#include <QTextLayout>

#include <cmath>

namespace quorvane {

ObjectSelection::ObjectSelection(TextEditor &editor)
    : m_editor(editor)
{
    editor.addOverlay([this](QPainter &painter) { draw(painter); });
}

void ObjectSelection::draw(QPainter &painter) const
{
    const auto selected = selectedAttachment(m_editor);
    if (!selected) {
        return;
    }
    const QRectF place = placeOf(m_editor, *selected);
    const QTextBlock block = m_editor.document()->findBlock(selected->position);
    const QTextLine line =
        block.layout()->lineForTextPosition(selected->position - block.position());
    if (!place.isValid() || !line.isValid()) {
        return;
    }
    const QColor paper = paperOf(block, m_editor.palette().color(QPalette::Base));
    const double above = line.ascent() - place.height(); // the object stands on the text's line
    const double below = std::ceil(line.height()) - line.ascent();
    painter.fillRect(QRectF(place.left(), place.top() - above, place.width(), above), paper);
    painter.fillRect(QRectF(place.left(), place.bottom(), place.width(), below), paper);
}

} // namespace quorvane
