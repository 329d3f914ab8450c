#pragma once

#include "editor/sheetdialog.h"

namespace quorvane {

class PublicNoteView;

/// The sheet in which the public note is edited. There is nothing to cancel: editing takes effect
/// as it goes.
class PublicNoteSheet final : public SheetDialog
{
    Q_OBJECT

public:
    explicit PublicNoteSheet(QWidget *host);

    PublicNoteView &view() const { return *m_view; }

    /// Escape, the window manager and the button.
    void reject() override;

signals:
    void closeAsked();

protected:
    void focusFirst() override;

private:
    PublicNoteView *m_view = nullptr;
};

} // namespace quorvane
