#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QLatin1StringView>
#include <QList>
#include <QObject>
#include <QStringList>

#include <functional>
#include <optional>
#include <utility>

namespace quorvane {

/// The actions that the desktop entry offers.
inline constexpr QLatin1StringView newDocumentAction("new-document");
inline constexpr QLatin1StringView preferencesAction("preferences");

/// What a start is to bring; nothing in it: the program itself.
struct StartRequest
{
    QStringList files; ///< Relative paths are counted from the folder of this process.
    QStringList actions;
};

/// The one running program of a user: it owns a name on the session bus, and takes there what later
/// starts and the desktop ask of it (org.freedesktop.Application of the Desktop Entry
/// Specification). It answers with success or an error, and gives nothing out.
class DBusApplication final : public QObject, protected QDBusContext
{
    Q_OBJECT

public:
    enum class Start {
        First, ///< This is the one program from now on.
        HandedOver, ///< Another one has taken the files.
        Alone, ///< There is no bus to ask.
        Unanswered, ///< There is another one, and it does not answer.
    };

    /// \a patience is how long the other program has for its answer, in milliseconds.
    DBusApplication(const QDBusConnection &bus, const QString &name, int patience = 5000);

    /// Takes the name, or hands \a request to the program that has it; an empty one brings that
    /// program forward.
    [[nodiscard]] Start start(const StartRequest &request);

    /// What makes a document for another program that hands over a text, or something that is none.
    /// It answers what is wrong, which the caller is told.
    using CreateDoc = std::function<std::optional<QString>(const std::optional<QString> &text)>;

    void setCreateDoc(CreateDoc createDoc) { m_createDoc = std::move(createDoc); }

Q_SIGNALS:
    // Each on a call of its own, whose reply is sent on return.
    void activateRequested();
    void openRequested(const QStringList &paths);
    void actionRequested(const QString &name); ///< One of those above.
    void decryptDocRequested(const QString &path, const std::optional<QString> &password);

private:
    friend class ApplicationAdaptor;
    friend class ScriptingAdaptor;

    void open(const QStringList &uris);
    void createDocWithText(const std::optional<QString> &text);
    void activateAction(const QString &name, bool hasParameter);
    bool takeName();
    QList<QDBusMessage> callsFor(const StartRequest &request) const;
    QDBusMessage handOver(const StartRequest &request) const;

    QDBusConnection m_bus;
    QString m_name;
    QString m_path;
    int m_patience;
    CreateDoc m_createDoc;
};

} // namespace quorvane
