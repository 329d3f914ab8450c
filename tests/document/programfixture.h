#pragma once

#include "document/qvrevertdoccontroller.h"
#include "documentfixture.h"
#include "product/release.h"

#include <QCoreApplication>

#include <vector>

namespace quorvane {

/// A run of the program over a world that outlives it, with windows of doubles.
class ProgramRun final
{
public:
    explicit ProgramRun(World &world)
        : m_world(world)
    { }

    ~ProgramRun() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    Q_DISABLE_COPY_MOVE(ProgramRun)

    MyDocument *document() const ///< The newest one; null while there is none.
    {
        const std::vector<NSDocument *> open = controller.documents();
        return open.empty() ? nullptr : static_cast<MyDocument *>(open.back());
    }

    Outlets &outlets() const { return *m_outlets.back(); } ///< Of the newest document.

    ScriptedWindow &window() const { return outlets().window; }

    void open(const QString &path)
    {
        controller.openDocumentWithContentsOfURL(path);
        m_world.queue.runAll();
    }

    void newDocument(const QString &password)
    {
        controller.newDocument();
        document()->setPlainPassword(password);
        document()->updateChangeCount(NSDocumentChangeType::Done);
        m_world.queue.runAll();
    }

    void type(const QByteArray &body)
    {
        outlets().textView.type(body);
        document()->textDidChange();
    }

    void becomeKey()
    {
        document()->windowDidBecomeKey(window());
        m_world.queue.runAll();
    }

    /// Answers what is up on the newest document's window by the title of a button.
    bool answer(const QString &button)
    {
        const qsizetype number = window().attachedSheet() == nullptr
            ? -1
            : window().alerts.last().buttons.indexOf(button);
        if (number >= 0) {
            window().answer(static_cast<int>(AlertAnswer::First) + static_cast<int>(number));
            m_world.queue.runAll();
        }
        return number >= 0;
    }

private:
    std::unique_ptr<NSDocument> make()
    {
        MyDocumentSurroundings surroundings = m_world.surroundings();
        surroundings.loadNib = [this](MyDocument &made) {
            auto outlets = std::make_unique<Outlets>(m_world.queue);
            outlets->connectTo(made);
            m_outlets.push_back(outlets.get());
            return outlets;
        };
        return std::make_unique<MyDocument>(surroundings);
    }

    World &m_world;
    std::vector<Outlets *> m_outlets;

public:
    QVRevertDocController controller {m_world.surroundings().machinery, m_world.alerts,
                                      documentExtension, [this] {
                                          return make();
                                      }};
};

/// A file as fileOf makes it, made once: the key takes its time.
inline QByteArray knownFile(const QByteArray &body, const QString &password)
{
    static QMap<QByteArray, QByteArray> files;
    QByteArray &file = files[body + '/' + password.toUtf8()];
    if (file.isEmpty()) {
        World world;
        file = fileOf(world, body, password);
    }
    return file;
}

/// The body of a file's bytes; nothing where they do not open with that password.
inline std::optional<QByteArray> bodyOf(World &world, const QByteArray &file,
                                        const QString &password)
{
    MyDocument document(world.surroundings());
    document.setPlainPassword(password);
    const bool opens = document.readFromData(file) && document.Decript() == 0;
    return opens ? document.myTextViewData() : std::nullopt;
}

} // namespace quorvane
