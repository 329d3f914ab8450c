#pragma once

#include "editor/sheetdialog.h"

#include <QPointer>

class QFormLayout;
class QPushButton;

namespace quorvane {

/// A sheet with named fields, a button that confirms them and one that cancels.
class FormSheet : public SheetDialog
{
    Q_OBJECT

public:
    FormSheet(const QString &title, const QString &explanation, const QString &confirmTitle,
              QWidget *host);

    /// Shows the sheet, which belongs to its host and goes when it has ended. \a confirmed runs if
    /// it was, and if \a context is still there.
    void begin(NSWindow &window, const QObject *context, std::function<void()> confirmed);

protected:
    QFormLayout &form() const { return *m_form; }

    QPushButton &confirmButton() const { return *m_confirm; }

    /// Adds a field under a name that ends with a colon, with the key after "&".
    void addField(const QString &name, QWidget *field);
    void addField(const QString &name, QLayout *fields, QWidget *first);

    void focusFirst() override;

private:
    QFormLayout *m_form = nullptr;
    QPushButton *m_confirm = nullptr;
    QPointer<QWidget> m_first;
};

} // namespace quorvane
