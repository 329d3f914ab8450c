#pragma once

#include <QObject>
#include <QPointer>

class QTextBlock;
class QTextDocument;
class QTextEdit;

namespace quorvane {

/// Keeps every line of an edited document on the screen.
///
/// The toolkit lays a shown document out in steps. An edit before the last step makes it take the
/// rest for laid out, which then has no lines: the text is there, but cannot be seen. This guard
/// notices such an edit, whoever makes it, and has the layout begin anew.
class LayoutGuard final : public QObject
{
public:
    explicit LayoutGuard(QTextEdit &editor);

    /// From now on watches this document alone, which the editor shows.
    void watch(QTextDocument *document);

private:
    void noteEdit(int position, int added);
    void repair();

    QTextEdit &m_editor;
    QPointer<QTextDocument> m_document;
    bool m_wasUnfinished = false;
};

} // namespace quorvane
