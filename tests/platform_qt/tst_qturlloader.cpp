#include "platform_qt/qtoperationqueue.h"
#include "platform_qt/qturlloader.h"

#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

QByteArray answerOf(const QByteArray &status, const QByteArray &header, const QByteArray &body)
{
    return "HTTP/1.1 " + status + "\r\nConnection: close\r\n" + header
        + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

} // namespace

/// Against a real server on the loopback, asked from the background as the program asks.
class TestQtURLLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anAnswerIsTakenOrNone_data();
    void anAnswerIsTakenOrNone();
    void whatNeverAnswersCanBeCancelled();
    void aReservedNameIsNotAskedFor_data();
    void aReservedNameIsNotAskedFor();

private:
    static bool fetch(const QString &url, std::optional<QByteArray> &body, QtURLLoader &loader,
                      const std::function<void()> &meanwhile = {});
};

bool TestQtURLLoader::fetch(const QString &url, std::optional<QByteArray> &body,
                            QtURLLoader &loader, const std::function<void()> &meanwhile)
{
    QtOperationQueue main;
    QtBackgroundQueue background(main);
    bool isDone = false;
    QThread *worker = nullptr;
    background.addOperation(
        [&] {
            worker = QThread::currentThread();
            body = loader.contentsOfURL(url);
        },
        [&] { isDone = QThread::currentThread() != worker; });
    if (meanwhile) {
        meanwhile();
    }
    return QTest::qWaitFor([&isDone] { return isDone; }, 30'000);
}

void TestQtURLLoader::anAnswerIsTakenOrNone_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QByteArray>("expected");
    const QByteArray none;
    const QByteArray longest(QtURLLoader::longestAnswer, 'x');
    QTest::newRow("a page") << answerOf("200 OK", "", "hello") << QByteArray("hello");
    QTest::newRow("a page that is not there") << answerOf("404 Not Found", "", "hello") << none;
    QTest::newRow("the server's fault") << answerOf("500 Oops", "", "hello") << none;
    QTest::newRow("no HTTP at all") << QByteArray("hello\r\n\r\n") << none;
    QTest::newRow("the longest answer") << answerOf("200 OK", "", longest) << longest;
    QTest::newRow("one byte more") << answerOf("200 OK", "", longest + 'x') << none;
    QTest::newRow("a redirection out of the web")
        << answerOf("302 Found", "Location: file:///etc/passwd\r\n", "") << none;
    QTest::newRow("a redirection round and round")
        << answerOf("302 Found", "Location: /again\r\n", "") << none;
}

void TestQtURLLoader::anAnswerIsTakenOrNone()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const QByteArray, expected);
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    connect(&server, &QTcpServer::newConnection, &server, [&server, answer] {
        QTcpSocket *socket = server.nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, socket, [socket, answer] {
            socket->write(answer);
            socket->disconnectFromHost();
        });
    });
    QtURLLoader loader;
    std::optional<QByteArray> body;
    QVERIFY(
        fetch(u"http://127.0.0.1:%1/mac/quorvane.plist"_s.arg(server.serverPort()), body, loader));
    QCOMPARE(body.has_value(), !expected.isEmpty());
    QCOMPARE(body.value_or(QByteArray()), expected);
}

void TestQtURLLoader::whatNeverAnswersCanBeCancelled()
{
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    const QString url = u"http://127.0.0.1:%1/"_s.arg(silent.serverPort());
    std::optional<QByteArray> body;
    QtURLLoader patient(std::chrono::hours(1));
    QVERIFY(fetch(url, body, patient, [&] {
        QVERIFY(silent.waitForNewConnection(30'000));
        emit patient.cancelled();
    }));
    QVERIFY(!body);
    QtURLLoader hasty(std::chrono::milliseconds(1));
    QVERIFY(fetch(url, body, hasty) && !body);
}

void TestQtURLLoader::aReservedNameIsNotAskedFor_data()
{
    QTest::addColumn<bool>("isAsked");
    QTest::newRow("update.orbelt.example") << false;
    QTest::newRow("UPDATE.INVALID.") << false;
    QTest::newRow("test") << false;
    QTest::newRow("test.orbelt.net") << true;
}

// The proxy stands for the whole net: it sees every name that would be looked up.
void TestQtURLLoader::aReservedNameIsNotAskedFor()
{
    QFETCH(bool, isAsked);
    QTcpServer proxy;
    QVERIFY(proxy.listen(QHostAddress::LocalHost));
    QNetworkProxy::setApplicationProxy(
        {QNetworkProxy::HttpProxy, u"127.0.0.1"_s, proxy.serverPort()});
    bool sees = false;
    connect(&proxy, &QTcpServer::newConnection, &proxy, [&proxy, &sees] {
        sees = true;
        proxy.nextPendingConnection()->disconnectFromHost();
    });
    QtURLLoader loader;
    std::optional<QByteArray> body;
    QVERIFY(fetch(u"http://%1/mac/quorvane.plist"_s.arg(QLatin1StringView(QTest::currentDataTag())),
                  body, loader));
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
    QVERIFY(!body);
    QCOMPARE(sees, isAsked);
}

QTEST_GUILESS_MAIN(TestQtURLLoader)
#include "tst_qturlloader.moc"
