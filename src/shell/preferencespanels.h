#pragma once

class QComboBox;
class QWidget;

namespace quorvane {

class NSUserDefaults;
class QVAppDelegateBase;

/// The font pop-ups of a preferences window. Their items are made elsewhere.
struct FontPopups
{
    QComboBox *ofDocuments = nullptr;
    QComboBox *ofPublicNote = nullptr;
};

// What stands on the panels of the preferences window, each control tied to its setting.
QWidget *newGeneralPanel(QVAppDelegateBase &delegate, NSUserDefaults &defaults);
QWidget *newEditPanel(NSUserDefaults &defaults, FontPopups &popups);
QWidget *newAdvancedPanel(QVAppDelegateBase &delegate, NSUserDefaults &defaults);
QWidget *newUpdatePanel(QVAppDelegateBase &delegate, NSUserDefaults &defaults);

} // namespace quorvane
