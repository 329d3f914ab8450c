#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QStringList>
#include <QXmlStreamAttributes>

#include <functional>
#include <optional>
#include <vector>

namespace quorvane {

/// A list of used files after the Desktop Bookmark specification of freedesktop.org, which all
/// programs of the user write to. Each change is a splice: what is not ours stays byte for byte.
class DesktopBookmarks final
{
public:
    /// Who uses a file, as the list tells it.
    struct Application
    {
        QString name;
        QString command; ///< With %f for the file.
        QString mimeType; ///< Of the files that it notes.
    };

    static constexpr qint64 largestFile = 16 * 1024 * 1024;

    /// Nothing where the bytes are no such list in UTF-8. No bytes at all are an empty list.
    static std::optional<DesktopBookmarks> read(const QByteArray &bytes);

    const QByteArray &bytes() const { return m_bytes; }

    /// The local files that the application has used, the newest first.
    QStringList pathsOf(const QString &application) const;
    /// The list with one more use of the file; it counts as later than all of the application's.
    QByteArray withUse(const QString &path, const Application &application,
                       const QDateTime &now) const;
    /// The list without the application's uses of the files that \a goes says. An entry that no
    /// application is left in goes as a whole.
    QByteArray withoutUses(const QString &application,
                           const std::function<bool(const QString &path)> &goes) const;

private:
    struct Element
    {
        QString space; // the namespace's address
        QString name;
        QXmlStreamAttributes attributes;
        qsizetype parent = -1;
        qsizetype begin = 0;
        qsizetype inner = 0; // behind the start tag
        qsizetype innerEnd = 0;
        qsizetype end = 0;
    };

    struct Splice
    {
        qsizetype begin;
        qsizetype end;
        QByteArray text;
    };

    struct Use
    {
        QString path;
        QDateTime time;
    };

    /// How much of what tells an application is to be written.
    enum class Depth { Application, Applications, Metadata, Info };

    using Splices = std::vector<Splice>;

    explicit DesktopBookmarks(QByteArray bytes);

    bool parse();
    bool isBookmark(qsizetype index) const;
    QString pathOf(qsizetype bookmark) const;
    QString attributeOf(qsizetype element, QLatin1StringView name) const;
    std::vector<qsizetype> applicationsOf(qsizetype bookmark) const;
    QDateTime timeOf(qsizetype bookmark, qsizetype application) const;
    QList<Use> usesOf(const QString &application) const; // the newest first
    std::optional<qsizetype> bookmarkOf(const QString &path) const;
    std::optional<qsizetype> childOf(qsizetype parent, QLatin1StringView space,
                                     QLatin1StringView name) const;

    QByteArray declarations() const;
    QByteArray applicationText(const Application &application, const QByteArray &stamp,
                               qint64 count) const;
    QByteArray infoText(Depth depth, const Application &application, const QByteArray &stamp) const;
    Splice newBookmark(const QString &path, const Application &application,
                       const QByteArray &stamp) const;
    Splices renewal(qsizetype bookmark, const Application &application,
                    const QByteArray &stamp) const;
    Splice insertion(qsizetype element, const QByteArray &text) const;
    Splice attribute(qsizetype element, const QByteArray &name, const QByteArray &value) const;
    Splice removal(qsizetype element) const;
    QByteArray spliced(Splices splices) const;

    QByteArray m_bytes;
    std::vector<Element> m_elements; // in the order of the file, the root first
    bool m_declaresPrefixes = false; // the root does, the usual ones
};

} // namespace quorvane
