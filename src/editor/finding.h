#pragma once

#include "editor/textfinder.h"

#include <QObject>

namespace quorvane {

class DocumentWindow;
class FindBar;
class TextCommands;

/// The commands that find and replace in a window's text, and their bar.
class Finding final : public QObject
{
public:
    Finding(DocumentWindow &window, VisibleMarks &marks);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void defineCommands(TextCommands &commands);
    FindBar &bar();
    void followBar();
    void open(bool replaces);
    void close();
    void find(TextFinder::Direction direction);
    void findSelection();
    void showStanding();
    bool isOpen() const;

    DocumentWindow &m_window;
    TextEditor &m_editor;
    FindBar *m_bar = nullptr; // owned by the window, made when it is first needed
    TextFinder m_finder;
    bool m_asked = false; // and the answer is not there yet
};

} // namespace quorvane
