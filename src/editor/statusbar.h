#pragma once

#include "editor/selectedtext.h"
#include "editor/textcounts.h"

#include <QFrame>
#include <QTimer>

class QLabel;
class QToolButton;

namespace quorvane {

class TextCommands;
class TextEditor;

/// A line below the text that tells how much there is of it, or of what is selected, and how large
/// it is shown. It counts when nobody types, a bit at a time.
class StatusBar final : public QFrame
{
    Q_OBJECT

public:
    StatusBar(TextEditor &editor, TextCommands &commands);

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void begin();
    void countOn();
    void showCounts();
    void tell(const QStringList &parts);
    void showWhatFits();
    void showZoom();

    TextEditor &m_editor;
    QLabel *m_label = nullptr;
    QStringList m_parts; // of what it says, the most wanted first
    QLabel *m_readOnly = nullptr;
    QToolButton *m_zoom = nullptr;
    QTimer m_timer;
    QList<SelectedRange> m_left; // to be counted, from the end
    bool m_ofSelection = false;
    TextCounts m_counts; // so far
};

} // namespace quorvane
