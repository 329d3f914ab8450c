#pragma once

#include <QColor>
#include <QList>
#include <QPixmap>
#include <QRectF>
#include <QTextCursor>

class QPainter;

namespace quorvane {

class TextEditor;

/// Waves under places of a text, drawn over it. The toolkit would draw them too, but one of its own
/// in a paragraph makes each key there cost a fifth more.
class WavyUnderlines final
{
public:
    explicit WavyUnderlines(TextEditor &editor);

    /// Where they are from now on. The places move with the text.
    void set(const QList<QTextCursor> &places, const QColor &colour);

    void clear() { set({}, m_colour); }

    const QList<QTextCursor> &places() const { return m_places; }

private:
    QList<QRectF> wavesOf(const QTextCursor &place) const;
    double scale() const;
    const QPixmap &tile();
    void draw(QPainter &painter);

    TextEditor &m_editor;
    QList<QTextCursor> m_places;
    QColor m_colour;
    QPixmap m_tile; // of one wave
};

} // namespace quorvane
