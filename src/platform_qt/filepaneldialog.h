#pragma once

#include "platform/panels.h"

#include <QFileDialog>

namespace quorvane {

/// Qt's own file dialog without its question about existing files, which would run a loop of events
/// of its own. Is deleted by \a deleteWhenIdle only.
class FilePanelDialog final : public QFileDialog
{
    Q_OBJECT

public:
    FilePanelDialog(QWidget *parent, const NSOpenPanel &panel, const QString &directory);
    FilePanelDialog(QWidget *parent, const NSSavePanel &panel, const QString &directory);

    QStringList chosenPaths() const; ///< What is to be opened.
    QString pathToSave() const; ///< With the extension that is added to a name without one.

    void accept() override;
    void done(int result) override;
    /// Once the context menus and questions that Qt runs inside the dialog have returned.
    void deleteWhenIdle();

private:
    void setUp(const QString &directory, const QStringList &types);
    void showDatesInFull();
    void askToReplace(const QString &path);
    bool isPackage(const QString &path) const;
    void choosePackage(const QString &path);

    QStringList m_types;
    QStringList m_packageTypes;
    QString m_package; // that was chosen
    int m_loopLevel;
    bool m_mayReplace = false;
};

} // namespace quorvane
