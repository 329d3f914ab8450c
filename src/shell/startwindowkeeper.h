#pragma once

#include "shell/startwindow.h"

#include <QPointer>

namespace quorvane {

class NSOperationQueue;

/// Keeps the start window on the screen for as long as the program has no document.
class StartWindowKeeper final : public QObject
{
    Q_OBJECT

public:
    StartWindowKeeper(const MenuSurroundings &surroundings, NSOperationQueue &queue);
    ~StartWindowKeeper() override;

    /// From now on; a start that opens a document calls this behind it, and nothing flashes.
    void begin();
    void end(); ///< The program is going.

    StartWindow *window() const { return m_window; } ///< Null while there is none.

private:
    void follow();
    void show();
    void hide();

    MenuSurroundings m_surroundings;
    NSOperationQueue &m_queue;
    QPointer<StartWindow> m_window;
    bool m_isOn = false;
};

} // namespace quorvane
