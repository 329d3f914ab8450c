#include "workflow/realprogram.h"

#include <QDir>
#include <QListWidget>

using namespace quorvane;
using namespace Qt::StringLiterals;

class TestStartWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itIsThereWhileThereIsNoDocument();
    void closingItEndsTheProgram();
    void endingTheProgramDoesNotBringItBack();
    void itsButtonsLeadToADocument();
    void recentDocumentsAreListedWithTheirState();
    void recentDocumentsAreOpenedAndRemovedByKey();

private:
    static QListWidget *list(const RealProgram &program)
    {
        return program.startWindow.window()->findChild<QListWidget *>();
    }
};

void TestStartWindow::itIsThereWhileThereIsNoDocument()
{
    RealProgram program;
    program.documents.newDocument();
    program.startWindow.begin();
    QVERIFY(!program.startWindow.window());
    program.documents.newDocument();
    program.documents.documents()[0]->close();
    QCoreApplication::processEvents();
    QVERIFY(!program.startWindow.window());
    program.documents.documents()[0]->close();
    QTRY_VERIFY(program.startWindow.window() && program.startWindow.window()->isVisible());
    const QPointer<StartWindow> window(program.startWindow.window());
    program.documents.newDocument();
    QVERIFY(!program.startWindow.window() && !window->isVisible());
    QTRY_VERIFY(!window);
}

void TestStartWindow::closingItEndsTheProgram()
{
    RealProgram program;
    program.startWindow.begin();
    QVERIFY(program.startWindow.window()->close());
    QTRY_VERIFY(program.hasQuit);
}

void TestStartWindow::endingTheProgramDoesNotBringItBack()
{
    RealProgram program;
    program.documents.newDocument();
    program.startWindow.begin();
    program.menuItem(u"Quit Quorvane"_s)->trigger();
    QVERIFY(program.hasQuit && program.documents.documents().empty());
    QCoreApplication::processEvents();
    QVERIFY(!program.startWindow.window());
}

void TestStartWindow::itsButtonsLeadToADocument()
{
    RealProgram program;
    program.startWindow.begin();
    const auto buttons = program.startWindow.window()->findChildren<QPushButton *>();
    QTest::keyClick(buttons[1], Qt::Key_Space);
    QCOMPARE(program.panels.opened.size(), 1);
    QTest::keyClick(buttons[0], Qt::Key_Return);
    QVERIFY(program.document());
}

void TestStartWindow::recentDocumentsAreListedWithTheirState()
{
    RealProgram program;
    program.recents.listed = {u"/a/diary.quorvane"_s, QDir::homePath() + u"/b/gone.quorvane"_s};
    program.recents.missing = {program.recents.listed[1]};
    program.startWindow.begin();
    QListWidget *rows = list(program);
    QCOMPARE(rows->item(0)->data(Qt::AccessibleTextRole).toString(), u"diary, in /a"_s);
    QCOMPARE(rows->item(1)->data(Qt::AccessibleTextRole).toString(), u"gone, not found in ~/b"_s);
    program.recents.note(u"/a/new.quorvane"_s);
    QCOMPARE(rows->item(0)->text(), u"new"_s);
}

void TestStartWindow::recentDocumentsAreOpenedAndRemovedByKey()
{
    RealProgram program;
    program.recents.listed = {u"/a/unreadable.quorvane"_s, u"/a/gone.quorvane"_s,
                              u"/a/x.quorvane"_s};
    program.recents.missing = {u"/a/gone.quorvane"_s};
    program.startWindow.begin();
    QListWidget *rows = list(program);
    QTRY_VERIFY(rows->hasFocus());
    QTest::keyClick(rows, Qt::Key_Return);
    QTRY_VERIFY(
        RealProgram::dialogText().contains(u"“unreadable.quorvane” could not be opened."_s));
    QVERIFY(RealProgram::press(u"OK"_s));
    QTRY_VERIFY(!RealProgram::dialog());
    QTest::mouseClick(rows->viewport(), Qt::LeftButton, {},
                      rows->visualItemRect(rows->item(1)).center());
    QTRY_VERIFY(RealProgram::dialogText().contains(u"“gone” could not be found."_s));
    QVERIFY(RealProgram::press(u"Cancel"_s));
    QTest::keyClick(rows, Qt::Key_Delete);
    QCOMPARE(program.recents.listed,
             QStringList({u"/a/unreadable.quorvane"_s, u"/a/x.quorvane"_s}));
    const QRect last = rows->visualItemRect(rows->item(1));
    QTest::mouseClick(rows->viewport(), Qt::LeftButton, {}, {last.right() - 12, last.center().y()});
    QCOMPARE(program.recents.listed, {u"/a/unreadable.quorvane"_s});
}

QTEST_MAIN(TestStartWindow)
#include "tst_startwindow.moc"
