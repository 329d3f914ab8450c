#include "editor/dateinsertion.h"
#include "editor/documentwindow.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"

#include <QMenu>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace quorvane;

class TestDateInsertion : public QObject
{
    Q_OBJECT

private slots:

    void theMenuShowsThePresentAndInsertsItInOneStep()
    {
        const QLocale locale;
        const QDateTime now(QDate(2026, 3, 7), QTime(9, 5, 2));
        DocumentWindow window;
        TextEditor &editor = window.editor();
        const DateInsertion dates(editor, window.commands(), [now] { return now; });
        QMenu menu;
        window.commands().attach(TextMenu::DateAndTime, menu);
        emit menu.aboutToShow();
        QStringList titles;
        for (const QAction *item : menu.actions()) {
            titles.append(item->text());
        }
        QCOMPARE(titles.first(), locale.toString(now.date(), QLocale::LongFormat));
        for (const QString &expected : {locale.toString(now.date(), QLocale::ShortFormat),
                                        u"2026-03-07"_s, u"2026-03-07 09:05"_s, u"07.03.2026"_s}) {
            QVERIFY2(titles.contains(expected), qPrintable(expected));
        }
        menu.actions().at(titles.indexOf(u"2026-03-07"_s))->trigger();
        QCOMPARE(editor.toPlainText(), u"2026-03-07"_s);
        QCOMPARE(editor.undoNames().undoName(), u"Insert Date"_s);
        editor.undo();
        QCOMPARE(editor.toPlainText(), QString());
        menu.actions().first()->trigger();
        window.setReadOnly(true);
        menu.actions().first()->trigger();
        QCOMPARE(editor.toPlainText(), titles.first());
        emit menu.aboutToShow();
        QVERIFY(!menu.actions().first()->isEnabled());
    }
};

QTEST_MAIN(TestDateInsertion)
#include "tst_dateinsertion.moc"
