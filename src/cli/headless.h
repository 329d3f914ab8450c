#pragma once

#include "document/mydocument.h"
#include "platform/posixfilestore.h"

#include <QVariant>

namespace quorvane {

/// The world of a document that nobody sees: files are real, all else is not there. Nothing is
/// asked, shown, deferred or set.
class Headless final
{
public:
    MyDocumentSurroundings surroundings()
    {
        return {
            {m_queue, m_files, m_panels, m_timers}, m_defaults, m_fonts, m_alerts, m_workspace, {}};
    }

    FileStore &files() { return m_files; }

private:
    class Queue final : public NSOperationQueue
    {
    public:
        void addOperation(std::function<void()>) override { }
    };

    class Panels final : public FilePanels
    {
    public:
        void beginOpen(const NSOpenPanel &, std::function<void(QStringList)>) override { }

        void beginOpenSheet(NSWindow &, const NSOpenPanel &,
                            std::function<void(QStringList)>) override
        { }

        void beginSaveSheet(NSWindow &, const NSSavePanel &,
                            std::function<void(std::optional<QString>)>) override
        { }
    };

    class Timers final : public TimerFactory
    {
    public:
        std::unique_ptr<NSTimer> scheduledTimer(double, std::function<void()>) override
        {
            return nullptr;
        }
    };

    class Defaults final : public NSUserDefaults
    {
        QVariant stored(QLatin1StringView) const override { return {}; }

        void store(QLatin1StringView, const QVariant &) override { }
    };

    class Fonts final : public NSFontManager
    {
    public:
        QStringList availableFontFamilies() const override { return {}; }

        std::optional<NSFont> fontWithName(const QString &, double) const override { return {}; }

        void setEnabled(bool) override { }

        bool isEnabled() const override { return false; }
    };

    class Alerts final : public ModalAlerts
    {
    public:
        void runModal(const NSAlert &, AlertCompletion) override { }
    };

    class Workspace final : public NSWorkspace
    {
    public:
        bool openURL(const QUrl &) override { return false; }

        bool openFile(const QString &) override { return false; }

        bool openLinkedFile(const QString &) override { return false; }

        void selectFileInFileViewer(const QString &) override { }
    };

    Queue m_queue;
    PosixFileStore m_files;
    Panels m_panels;
    Timers m_timers;
    Defaults m_defaults;
    Fonts m_fonts;
    Alerts m_alerts;
    Workspace m_workspace;
};

} // namespace quorvane
