#pragma once

#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;

namespace quorvane {

class NSUserDefaults;
class QVAppDelegateBase;

/// The startup document in the preferences window: its name and folder, what can be done with it,
/// and a line that tells how it stands.
class StartupDocumentRow final : public QWidget
{
    Q_OBJECT

public:
    /// \a action is the pop-up of startup actions, one of which the row is for.
    StartupDocumentRow(QVAppDelegateBase &delegate, NSUserDefaults &defaults, QComboBox &action);

private:
    QWidget *newButtons();
    void show();

    QVAppDelegateBase &m_delegate;
    NSUserDefaults &m_defaults;
    QComboBox &m_action;
    QLabel *m_name;
    QLabel *m_path;
    QLabel *m_status;
    QPushButton *m_select = nullptr;
    QList<QPushButton *> m_ofChosen; // what needs a document
};

} // namespace quorvane
