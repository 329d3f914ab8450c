#include "editor/formattoolbar.h"
#include "shell/aboutwindow.h"
#include "workflow/realprogram.h"

#include <QClipboard>
#include <QComboBox>
#include <QMenu>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString password = u"correct horse"_s;
const QStringList bar {u"Quorvane"_s, u"File"_s, u"Edit"_s,   u"Insert"_s, u"Format"_s,
                       u"Table"_s,    u"View"_s, u"Window"_s, u"Help"_s};

QStringList titlesOf(const QWidget &menu)
{
    QStringList titles;
    const auto actions = menu.actions();
    for (const QAction *action : actions) {
        titles << action->text().remove(u'&') + (action->isChecked() ? u" ✓"_s : u""_s);
    }
    titles.removeAll(QString());
    return titles;
}

/// A program with documents of that name in two folders; the last is unlocked.
struct Opened : RealProgram
{
    explicit Opened(int count = 1)
    {
        const QStringList paths {u"/a/letter.quorvane"_s, u"/b/letter.quorvane"_s};
        for (const QString &path : paths.last(count)) {
            files.files.insert(path, savedFile());
            documents.openDocumentWithContentsOfURL(path);
        }
        unlocks = RealProgram::type(window().lockedPage(), u"Master Password"_s, password);
        QTest::keyClick(RealProgram::field(window().lockedPage(), u"Master Password"_s),
                        Qt::Key_Return);
        unlocks = unlocks && !document()->isEncrypted();
    }

    static QByteArray savedFile()
    {
        RealProgram maker;
        maker.documents.newDocument();
        maker.document()->setPlainPassword(password);
        maker.document()->setMyTextViewData("some words"_ba);
        return maker.document()->dataOfType().value_or(QByteArray());
    }

    bool unlocks = false;
};

} // namespace

class TestMenus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyWindowHasTheSameBar();
    void whatIsSaidOfAnItemLongAgoDoesNotCount();
    void whatASheetForbidsComesBackBehindIt();
    void theEditMenuActsWhereTheKeyboardIs();
    void aLockedWindowKeepsItsToolbarAndSize();
    void theWindowMenuListsAllDocuments();
    void recentDocumentsAreOfferedAndForgotten();
    void noTwoItemsOfAMenuHaveOneKey();
    void theVendorIsInTheHelpMenu_data();
    void theVendorIsInTheHelpMenu();
    void theApplicationMenuLeadsToTheProgramsWindows();
};

void TestMenus::everyWindowHasTheSameBar()
{
    Opened program;
    QVERIFY(program.unlocks);
    QCOMPARE(titlesOf(*program.window().menuBar()), bar);
    program.document()->close();
    program.startWindow.begin();
    QCOMPARE(titlesOf(*program.startWindow.window()->menuBar()), bar);
    const QStringList enabled {u"New"_s,   u"Open…"_s,    u"Quit Quorvane"_s,
                               u"Close"_s, u"Minimize"_s, u"Maximize"_s};
    for (const QString &title : enabled) {
        QVERIFY2(RealProgram::menuItem(*program.startWindow.window(), title)->isEnabled(),
                 qPrintable(title));
    }
    const QStringList disabled {
        u"Save"_s,  u"Lock Document…"_s, u"Import"_s,      u"Export"_s,
        u"Paste"_s, u"Bold"_s,           u"Full Screen"_s, u"Bring All to Front"_s};
    for (const QString &title : disabled) {
        QVERIFY2(!RealProgram::menuItem(*program.startWindow.window(), title)->isEnabled(),
                 qPrintable(title));
    }
}

void TestMenus::whatIsSaidOfAnItemLongAgoDoesNotCount()
{
    Opened program;
    QVERIFY(program.unlocks);
    // Disabled in the past, possible now: the shortcut works, though no menu was opened.
    program.menuItem(u"Lock Document…"_s)->setEnabled(false);
    QTest::keyClick(program.window().windowHandle(), Qt::Key_L, Qt::ControlModifier);
    QTRY_VERIFY(RealProgram::dialogText().contains(u"Lock Document back"_s));
    // Behind a sheet only assistive programs get at an item.
    program.menuItem(u"Save"_s)->trigger();
    QCOMPARE(program.files.replaces, 0);
    QVERIFY(RealProgram::press(u"OK"_s));
    QTRY_VERIFY(program.document()->isEncrypted());
    QTRY_VERIFY(!RealProgram::dialog());
    // Enabled in the past, impossible now.
    for (const QString &title : {u"Save"_s, u"Lock Document…"_s, u"Document Password…"_s,
                                 u"Select All"_s, u"Hide Toolbar"_s, u"Full Screen"_s}) {
        QAction *item = program.menuItem(title);
        item->setEnabled(true);
        item->trigger();
        QVERIFY2(!item->isEnabled(), qPrintable(title));
    }
    QCoreApplication::processEvents();
    QVERIFY(!RealProgram::dialog());
    QCOMPARE(program.files.replaces, 0);
    QVERIFY(!program.window().modernToolbar().isVisible() && !program.window().isFullScreen());
}

void TestMenus::whatASheetForbidsComesBackBehindIt()
{
    Opened program;
    QVERIFY(program.unlocks);
    const auto *size = program.window().formatToolbar().findChild<QComboBox *>(u"fontSize"_s);
    const auto isOffered = [&](bool offered) {
        return QTest::qWaitFor([&] {
            return program.menuItem(u"Bold"_s)->isEnabled() == offered
                && program.menuItem(u"Lock Document…"_s)->isEnabled() == offered
                && size->isEnabled() == offered;
        });
    };
    QVERIFY(isOffered(true));
    QTest::keyClick(program.window().windowHandle(), Qt::Key_K, Qt::ControlModifier);
    QVERIFY(QTest::qWaitFor([] { return RealProgram::dialog() != nullptr; }));
    QVERIFY(isOffered(false));
    QTest::keyClick(RealProgram::dialog(), Qt::Key_Escape);
    QVERIFY(isOffered(true));
}

void TestMenus::theEditMenuActsWhereTheKeyboardIs()
{
    Opened program;
    QVERIFY(program.unlocks);
    const auto choose = [&program](const QString &menu, const QString &item) {
        Q_EMIT RealProgram::menuItem(program.window(), menu)->menu()->aboutToShow();
        program.menuItem(item)->trigger();
    };
    const auto isOffered = [&program](const QString &item) {
        Q_EMIT RealProgram::menuItem(program.window(), u"Edit"_s)->menu()->aboutToShow();
        return program.menuItem(item)->isEnabled();
    };
    program.editor().setFocus();
    QGuiApplication::clipboard()->clear();
    QVERIFY(!isOffered(u"Paste"_s) && !isOffered(u"Paste and Match Style"_s));
    choose(u"Edit"_s, u"Select All"_s);
    choose(u"Edit"_s, u"Copy"_s);
    QVERIFY(isOffered(u"Paste"_s) && isOffered(u"Paste and Match Style"_s));
    choose(u"Edit"_s, u"Delete"_s);
    QCOMPARE(program.editor().toPlainText(), u""_s);
    choose(u"Edit"_s, u"Undo"_s);
    QCOMPARE(program.editor().toPlainText(), u"some words"_s);
    program.document()->doLockDocument();
    QGuiApplication::clipboard()->setText(password);
    choose(u"Edit"_s, u"Paste"_s);
    QLineEdit *field = RealProgram::field(program.window(), u"Master Password"_s);
    QCOMPARE(field->text(), password);
    QGuiApplication::clipboard()->clear();
    choose(u"Edit"_s, u"Select All"_s);
    choose(u"Edit"_s, u"Cut"_s);
    QCOMPARE(field->text(), password);
    QVERIFY(QGuiApplication::clipboard()->text().isEmpty());
    choose(u"Edit"_s, u"Delete"_s);
    QVERIFY(field->text().isEmpty());
}

void TestMenus::aLockedWindowKeepsItsToolbarAndSize()
{
    Opened program;
    QVERIFY(program.unlocks);
    Q_EMIT program.menuItem(u"View"_s)->menu()->aboutToShow();
    QAction *toolbar = program.menuItem(u"Hide Toolbar"_s);
    toolbar->trigger();
    QVERIFY(!program.window().modernToolbar().isVisible());
    QCOMPARE(toolbar->text(), u"Show &Toolbar"_s);
    toolbar->trigger();
    QVERIFY(program.window().modernToolbar().isVisible());
    program.menuItem(u"Full Screen"_s)->trigger();
    QVERIFY(program.window().isFullScreen() && program.menuItem(u"Full Screen"_s)->isChecked());
    program.document()->doLockDocument();
    QTRY_VERIFY(!program.window().isFullScreen());
    for (const QString &title : {u"Hide Toolbar"_s, u"Full Screen"_s}) {
        QVERIFY2(!program.menuItem(title)->isEnabled(), qPrintable(title));
    }
}

void TestMenus::theWindowMenuListsAllDocuments()
{
    Opened program(2);
    QVERIFY(program.unlocks);
    program.documents.newDocument();
    QTRY_VERIFY(RealProgram::dialog());
    program.documents.documents()[1]->updateChangeCount(NSDocumentChangeType::Done);
    QMenu *menu = program.menuItem(u"Window"_s)->menu();
    for (int i = 0; i < 2; ++i) { // listed anew each time
        Q_EMIT menu->aboutToShow();
        QCOMPARE(titlesOf(*menu).sliced(2),
                 QStringList({u"Bring All to Front"_s, u"letter — /a"_s, u"letter* — /b"_s,
                              u"Untitled ✓"_s}));
    }
    program.documents.documents()[1]->updateChangeCount(NSDocumentChangeType::Cleared);
    program.menuItem(u"letter — /a"_s)->trigger();
    QTRY_COMPARE(QApplication::activeWindow()->windowTitle(), u"letter[*]"_s);
}

void TestMenus::recentDocumentsAreOfferedAndForgotten()
{
    Opened program;
    program.recents.listed = {u"/b/letter.quorvane"_s, u"/c/R&D.quorvane"_s, u"/c/gone.quorvane"_s};
    program.recents.missing = {u"/c/gone.quorvane"_s};
    program.files.files.insert(u"/c/R&D.quorvane"_s, Opened::savedFile());
    QMenu *menu = program.menuItem(u"Open Recent"_s)->menu();
    const auto entry = [menu](qsizetype index) {
        Q_EMIT menu->aboutToShow();
        return menu->actions().at(index);
    };
    QCOMPARE(entry(1)->text(), u"R&&D — /c"_s);
    entry(1)->trigger();
    QCOMPARE(program.document()->displayName(), u"R&D"_s);
    entry(2)->trigger();
    QTRY_VERIFY(RealProgram::dialogText().contains(u"“gone” could not be found."_s)
                && RealProgram::dialogText().contains(u"/c/gone.quorvane"_s));
    QVERIFY(RealProgram::press(u"Remove from Recent Documents"_s));
    QTRY_COMPARE(program.recents.listed.size(), 2);
    entry(3)->trigger();
    QVERIFY(program.recents.listed.isEmpty());
    QCOMPARE(entry(0)->text(), u"No Recent Documents"_s);
    QVERIFY(!entry(0)->isEnabled() && !entry(2)->isEnabled());
}

void TestMenus::noTwoItemsOfAMenuHaveOneKey()
{
    Opened program;
    QVERIFY(program.unlocks);
    QWidgetList menus {program.window().menuBar()};
    for (auto *menu : program.window().menuBar()->findChildren<QMenu *>()) {
        Q_EMIT menu->aboutToShow();
        menus << menu;
    }
    QStringList doubles;
    for (const QWidget *menu : std::as_const(menus)) {
        QMap<QKeySequence, QString> keys;
        const auto actions = menu->actions();
        for (const QAction *action : actions) {
            const QKeySequence key = QKeySequence::mnemonic(action->text());
            if (!key.isEmpty() && keys.contains(key)) {
                doubles << keys.value(key) << action->text();
            }
            keys.insert(key, action->text());
        }
    }
    QCOMPARE(doubles, QStringList());
    QVERIFY(menus.size() > 15);
}

void TestMenus::theVendorIsInTheHelpMenu_data()
{
    QTest::addColumn<QString>("opened");
    QTest::newRow("Quorvane Home Page") << u"http://www.orbelt.example/osx/quorvane"_s;
    QTest::newRow("Orbelt - Mirando Web Site") << u"http://www.orbelt.example/"_s;
    QTest::newRow("Follow Us on Twitter") << u"http://twitter.example/orbelt"_s;
    QTest::newRow("Mail to Support…") << u"mailto:support@orbelt.example"_s;
}

void TestMenus::theVendorIsInTheHelpMenu()
{
    Opened program;
    program.menuItem(QString::fromUtf8(QTest::currentDataTag()))->trigger();
    QCOMPARE(program.workspace.opened.size(), 1);
    QTEST(program.workspace.opened[0].toString(QUrl::RemoveQuery), "opened");
}

void TestMenus::theApplicationMenuLeadsToTheProgramsWindows()
{
    Opened program;
    const QMenu *menu = program.window().menuBar()->actions().first()->menu();
    QCOMPARE(titlesOf(*menu),
             QStringList({u"About Quorvane"_s, u"Software Update…"_s, u"Preferences…"_s,
                          u"Quit Quorvane"_s}));
    program.menuItem(u"About Quorvane"_s)->trigger();
    const AboutWindow *about = program.delegate.aboutWindow();
    QVERIFY(about && about->isVisible());
    QCOMPARE(about->windowTitle().remove(u"[*]"_s), u"About Quorvane"_s);
    const std::pair<const char *, QVariant> properties[] = {
        {"appName", u"Quorvane"_s},
        {"vendorName", u"Orbelt - Mirando"_s},
        {"releaseString", u"2.6.1"_s},
        {"buildString", u"2.6.1"_s},
        {"appStantment", u"The encryption visual editor for Mac"_s},
        {"hasUserGuide", true},
    };
    for (const auto &[name, value] : properties) {
        QCOMPARE(about->property(name), value);
    }
    program.menuItem(u"Software Update…"_s)->trigger();
    QTRY_VERIFY(RealProgram::dialogText().contains(u"was not able to connect"_s));
    QVERIFY(RealProgram::press(u"OK"_s));
}

QTEST_MAIN(TestMenus)
#include "tst_menus.moc"
