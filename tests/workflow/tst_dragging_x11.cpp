#include "editor/placedattachment.h"
#include "editor/textcommands.h"
#include "richtext/flatrtfd.h"
#include "workflow/realprogram.h"

#include <QBuffer>
#include <QDir>
#include <QProcess>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QThread>

#include <atomic>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString password = u"correct horse"_s;
const QString path = u"/documents/letter.quorvane"_s;
const QString object(QChar::ObjectReplacementCharacter);
constexpr int patience = 20'000;

/// How often something was dragged over a widget.
class Moves final : public QObject
{
public:
    explicit Moves(QWidget &widget) { widget.installEventFilter(this); }

    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::DragMove ? 1 : 0;
        return false;
    }

    std::atomic<int> count = 0;
};

/// The mouse, and another program to drag from and to. It lives in a thread of its own: while the
/// program drags, it comes back to nobody.
class Hand
{
public:
    explicit Hand(const QStringList &arguments = {})
    {
        m_partner.start(QStringLiteral(DRAG_PARTNER), arguments);
        const QList<QByteArray> words = line("ready").split(' ');
        partner = QPoint(words.value(1).toInt(), words.value(2).toInt());
    }

    ~Hand()
    {
        m_partner.kill();
        m_partner.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(Hand)

    static void go(const QPoint &to)
    {
        x({u"mousemove"_s, QString::number(to.x()), QString::number(to.y())});
    }

    static void press() { x({u"mousedown"_s, u"1"_s}); }

    static void release() { x({u"mouseup"_s, u"1"_s}); }

    /// Takes hold and begins to drag.
    static void take(const QPoint &from)
    {
        go(from);
        press();
        for (int step = 1; step <= 4; ++step) {
            go(from + QPoint(8 * step, 0));
        }
    }

    /// Moves about there until \a isTaken: one that is asked where the mouse is answers by the time
    /// it is asked again.
    template <typename Taken> static void hover(const QPoint &to, const Taken &isTaken)
    {
        for (int step = 0; step < 300 && !isTaken(); ++step) {
            go(to + QPoint(step % 5, 0));
        }
    }

    void hoverOverPartner()
    {
        int seen = 0;
        hover(partner, [&] {
            m_partner.waitForReadyRead(20);
            while (m_partner.canReadLine()) {
                seen += m_partner.readLine().startsWith("over") ? 1 : 0;
            }
            return seen > 2;
        });
    }

    /// What the other program was given, by format, or "left" where it was not.
    QHash<QByteArray, QByteArray> given()
    {
        QHash<QByteArray, QByteArray> found;
        for (QByteArray next = line({}); !next.isEmpty() && next != "done"; next = line({})) {
            const QList<QByteArray> words = next.split(' ');
            found.insert(words.value(0), QByteArray::fromBase64(words.value(1)));
            if (next == "left") {
                break;
            }
        }
        return found;
    }

    /// The next line with that beginning; empty where none comes.
    QByteArray line(const QByteArray &beginning)
    {
        while (m_partner.canReadLine() || m_partner.waitForReadyRead(patience)) {
            if (m_partner.canReadLine()) {
                QByteArray next = m_partner.readLine().trimmed();
                if (next.startsWith(beginning)) {
                    return next;
                }
            }
        }
        return {};
    }

    QPoint partner;

private:
    static void x(const QStringList &words)
    {
        QProcess process;
        process.start(u"xdotool"_s, words);
        process.waitForFinished(patience);
    }

    QProcess m_partner;
};

/// Does that in a thread of its own, while the program goes on.
template <typename Work> bool beside(const Work &work)
{
    const std::unique_ptr<QThread> thread(QThread::create(work));
    thread->start();
    return QTest::qWaitFor([&] { return thread->isFinished(); }, 3 * patience);
}

struct Opened
{
    explicit Opened(const QByteArray &body)
    {
        open(body);
        moves = std::make_unique<Moves>(*editor().viewport());
        isReady = QTest::qWaitFor([this] { return !editor().isContentHidden(); })
            && QTest::qWaitForWindowActive(&program.window());
    }

    void open(const QByteArray &body)
    {
        program.runtimePath = runtime.path();
        program.files.files.insert(path, program.fileOf(body, password));
        program.documents.openDocumentWithContentsOfURL(path);
        const QWidget &page = program.window().lockedPage();
        RealProgram::type(page, u"Master Password"_s, password);
        QTest::keyClick(RealProgram::field(page, u"Master Password"_s), Qt::Key_Return);
        editor().moveCursor(QTextCursor::End);
    }

    TextEditor &editor() const { return program.editor(); }

    QPoint onScreen(const QPointF &place) const
    {
        return editor().viewport()->mapToGlobal(place.toPoint());
    }

    QPoint placeOfCharacter(int position) const
    {
        QTextCursor cursor(editor().document());
        cursor.setPosition(position);
        return onScreen(editor().cursorRect(cursor).center());
    }

    bool insert(TextCommand command, const QString &name, const QByteArray &bytes)
    {
        program.files.files.insert(u"/home/"_s + name, bytes);
        program.window().commands().validate();
        program.window().commands().action(command).trigger();
        return QTest::qWaitFor([&] { return program.panels.answerSheet(u"/home/"_s + name); })
            && QTest::qWaitFor([&] { return editor().toPlainText().contains(object); });
    }

    QTemporaryDir runtime;
    RealProgram program;
    std::unique_ptr<Moves> moves;
    bool isReady = false;
};

QByteArray png()
{
    QImage image(120, 80, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return image.save(&buffer, "PNG") ? bytes : QByteArray();
}

} // namespace

/// Drags between the program and another one, with a real mouse.
class TestDragging : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anotherProgramGetsTheVeryFile_data();
    void anotherProgramGetsTheVeryFile();
    void aFileOfAnotherProgramStandsWhereItIsDropped();
    void draggedWordsMoveInOneStep();
};

void TestDragging::anotherProgramGetsTheVeryFile_data()
{
    QTest::addColumn<TextCommand>("command");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isLocked"); // while it is dragged
    QTest::newRow("a file") << TextCommand::InsertFile << QByteArray("a\0\xff", 3) << false;
    QTest::newRow("a picture, also as one") << TextCommand::InsertPicture << png() << false;
    QTest::newRow("nothing after a lock") << TextCommand::InsertPicture << png() << true;
}

void TestDragging::anotherProgramGetsTheVeryFile()
{
    QFETCH(TextCommand, command);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isLocked);
    Opened opened("text ");
    QVERIFY(opened.isReady);
    QVERIFY(opened.insert(command, u"a.bin"_s, bytes));
    const auto attachment = attachmentAt(*opened.editor().document(), 5);
    QVERIFY(attachment);
    const QPoint from = opened.onScreen(placeOf(opened.editor(), *attachment).center());
    QHash<QByteArray, QByteArray> given;
    QVERIFY(beside([&] {
        Hand hand;
        Hand::take(from);
        hand.hoverOverPartner();
        if (isLocked) {
            QMetaObject::invokeMethod(
                &opened.editor(), [&] { opened.program.document()->doLockDocument(); },
                Qt::BlockingQueuedConnection);
        }
        Hand::release();
        given = hand.given();
    }));
    const bool isPicture = command == TextCommand::InsertPicture && !isLocked;
    QCOMPARE(given.value("image/png"), isPicture ? bytes : QByteArray());
    QCOMPARE(given.value("file"), isLocked ? QByteArray() : bytes);
    QCOMPARE(given.value("text/rtf").isEmpty(), isLocked);
    QCOMPARE(given.contains("left"), isLocked);
    if (isLocked) {
        QVERIFY(opened.editor().isContentHidden());
        QCOMPARE(QDir(opened.runtime.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList());
    } else {
        QCOMPARE(opened.editor().toPlainText(), u"text "_s + object); // a copy, whatever it was
    }
}

void TestDragging::aFileOfAnotherProgramStandsWhereItIsDropped()
{
    Opened opened("one two");
    QVERIFY(opened.isReady);
    const QByteArray bytes("\0their bytes\xff", 13);
    opened.program.files.files.insert(u"/home/theirs.bin"_s, bytes);
    const QPoint to = opened.placeOfCharacter(7) + QPoint(60, 0); // right of the text
    QSemaphore isThere;
    connect(&opened.editor(), &QTextEdit::textChanged, [&] { isThere.release(); });
    QVERIFY(beside([&] {
        Hand hand({u"/home/theirs.bin"_s});
        Hand::take(hand.partner);
        Hand::hover(to, [&] { return opened.moves->count > 4; });
        Hand::go(to);
        Hand::release();
        isThere.tryAcquire(1, patience); // until then the other program must be
    }));
    QCOMPARE(opened.editor().toPlainText(), u"one two"_s + object);
    const auto dropped = attachmentAt(*opened.editor().document(), 7);
    QVERIFY(dropped && entryOf(opened.editor(), *dropped));
    QCOMPARE(dropped->shownName(), u"theirs.bin"_s);
    QCOMPARE(entryOf(opened.editor(), *dropped)->bytes, bytes);
    QCOMPARE(opened.editor().undoNames().undoName(), u"Drag and Drop"_s);
    opened.editor().undo();
    QCOMPARE(opened.editor().toPlainText(), u"one two"_s);
}

void TestDragging::draggedWordsMoveInOneStep()
{
    Opened opened("one two three");
    QVERIFY(opened.isReady);
    QTextCursor word(opened.editor().document());
    word.setPosition(8);
    word.setPosition(13, QTextCursor::KeepAnchor);
    const QPoint from = (opened.placeOfCharacter(8) + opened.placeOfCharacter(13)) / 2;
    const QPoint to = opened.placeOfCharacter(0) - QPoint(4, 0);
    opened.editor().setTextCursor(word);
    QVERIFY(beside([&] {
        Hand::take(from);
        Hand::hover(to, [&] { return opened.moves->count > 4; });
        Hand::go(to);
        Hand::release();
    }));
    QTRY_COMPARE(opened.editor().toPlainText(), u"threeone two "_s);
    QCOMPARE(opened.editor().undoNames().undoName(), u"Drag and Drop"_s);
    opened.editor().undo();
    QCOMPARE(opened.editor().toPlainText(), u"one two three"_s);
    QVERIFY(!opened.editor().document()->isUndoAvailable());
}

QTEST_MAIN(TestDragging)
#include "tst_dragging_x11.moc"
