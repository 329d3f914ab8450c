#pragma once

#include "editor/picturecopy.h"

#include <QCache>
#include <QHash>
#include <QObject>
#include <QSet>

#include <deque>
#include <memory>
#include <optional>

class QTimer;

namespace quorvane {

/// Pictures decoded at the size in which they are shown. Memory is bounded, whatever a text holds:
/// decoded are those of the page that is seen and a few more; of all others that were seen there is
/// a copy of a few ten kilobytes, which is unpacked when they are seen again and stands in until
/// they are decoded anew, as soon as nobody leafs through any more. What is large is decoded off
/// the thread of the window, what was asked for last before all others, so that it is there first
/// that one looks at.
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
    /// Takes care, without haste, that the picture is there in its form when it is asked for.
    void prepare(const Request &request);
    /// The picture at once, however large; nullptr where it is broken.
    const QImage *decodedNow(const Request &request);
    void clear();

    qsizetype keptBytes() const { return m_images.totalCost() + m_copies.totalCost(); }

    /// What is seen has another scale now: how much of it was seen at once says nothing any more.
    void forgetPages() { m_largestPage = 0; }

signals:
    /// What is seen is to be asked for again: there is more of it now.
    void arrived();
    /// All that is seen at once was asked for.
    void pageAsked();

private:
    struct Mailbox;

    struct Decoded
    {
        QImage image;
        bool isExact; // else it was unpacked from a copy
    };

    struct Job
    {
        Request request;
        bool isAsked; // else it is to be prepared
    };

    /// What was asked for since control last went back to the event loop, which is what is seen.
    struct Page
    {
        QSet<QString> pictures;
        qsizetype bytes = 0;
        qint64 decodedPixels = 0; // while it was waited for
    };

    void note(const Request &request);
    void endPage();
    bool mayWaitFor(qint64 pixels);
    const QImage *unpackedCopy(const Request &request);
    const QImage *keep(const Request &request, QImage image, bool isExact);
    void decodeSoon(const Request &request);
    void replaceAtRest(const Request &standIn);
    void startNext();
    void arrive(const Request &request, int generation, const QImage &image,
                const std::optional<PictureCopy> &copy);

    std::shared_ptr<Mailbox> m_mailbox; // shared with the jobs, which may end after this
    QCache<QString, Decoded> m_images; // by name and size; costs are bytes
    QCache<QString, PictureCopy> m_copies; // by name; costs are bytes
    std::deque<Job> m_waiting; // the next one in front
    QHash<QString, bool> m_decoding; // whether somebody has asked for it
    QSet<QString> m_broken;
    QTimer *m_rest; // runs while pages with stand-ins follow each other
    bool m_isAtRest = false;
    Page m_page;
    qsizetype m_largestPage = 0; // in bytes
    int m_generation = 0;
};

} // namespace quorvane
