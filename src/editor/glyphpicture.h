#pragma once

#include "editor/glyphicon.h"

#include <QWidget>

namespace quorvane {

/// A glyph as a picture of its own, beside words that say the same.
class GlyphPicture final : public QWidget
{
    Q_OBJECT

public:
    GlyphPicture(Glyph glyph, int extent, QWidget *parent);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QIcon m_icon;
};

} // namespace quorvane
