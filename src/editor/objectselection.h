#pragma once

class QPainter;

namespace quorvane {

class TextEditor;

/// Keeps the colour of the selection to the place of an attachment that is selected alone: the
/// toolkit fills its line from top to bottom, which may be as high as another picture.
class ObjectSelection final
{
public:
    explicit ObjectSelection(TextEditor &editor);

private:
    void draw(QPainter &painter) const;

    TextEditor &m_editor;
};

} // namespace quorvane
