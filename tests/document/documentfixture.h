#pragma once

#include "document/mydocument.h"
#include "product/settings.h"
#include "support/failingfilestore.h"
#include "support/fakecontrols.h"
#include "support/fakerecovery.h"
#include "support/faketextview.h"
#include "support/faketimers.h"
#include "support/inmemorydefaults.h"
#include "support/manualqueue.h"
#include "support/recordingworkspace.h"
#include "support/scriptedalerts.h"
#include "support/scriptedpanels.h"
#include "support/scriptedsheet.h"
#include "support/scriptedwindow.h"

namespace quorvane {

/// The world around documents, all of it in memory.
struct World
{
    World() { defaults.registerDefaults(settings::registeredDefaults()); }

    MyDocumentSurroundings surroundings()
    {
        return {{queue, files, panels, timers, &recovery},
                defaults,
                fontManager,
                alerts,
                workspace,
                {}};
    }

    ManualQueue queue;
    FakeTimers timers;
    FailingFileStore files;
    FakeRecovery recovery;
    ScriptedPanels panels;
    InMemoryDefaults defaults;
    FakeFontManager fontManager;
    ScriptedAlerts alerts;
    RecordingWorkspace workspace;
};

/// What a document's window connects as outlets.
struct Outlets final : NSWindowController
{
    explicit Outlets(NSOperationQueue &queue)
        : window(queue)
    { }

    void setShouldCascadeWindows(bool cascades) override { shouldCascade = cascades; }

    void connectTo(MyDocument &document)
    {
        document.myWindow = &window;
        document.myTextView = &textView;
        document.myScrollView = &textView;
        document.modernToolbar = &toolbar;
        document.passwordToDecryptField = &passwordField;
        document.decryptProgressIndicator = &progress;
        document.mandatoryPasswordSheet = &mandatorySheet;
        document.changePasswordSheet = &changeSheet;
        document.insertPasswordSheet = &insertSheet;
        document.myPublicTextSheet = &noteSheet;
        document.myPublicNoteView = &noteView;
    }

    FakeTextView textView;
    FakeToolbar toolbar;
    FakeSecureField passwordField;
    FakeProgress progress;
    ScriptedSheet mandatorySheet;
    ScriptedSheet changeSheet;
    ScriptedSheet insertSheet;
    ScriptedSheet noteSheet;
    FakeNoteView noteView;
    bool shouldCascade = true;
    ScriptedWindow window;
};

/// A document with a window of doubles.
struct WindowedDocument
{
    explicit WindowedDocument(World &world)
    {
        MyDocumentSurroundings surroundings = world.surroundings();
        surroundings.loadNib = [this, &world](MyDocument &made) {
            auto controller = std::make_unique<Outlets>(world.queue);
            outlets = controller.get();
            controller->connectTo(made);
            return controller;
        };
        document = std::make_unique<MyDocument>(surroundings);
    }

    /// A document read from \a data, with its window prepared.
    WindowedDocument(World &world, const QByteArray &data)
        : WindowedDocument(world)
    {
        isRead = document->readFromData(data);
        show(world);
    }

    void show(World &world)
    {
        document->makeWindowControllers();
        document->showWindows();
        world.queue.runAll();
    }

    bool isRead = false;
    Outlets *outlets = nullptr;
    std::unique_ptr<MyDocument> document;
};

/// A file of a document without a window: \a body under \a password.
inline QByteArray fileOf(World &world, const QByteArray &body, const QString &password,
                         const QString &note = QStringLiteral("a note"))
{
    MyDocument document(world.surroundings());
    document.setPlainPassword(password);
    document.setMyTextViewData(body);
    document.setMyPublicTextData(note);
    return document.dataOfType().value_or(QByteArray());
}

} // namespace quorvane
