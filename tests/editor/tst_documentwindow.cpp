#include "editor/characterstyles.h"
#include "editor/formattoolbar.h"
#include "editor/lockedpage.h"
#include "editor/passwordsheet.h"
#include "editor/statusbar.h"
#include "support/writtentext.h"

#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

template <typename Widget> Widget *named(const QWidget &parent, const QString &name)
{
    for (Widget *widget : parent.findChildren<Widget *>()) {
        if (widget->accessibleName() == name) {
            return widget;
        }
    }
    return nullptr;
}

QPushButton *button(const QWidget &parent, const QString &text)
{
    for (QPushButton *found : parent.findChildren<QPushButton *>()) {
        if (found->text() == text) {
            return found;
        }
    }
    return nullptr;
}

} // namespace

class TestDocumentWindow : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<DocumentWindow> m_window;
    std::unique_ptr<CharacterStyles> m_styles;

    void select(int from, int to) { selectText(m_window->editor(), from, to); }

private slots:

    void init()
    {
        m_styles.reset();
        m_window = std::make_unique<DocumentWindow>();
        TextCommands &commands = m_window->commands();
        m_styles = std::make_unique<CharacterStyles>(m_window->editor(), commands);
        for (const TextCommand command :
             {TextCommand::Bold, TextCommand::Italic, TextCommand::Underline}) {
            m_window->addAction(&commands.action(command)); // as a menu would
        }
        commands.setGate([this] { return !m_window->showsLockedAppearance(); });
        commands.validate();
    }

    void theLockedWindowShowsNothingOfTheText()
    {
        showText(m_window->editor(), u"secret"_s);
        m_window->show();
        m_window->showLockedAppearance();
        m_window->resize(m_window->minimumSize());
        QVERIFY(!m_window->editor().isVisible());
        QCOMPARE(m_window->editor().toPlainText(), QString());
        QVERIFY(!m_window->commands().action(TextCommand::Bold).isEnabled());
        QCOMPARE(m_window->size(), QSize(480, 320));
        const auto *field = named<QLineEdit>(*m_window, u"Master Password"_s);
        QTRY_VERIFY(field->hasFocus());
        QVERIFY(m_window->lockedPage().rect().contains(
            field->geometry().translated(field->parentWidget()->pos())));
        m_window->showEditorAppearance();
        QCOMPARE(m_window->editor().toPlainText(), u"secret"_s);
        QTRY_VERIFY(m_window->editor().hasFocus());
    }

    void theToolbarAnswersItsIntendedState()
    {
        NSToolbar &toolbar = m_window->modernToolbar();
        QVERIFY(toolbar.isVisible());
        toolbar.setVisible(false);
        QVERIFY(!toolbar.isVisible());
        m_window->show();
        QVERIFY(!m_window->formatToolbar().isVisible());
        QVERIFY(!m_window->createPopupMenu() || m_window->contextMenuPolicy() == Qt::NoContextMenu);
    }

    void shortcutsStyleTheSelectionInOneStepOfUndo_data()
    {
        QTest::addColumn<QKeySequence>("shortcut");
        QTest::addColumn<int>("property");
        QTest::newRow("Ctrl+B") << QKeySequence(u"Ctrl+B"_s) << int(QTextFormat::FontWeight);
        QTest::newRow("Ctrl+I") << QKeySequence(u"Ctrl+I"_s) << int(QTextFormat::FontItalic);
        QTest::newRow("Ctrl+U") << QKeySequence(u"Ctrl+U"_s)
                                << int(QTextFormat::TextUnderlineStyle);
    }

    void shortcutsStyleTheSelectionInOneStepOfUndo()
    {
        QFETCH(QKeySequence, shortcut);
        QFETCH(int, property);
        TextEditor &editor = m_window->editor();
        showText(editor, u"one two\nthree"_s);
        m_window->modernToolbar().setVisible(false); // they work all the same
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        editor.selectAll();
        QTest::keySequence(m_window.get(), shortcut);
        QTextCursor cursor(editor.content());
        for (const int position : {1, 9}) {
            cursor.setPosition(position);
            QVERIFY(cursor.charFormat().hasProperty(property));
        }
        editor.undo();
        for (const int position : {1, 9}) {
            cursor.setPosition(position);
            QVERIFY(!cursor.charFormat().hasProperty(property));
        }
    }

    void theStatusBarCutsNoWordAndTellsOfAReadOnlyText()
    {
        auto *bar = new StatusBar(m_window->editor(), m_window->commands());
        m_window->addBelowText(bar);
        showText(m_window->editor(), u"some words"_s);
        m_window->show();
        const auto labels = bar->findChildren<QLabel *>();
        const QStringList parts {u"2 words"_s, u"10 characters"_s, u"1 paragraph"_s};
        const auto tells = [&](qsizetype count) {
            return labels[0]->text() == parts.first(count).join(u"  ·  "_s);
        };
        QTRY_VERIFY(tells(3));
        const int whole = labels[0]->fontMetrics().horizontalAdvance(labels[0]->text());
        bar->setFixedWidth(bar->width() - labels[0]->width() + whole - 1);
        QTRY_VERIFY(tells(2));
        QCOMPARE(labels[0]->accessibleName(), parts.join(u", "_s));
        for (const bool readOnly : {true, false}) {
            m_window->setReadOnly(readOnly);
            QCOMPARE(labels[1]->isVisible(), readOnly);
        }
    }

    void aReadOnlyTextLeavesOnlyTheLockAction()
    {
        QAction lock(u"Lock"_s);
        m_window->formatToolbar().addLockAction(&lock);
        m_window->setReadOnly(true);
        QVERIFY(!m_window->commands().action(TextCommand::Italic).isEnabled());
        QVERIFY(m_window->formatToolbar().widgetForAction(&lock)->isEnabled());
        m_window->setReadOnly(false);
        QVERIFY(m_window->commands().action(TextCommand::Italic).isEnabled());
    }

    void theLockedPageSubmitsByReturnAndByButton()
    {
        LockedPage &page = m_window->lockedPage();
        const QSignalSpy submitted(&page, &LockedPage::passwordSubmitted);
        m_window->showLockedAppearance();
        m_window->show();
        auto *field = named<QLineEdit>(page, u"Master Password"_s);
        QCOMPARE(field->echoMode(), QLineEdit::Password);
        QTest::keyClicks(field, u"first"_s);
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(page.passwordField().stringValue(), u"first"_s);
        page.passwordField().setStringValue(u"second"_s);
        QTest::mouseClick(button(page, u"Unlock"_s), Qt::LeftButton);
        QCOMPARE(submitted.count(), 2);
        QCOMPARE(submitted[0][0].toString(), u"first"_s);
        QCOMPARE(submitted[1][0].toString(), u"second"_s);
    }

    // The thread is blocked right after: no event loop comes to paint it.
    void theProgressIsPaintedBeforeAnythingBlocks()
    {
        struct PaintCounter : QObject
        {
            int painted = 0;

            bool eventFilter(QObject *, QEvent *event) override
            {
                painted += event->type() == QEvent::Paint ? 1 : 0;
                return false;
            }
        } counter;

        m_window->showLockedAppearance();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        auto *bar = m_window->lockedPage().findChild<QProgressBar *>();
        bar->installEventFilter(&counter);
        m_window->lockedPage().progressIndicator().setHidden(false);
        m_window->lockedPage().progressIndicator().startAnimation();
        QVERIFY(bar->isVisible());
        QVERIFY(counter.painted > 0);
        m_window->lockedPage().progressIndicator().setHidden(true);
        QVERIFY(!bar->isVisible());
    }

    void theSheetTellsAndWaitsToBeEnded_data()
    {
        QTest::addColumn<PasswordSheet::Kind>("kind");
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QString>("accept");
        QTest::addColumn<QString>("decline");
        QTest::newRow("mandatory")
            << PasswordSheet::Kind::Mandatory << QStringList {u"Password"_s, u"Retype Password"_s}
            << u"Set Password"_s << u"Close Document"_s;
        QTest::newRow("change") << PasswordSheet::Kind::Change
                                << QStringList {u"Old Master Password"_s, u"New Password"_s,
                                                u"Retype New Password"_s}
                                << u"Change Password"_s << u"Cancel"_s;
        QTest::newRow("insert") << PasswordSheet::Kind::Insert
                                << QStringList {u"New Password"_s, u"Retype New Password"_s}
                                << u"Set Password"_s << u"Cancel"_s;
    }

    void theSheetTellsAndWaitsToBeEnded()
    {
        QFETCH(PasswordSheet::Kind, kind);
        QFETCH(QStringList, fields);
        QFETCH(QString, accept);
        QFETCH(QString, decline);
        m_window->show();
        PasswordSheet sheet(kind, m_window.get());
        const QSignalSpy confirmed(&sheet, &PasswordSheet::confirmed);
        const QSignalSpy declined(&sheet, &PasswordSheet::declined);
        QStringList edited;
        connect(&sheet, &PasswordSheet::previousEdited, this,
                [&](const QString &text) { edited += u"previous "_s + text; });
        connect(&sheet, &PasswordSheet::insertedEdited, this,
                [&](const QString &text) { edited += u"inserted "_s + text; });
        connect(&sheet, &PasswordSheet::retypeEdited, this,
                [&](const QString &text) { edited += u"retype "_s + text; });
        sheet.setInserted(u"kept"_s);
        QList<int> codes;
        sheet.beginSheet([&](int code) { codes += code; });
        QTRY_VERIFY(named<QLineEdit>(sheet, fields.first())->hasFocus());
        QVERIFY(edited.isEmpty());
        for (const QString &name : fields) {
            auto *field = named<QLineEdit>(sheet, name);
            QCOMPARE(field->echoMode(), QLineEdit::Password);
            QTest::keyClicks(field, u"x"_s);
        }
        QStringList expected {u"inserted keptx"_s, u"retype x"_s};
        if (kind == PasswordSheet::Kind::Change) {
            expected.prepend(u"previous x"_s);
        }
        QCOMPARE(edited, expected);

        QTest::keyClick(&sheet, Qt::Key_Return);
        QTest::mouseClick(button(sheet, accept), Qt::LeftButton);
        QCOMPARE(confirmed.count(), 2);
        QTest::keyClick(&sheet, Qt::Key_Escape);
        QTest::mouseClick(button(sheet, decline), Qt::LeftButton);
        sheet.close();
        QCOMPARE(declined.count(), 3);
        QVERIFY(sheet.isVisible());
        QVERIFY(codes.isEmpty());
        sheet.endSheet(PasswordSheet::declineTag);
        sheet.endSheet(PasswordSheet::acceptTag);
        QCOMPARE(codes, QList<int> {PasswordSheet::declineTag});
        QVERIFY(!sheet.isVisible());
    }

    void theSheetShowsThePasswordOnlyWhenAsked()
    {
        PasswordSheet sheet(PasswordSheet::Kind::Change, m_window.get());
        for (const bool clear : {true, false}) {
            sheet.setShowsClearPassword(clear);
            for (const QLineEdit *field : sheet.findChildren<QLineEdit *>()) {
                QCOMPARE(field->echoMode(), clear ? QLineEdit::Normal : QLineEdit::Password);
            }
        }
    }
};

QTEST_MAIN(TestDocumentWindow)
#include "tst_documentwindow.moc"
