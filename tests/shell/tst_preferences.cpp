#include "shell/mypreftoolbardelegate.h"
#include "shell/preferenceswindow.h"
#include "shell/qvbookmark.h"
#include "workflow/realprogram.h"

#include <QCheckBox>
#include <QComboBox>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QToolBar>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

/// The program with its preferences on the screen.
struct Preferences : RealProgram
{
    Preferences() { delegate.openPreferences(); }

    PreferencesWindow &prefs() const { return *delegate.preferencesWindow(); }

    QStackedWidget &tabView() const { return *prefs().toolbarDelegate()->myTabView(); }

    QToolBar &toolbar() const { return *prefs().toolbarDelegate()->toolbar(); }

    /// The control of that class and title, or accessible name.
    template <typename Control> Control *control(const QString &title) const
    {
        const auto controls = prefs().findChildren<Control *>();
        for (Control *each : controls) {
            if (each->property("text").toString().remove(u'&') == title
                || each->accessibleName() == title) {
                return each;
            }
        }
        return nullptr;
    }

    QComboBox *startupAction() const { return tabView().widget(0)->findChild<QComboBox *>(); }

    bool shows(const QString &text) const
    {
        const auto labels = prefs().findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(), [&](const QLabel *label) {
            return label->isVisible() && label->text() == text;
        });
    }
};

} // namespace

class TestPreferences : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachPanelHasItsTitleAndHeightUnderTheSameTop();
    void aNumberBeyondThePanelsChangesNothing();
    void closedItComesBackOnItsPanel();
    void aCheckBoxIsItsSetting_data();
    void aCheckBoxIsItsSetting();
    void aNumberIsItsSetting_data();
    void aNumberIsItsSetting();
    void theDefaultsAreRestoredWhenTheQuestionIsAgreedTo();
    void theStartupActionIsChosenInAPopup();
    void fontsAreListedInPlainOrder();
    void aFontThatIsNotListedStaysAndIsShown();
    void theStartupDocumentIsChosenAndShown();
};

void TestPreferences::eachPanelHasItsTitleAndHeightUnderTheSameTop()
{
    const Preferences program;
    const std::pair<QString, int> panels[] = {
        {u"General"_s, 230}, {u"Edit"_s, 315}, {u"Advanced"_s, 160}, {u"Update"_s, 150}};
    const QList<QAction *> items = program.toolbar().actions();
    QCOMPARE(items.size(), 4);
    QCOMPARE(program.prefs().windowTitle(), u"General"_s);
    QCOMPARE(program.tabView().height(), 230);
    const NSWindow *window = program.delegate.prefWindow();
    QTRY_COMPARE(window->frame().height,
                 230 + program.prefs().toolbarDelegate()->ToolbarHeightForWindow(window));
    const NSRect first = program.delegate.prefWindow()->frame();
    for (int i : {1, 3, 2, 0}) {
        QTest::mouseClick(program.toolbar().widgetForAction(items[i]), Qt::LeftButton);
        const QWidget *panel = program.tabView().currentWidget();
        QCOMPARE(program.tabView().indexOf(panel), i);
        QCOMPARE(program.prefs().windowTitle(), panels[i].first);
        QVERIFY2(panel->minimumSizeHint().height() <= panels[i].second,
                 qPrintable(items[i]->text()));
        const NSRect frame = window->frame();
        QCOMPARE(frame.y + frame.height, first.y + first.height);
        QCOMPARE(frame.height - first.height, panels[i].second - 230);
        QTRY_COMPARE(program.tabView().height(), panels[i].second);
        QVERIFY(items[i]->isChecked());
    }
}

void TestPreferences::aNumberBeyondThePanelsChangesNothing()
{
    Preferences program;
    program.delegate.openPreferencesAtTab(1);
    for (const qint32 panel : {4, -1}) {
        program.prefs().close();
        program.delegate.openPreferencesAtTab(panel);
        QVERIFY(program.prefs().isVisible());
        QCOMPARE(program.tabView().currentIndex(), 1);
    }
    program.delegate.openPreferencesAtSenderTagTab((qint64(1) << 32) + 3);
    QCOMPARE(program.tabView().currentIndex(), 3);
}

void TestPreferences::closedItComesBackOnItsPanel()
{
    Preferences program;
    const PreferencesWindow *window = &program.prefs();
    program.delegate.openPreferencesAtTab(2);
    QVERIFY(QTest::qWaitForWindowActive(&program.prefs()));
    QTest::keyClick(&program.prefs(), Qt::Key_Escape);
    QVERIFY(!program.prefs().isVisible());
    program.documents.newDocument();
    program.menuItem(u"Preferences…"_s)->trigger();
    QVERIFY(program.prefs().isVisible());
    QCOMPARE(&program.prefs(), window);
    QCOMPARE(program.tabView().currentIndex(), 2);
}

void TestPreferences::aCheckBoxIsItsSetting_data()
{
    QTest::addColumn<QString>("title");
    QTest::newRow("notifyUpdate") << u"Tell me when a newer release is available"_s;
    QTest::newRow("PublicNoteFontBold") << u"Bold"_s;
    QTest::newRow("PublicNoteFontItalic") << u"Italic"_s;
    QTest::newRow("StartWithRuler") << u"Show the ruler"_s;
    QTest::newRow("StartWithSpelling") << u"Check spelling while typing"_s;
    QTest::newRow("autolocBackgroundEnabled")
        << u"Lock open documents when Quorvane is in the background"_s;
}

void TestPreferences::aCheckBoxIsItsSetting()
{
    QFETCH(QString, title);
    const QLatin1StringView key(QTest::currentDataTag());
    Preferences program;
    auto *box = program.control<QCheckBox>(title);
    QVERIFY(box);
    const bool registered = program.defaults.boolForKey(key);
    QCOMPARE(box->isChecked(), registered);
    QTest::keyClick(box, Qt::Key_Space);
    QCOMPARE(program.defaults.boolForKey(key), !registered);
    program.defaults.setObject(key, registered);
    QCOMPARE(box->isChecked(), registered);
}

void TestPreferences::aNumberIsItsSetting_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("registered");
    QTest::newRow("StartupFontSize") << u"Font size of new documents"_s << 12.0;
    QTest::newRow("PublicNoteFontSize") << u"Font size of the public note"_s << 12.0;
    QTest::newRow("autolocBackgroundInterval") << u"Delay of the automatic lock"_s << 120.0;
}

void TestPreferences::aNumberIsItsSetting()
{
    QFETCH(QString, name);
    QFETCH(double, registered);
    const QLatin1StringView key(QTest::currentDataTag());
    Preferences program;
    program.defaults.setObject(settings::autolocBackgroundEnabled.name, true);
    auto *box = program.control<QAbstractSpinBox>(name);
    QVERIFY(box);
    QCOMPARE(box->property("value").toDouble(), registered);
    box->selectAll();
    QTest::keyClicks(box, u"36"_s);
    QCOMPARE(program.defaults.doubleForKey(key), registered); // not while it is being typed
    QTest::keyClick(box, Qt::Key_Return);
    QCOMPARE(program.defaults.doubleForKey(key), 36.0);
    program.defaults.setObject(key, 1); // less than can be shown
    QCOMPARE(program.defaults.doubleForKey(key), 1.0);
    QVERIFY(box->property("value").toDouble() > 1.0);
}

void TestPreferences::theDefaultsAreRestoredWhenTheQuestionIsAgreedTo()
{
    Preferences program;
    const QVariantMap registered = settings::registeredDefaults();
    const auto isRegistered = [&](const QString &key) {
        return program.defaults.objectForKey(QLatin1StringView(key.toLatin1())) == registered[key];
    };
    const QStringList keys = registered.keys();
    for (const QString &key : keys) {
        program.defaults.setObject(QLatin1StringView(key.toLatin1()), u"other"_s);
    }
    program.defaults.setObject(settings::startupSelectedDocBookmark, QByteArray("kept"));
    for (const QString &answer : {u"Cancel"_s, u"Restore"_s}) {
        QTest::keyClick(program.control<QPushButton>(u"Restore Defaults…"_s), Qt::Key_Return);
        QVERIFY(QTest::qWaitFor([&] { return RealProgram::press(answer); }));
        QCOMPARE(std::count_if(keys.begin(), keys.end(), isRegistered),
                 answer == "Restore"_L1 ? keys.size() : 0);
    }
    QCOMPARE(program.startupAction()->currentIndex(), 0);
    QCOMPARE(program.defaults.objectForKey(settings::startupSelectedDocBookmark),
             QVariant(QByteArray("kept")));
}

void TestPreferences::theStartupActionIsChosenInAPopup()
{
    Preferences program;
    QComboBox *action = program.startupAction();
    const auto button = [&program](const QString &title) {
        return program.control<QPushButton>(title)->isEnabled();
    };
    QCOMPARE(action->currentIndex(), 0);
    QVERIFY(!button(u"Select…"_s) && !button(u"Test Open"_s));
    QTest::keyClick(action, Qt::Key_End);
    QCOMPARE(action->currentText(), u"Open Selected Document"_s);
    QCOMPARE(program.defaults.value(settings::startupActionTag), 3);
    QVERIFY(button(u"Select…"_s) && button(u"Test Open"_s));
    program.defaults.setObject(settings::startupActionTag.name, 7);
    QCOMPARE(action->currentIndex(), -1);
    QCOMPARE(program.defaults.value(settings::startupActionTag), 7);
}

void TestPreferences::fontsAreListedInPlainOrder()
{
    Preferences program;
    program.delegate.openPreferencesAtTab(1);
    const auto [ofDocuments, ofNote] = program.prefs().fontPopups();
    QVERIFY(ofDocuments->count() > 0);
    QCOMPARE(ofNote->count(), ofDocuments->count());
    for (int i = 1; i < ofDocuments->count(); ++i) {
        QVERIFY(ofDocuments->itemText(i - 1) < ofDocuments->itemText(i));
    }
    const QString last = ofDocuments->itemText(ofDocuments->count() - 1);
    QTest::keyClick(ofDocuments, Qt::Key_End);
    QCOMPARE(program.defaults.value(settings::startupFontFamily), last);
    QCOMPARE(program.defaults.value(settings::publicNoteFontFamily), u"Helvetica"_s);
    program.defaults.setObject(settings::publicNoteFontFamily.name, last);
    QCOMPARE(ofNote->currentText(), last);
}

void TestPreferences::aFontThatIsNotListedStaysAndIsShown()
{
    RealProgram program;
    program.defaults.setObject(settings::startupFontFamily.name, u"No Such Font"_s);
    program.delegate.openPreferences();
    const QComboBox *popup = program.delegate.preferencesWindow()->fontPopups().ofDocuments;
    QCOMPARE(popup->currentIndex(), -1);
    QCOMPARE(popup->placeholderText(), u"No Such Font"_s);
    QCOMPARE(program.defaults.value(settings::startupFontFamily), u"No Such Font"_s);
}

void TestPreferences::theStartupDocumentIsChosenAndShown()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"diary.quorvane"_s);
    QVERIFY(QFile(path).open(QIODevice::WriteOnly));
    Preferences program;
    program.defaults.setObject(settings::startupActionTag.name, 3);
    QVERIFY(program.shows(u"No document selected"_s));
    const auto press = [&program](const QString &title) {
        QTest::keyClick(program.control<QPushButton>(title), Qt::Key_Return);
    };
    press(u"Select…"_s);
    QCOMPARE(program.panels.opened.last().allowedFileTypes, QStringList(u"quorvane"_s));
    QCOMPARE(program.panels.opened.last().prompt, u"Select"_s);
    QVERIFY(program.panels.answerSheet(std::nullopt));
    QVERIFY(program.shows(u"No document selected"_s));
    press(u"Select…"_s);
    QVERIFY(QTest::qWaitFor([&] { return program.panels.answerSheet(path); }));
    QVERIFY(program.shows(u"diary.quorvane"_s));
    press(u"Show in Files"_s);
    QCOMPARE(program.workspace.selectedFiles, QStringList(path));
    press(u"Clear"_s);
    QVERIFY(program.shows(u"No document selected"_s));
    QVERIFY(program.shows(u"Please select a file or change startup option"_s));
    QVERIFY(!program.control<QPushButton>(u"Test Open"_s)->isEnabled());
}

QTEST_MAIN(TestPreferences)
#include "tst_preferences.moc"
