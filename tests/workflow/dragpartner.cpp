// Another program at the other end of a drag: a window that tells what is dropped on it, and that
// gives the file it was started with to whoever drags it out. All that it has to say goes to its
// standard output, a line each; what was given to it in base64.
//
//     ready <x> <y>          the middle of the window, once it stands
//     over                   something that it takes is above it, each time that moves
//     left                   it is not dropped here
//     <format> <bytes>       what was dropped, for each format that it asks for
//     file <bytes>           of each file that was dropped
//     done                   with what was dropped

#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>

#include <cstdio>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

void tell(const QByteArray &word, const QByteArray &bytes = {})
{
    std::puts((word + ' ' + bytes).constData());
    std::fflush(stdout);
}

class Partner final : public QWidget
{
public:
    explicit Partner(QString file)
        : m_file(std::move(file))
    {
        setAcceptDrops(true);
        setGeometry(900, 200, 300, 300);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        const QPoint middle = mapToGlobal(rect().center());
        tell("ready", QByteArray::number(middle.x()) + ' ' + QByteArray::number(middle.y()));
    }

    void mouseMoveEvent(QMouseEvent *event) override
    {
        if (!event->buttons().testFlag(Qt::LeftButton) || m_file.isEmpty()) {
            return;
        }
        auto dragged = std::make_unique<QMimeData>();
        dragged->setUrls({QUrl::fromLocalFile(m_file)});
        auto *drag = new QDrag(this);
        drag->setMimeData(dragged.release());
        drag->exec(Qt::CopyAction);
    }

    void dragEnterEvent(QDragEnterEvent *event) override { event->acceptProposedAction(); }

    void dragMoveEvent(QDragMoveEvent *event) override
    {
        event->acceptProposedAction();
        tell("over");
    }

    void dragLeaveEvent(QDragLeaveEvent *) override { tell("left"); }

    void dropEvent(QDropEvent *event) override
    {
        const QMimeData &dropped = *event->mimeData();
        for (const QString &format : {u"text/rtf"_s, u"image/png"_s}) {
            tell(format.toUtf8(), dropped.data(format).toBase64());
        }
        const QList<QUrl> urls = dropped.urls();
        for (const QUrl &url : urls) {
            QFile file(url.toLocalFile());
            const bool isOpen = file.open(QIODevice::ReadOnly);
            tell("file", isOpen ? file.readAll().toBase64() : QByteArray());
        }
        event->acceptProposedAction();
        tell("done");
    }

private:
    QString m_file;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    Partner partner(QApplication::arguments().value(1));
    partner.show();
    return QApplication::exec();
}
