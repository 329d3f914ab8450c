#pragma once

#include "document/mydocument.h"
#include "document/qvrevertdoccontroller.h"
#include "editor/documentwindow.h"
#include "editor/documentwindowcontroller.h"
#include "editor/lockedpage.h"
#include "editor/stylememory.h"
#include "editor/texteditor.h"
#include "platform/posixpackagestore.h"
#include "platform_qt/dialogsheet.h"
#include "platform_qt/qtfontmanager.h"
#include "platform_qt/qtmodalalerts.h"
#include "platform_qt/qtoperationqueue.h"
#include "platform_qt/qttimers.h"
#include "platform_qt/qtwindow.h"
#include "product/release.h"
#include "product/settings.h"
#include "shell/mainmenu.h"
#include "shell/myappdelegate.h"
#include "shell/startwindowkeeper.h"
#include "support/failingfilestore.h"
#include "support/inmemorydefaults.h"
#include "support/listedrecents.h"
#include "support/nobodyloader.h"
#include "support/recordingaccess.h"
#include "support/recordingworkspace.h"
#include "support/scriptedpanels.h"
#include "update/qvphonehome.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPointer>
#include <QPushButton>
#include <QTest>

namespace quorvane {

/// The program with its real windows, menus, sheets and alerts, over files in memory.
class RealProgram
{
public:
    RealProgram() = default;

    InMemoryDefaults defaults;

    ~RealProgram()
    {
        documents.closeAllDocuments([](bool) {});
        // Closed documents go with the next turn; nothing of the program outlives this one.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    /// A file of a document with that body, made by the program itself.
    QByteArray fileOf(const QByteArray &body, const QString &password, bool isEditable = true)
    {
        MyDocument made(MyDocumentSurroundings {
            {m_queue, files, panels, m_timers},
            defaults,
            m_fontManager,
            m_alerts,
            workspace,
            {},
        });
        made.setPlainPassword(password);
        made.setMyTextViewData(body);
        made.setMyIsEditable(isEditable);
        made.setMyPublicTextData(QStringLiteral("ring the bell twice"));
        return made.dataOfType().value_or(QByteArray());
    }

    /// The newest document's parts; null while there is no document.
    MyDocument *document() const
    {
        const std::vector<NSDocument *> open = documents.documents();
        return open.empty() ? nullptr : static_cast<MyDocument *>(open.back());
    }

    DocumentWindow &window() const { return *m_windows.last(); }

    TextEditor &editor() const { return window().editor(); }

    /// The dialog that is up: a sheet, an alert, or null.
    static QDialog *dialog()
    {
        const QWidgetList widgets = QApplication::topLevelWidgets();
        for (QWidget *widget : widgets) {
            if (auto *dialog = qobject_cast<QDialog *>(widget); dialog && dialog->isVisible()) {
                return dialog;
            }
        }
        return nullptr;
    }

    /// All words of the dialog that is up.
    static QString dialogText()
    {
        QStringList texts;
        if (const QDialog *up = dialog()) {
            const auto labels = up->findChildren<QLabel *>();
            for (const QLabel *label : labels) {
                texts << label->text();
            }
        }
        return texts.join(u'\n');
    }

    /// The visible field of that name; null where there is none.
    static QLineEdit *field(const QWidget &root, const QString &name)
    {
        const auto fields = root.findChildren<QLineEdit *>();
        for (QLineEdit *each : fields) {
            if (each->accessibleName() == name && each->isVisible()) {
                return each;
            }
        }
        return nullptr;
    }

    /// Types into the field of that name, in place of what it holds.
    static bool type(const QWidget &root, const QString &name, const QString &text)
    {
        QLineEdit *typed = field(root, name);
        if (typed) {
            typed->selectAll();
            QTest::keyClick(typed, Qt::Key_Delete);
            QTest::keyClicks(typed, text);
        }
        return typed;
    }

    /// Presses the button of the dialog that is up.
    static bool press(const QString &button)
    {
        QDialog *up = dialog();
        const auto buttons = up ? up->findChildren<QPushButton *>() : QList<QPushButton *>();
        for (QPushButton *each : buttons) {
            if (each->text().remove(u'&') == button && each->isVisible()) {
                each->click();
                return true;
            }
        }
        return false;
    }

    /// The menu item of that title, whatever its menu.
    QAction *menuItem(const QString &title) const { return menuItem(window(), title); }

    static QAction *menuItem(const QWidget &root, const QString &title)
    {
        const auto actions = root.findChildren<QAction *>();
        for (QAction *action : actions) {
            const QString text = action->text().remove(u'&');
            const bool namesAStep = title == "Undo"_L1 || title == "Redo"_L1;
            if (text == title || (namesAStep && text.startsWith(title + u' '))) {
                return action;
            }
        }
        return nullptr;
    }

private:
    AppSurroundings appSurroundings()
    {
        MyAppDelegate::initialize(defaults, m_phoneHome);
        return {defaults,
                documents,
                m_timers,
                m_queue,
                m_alerts,
                panels,
                workspace,
                m_fontManager,
                access,
                m_phoneHome,
                [this](QWidget &widget) {
                    return std::make_unique<QtWindow>(widget, m_queue);
                }};
    }

    MenuSurroundings menuSurroundings()
    {
        return {documents, recents, m_alerts, delegate, [this] {
                    documents.closeAllDocuments([this](bool closed) {
                        if (closed) {
                            startWindow.end();
                            hasQuit = true;
                        }
                    });
                }};
    }

    std::unique_ptr<NSDocument> makeDocument()
    {
        return std::make_unique<MyDocument>(MyDocumentSurroundings {
            {m_queue, files, panels, m_timers},
            defaults,
            m_fontManager,
            m_alerts,
            workspace,
            [this](MyDocument &made) { return loadNib(made); },
        });
    }

    std::unique_ptr<NSWindowController> loadNib(MyDocument &made)
    {
        const auto adapt = [this](QWidget &widget, const WindowEvents &events) {
            auto window = std::make_unique<QtWindow>(widget, m_queue);
            window->setCloseRequested(events.closeRequested);
            QObject::connect(window.get(), &QtWindow::becameKey, events.becameKey);
            return window;
        };
        const auto isOpen = [this](const QString &path) {
            return documents.hasOpen(path);
        };
        const auto sheetOf = [](QDialog &dialog) -> NSSheet & {
            return *new DialogSheet(dialog);
        };
        const EditorSurroundings surroundings {
            {{m_queue, files, panels, m_timers}, m_packages, isOpen},
            {m_queue, files, sheetOf, isOpen},
            workspace,
            m_styles,
        };
        auto controller =
            std::make_unique<DocumentWindowController>(made, defaults, adapt, surroundings);
        m_windows << &controller->window();
        new MainMenu(controller->window(), menuSurroundings(), // owned by the window
                     MenuDocument {controller->window(), made, controller->commands()});
        return controller;
    }

    QtOperationQueue m_queue;
    QtTimers m_timers;
    StyleMemory m_styles;
    QtFontManager m_fontManager;
    QtModalAlerts m_alerts {m_queue};
    PosixPackageStore m_packages;
    NobodyLoader m_loader;
    ImmediateBackground m_background;
    QList<QPointer<DocumentWindow>> m_windows;

public:
    FailingFileStore files;
    ScriptedPanels panels;
    ListedRecents recents;
    RecordingWorkspace workspace;
    RecordingAccess access;

private:
    QVPhoneHome m_phoneHome {
        {defaults, m_alerts, workspace, m_loader, m_background, &QDateTime::currentDateTime}};

public:
    QVRevertDocController documents {{m_queue, files, panels, m_timers},
                                     m_alerts,
                                     documentExtension,
                                     [this] {
                                         return makeDocument();
                                     }};
    MyAppDelegate delegate {appSurroundings()};
    StartWindowKeeper startWindow {menuSurroundings(), m_queue}; ///< Only where a test begins it.
    bool hasQuit = false;
};

} // namespace quorvane
