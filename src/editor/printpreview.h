#pragma once

#include <QDialog>

class QLabel;
class QPrintPreviewWidget;
class QPrinter;
class QTextDocument;
class QToolBar;

namespace quorvane {

/// The pages of a text on their paper. Nothing is printed from here: the sheet ends with what is
/// to be done next.
class PrintPreview final : public QDialog
{
    Q_OBJECT

public:
    static constexpr int printCode = 2; // beside those of a dialog
    static constexpr int pageSetupCode = 3;

    /// Both outlive the preview.
    PrintPreview(const QTextDocument &content, QPrinter &printer, QWidget *window);

private:
    void addZooms(QToolBar &bar);
    void addPages(QToolBar &bar);
    void addEnds(QToolBar &bar);
    void paint(QPrinter &printer);
    void showPage();
    void turnTo(int page);

    const QTextDocument &m_content;
    QPrintPreviewWidget *m_pages = nullptr;
    QLabel *m_place = nullptr;
    QAction *m_previous = nullptr;
    QAction *m_next = nullptr;
};

} // namespace quorvane
