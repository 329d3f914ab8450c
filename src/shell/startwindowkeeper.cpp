#include "shell/startwindowkeeper.h"

#include "platform/nsdocumentcontroller.h"
#include "platform/nsoperationqueue.h"

namespace quorvane {

StartWindowKeeper::StartWindowKeeper(const MenuSurroundings &surroundings, NSOperationQueue &queue)
    : m_surroundings(surroundings)
    , m_queue(queue)
{
    connect(&m_surroundings.documents, &NSDocumentController::documentsChanged, this,
            &StartWindowKeeper::follow);
}

StartWindowKeeper::~StartWindowKeeper()
{
    delete m_window;
}

void StartWindowKeeper::begin()
{
    m_isOn = true;
    show();
}

void StartWindowKeeper::end()
{
    m_isOn = false;
}

void StartWindowKeeper::follow()
{
    if (!m_surroundings.documents.documents().empty()) {
        hide();
        return;
    }
    // The last document may have gone because all do, or to make place for another.
    m_queue.addOperation([self = QPointer(this)] {
        if (self) {
            self->show();
        }
    });
}

void StartWindowKeeper::show()
{
    if (!m_isOn || m_window || !m_surroundings.documents.documents().empty()) {
        return;
    }
    m_window = new StartWindow(m_surroundings);
    connect(m_window, &StartWindow::closed, this,
            [this] { m_queue.addOperation(m_surroundings.quit); });
    m_window->show();
}

void StartWindowKeeper::hide()
{
    if (StartWindow *window = m_window) {
        m_window.clear();
        window->hide();
        window->deleteLater(); // it may be its own button that has brought the document
    }
}

} // namespace quorvane
