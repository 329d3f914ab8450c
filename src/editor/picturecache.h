#pragma once

#include <QCache>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSet>

#include <deque>
#include <memory>

namespace quorvane {

/// Pictures decoded at the size in which they are shown. Memory is bounded, whatever a text holds:
/// what was not seen for longest goes first. What is large is decoded off the thread of the window,
/// what was asked for last before all others, so that it is there first that one looks at.
class PictureCache final : public QObject
{
    Q_OBJECT

public:
    struct Request
    {
        QString name; ///< Tells pictures apart: each has its own.
        QByteArray bytes;
        QSize size; ///< In pixels of the screen.
        bool isTurned = true;
    };

    enum class State { Shown, Coming, Broken };

    struct Found
    {
        State state;
        const QImage *image; ///< Where it is Shown; until the next call.
    };

    explicit PictureCache(QObject *parent);
    ~PictureCache() override;

    Found find(const Request &request);
    /// The picture at once, however large; nullptr where it is broken.
    const QImage *decodedNow(const Request &request);
    void clear();

signals:
    /// A picture that was Coming is there.
    void arrived();

private:
    struct Mailbox;

    void keep(const Request &request, QImage image);
    void startNext();
    void arrive(const Request &request, int generation, const QImage &image);

    std::shared_ptr<Mailbox> m_mailbox; // shared with the jobs, which may end after this
    QCache<QString, QImage> m_images; // by name and size; costs are kilobytes
    QHash<QString, QString> m_latest; // what was decoded last of each name
    std::deque<Request> m_waiting; // the newest one in front
    QSet<QString> m_decoding;
    QSet<QString> m_broken;
    int m_generation = 0;
};

} // namespace quorvane
