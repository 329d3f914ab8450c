#include "editor/characterstyles.h"
#include "editor/formattoolbar.h"
#include "support/writtentext.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QToolTip>
#include <QWheelEvent>

using namespace Qt::StringLiterals;
using namespace quorvane;

class TestFormatToolbar : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<DocumentWindow> m_window;
    std::unique_ptr<CharacterStyles> m_styles;
    std::unique_ptr<QAction> m_lock;
    QList<TextCommand> m_run;
    TextCommand m_style = TextCommand::BodyText;

    TextEditor &editor() { return m_window->editor(); }

    template <typename Widget> Widget *tool(const QString &name)
    {
        for (auto *widget : m_window->formatToolbar().findChildren<Widget *>()) {
            if (widget->accessibleName() == name) {
                return widget;
            }
        }
        return nullptr;
    }

    /// Commands of other tools, which this bar only shows.
    void define(std::initializer_list<TextCommand> commands)
    {
        for (const TextCommand command : commands) {
            m_window->commands().define(
                command,
                [this, command] {
                    m_run << command;
                    m_style = command;
                },
                [this, command] {
                    return MenuItemState {!editor().isReadOnly(), {}, m_style == command};
                });
        }
    }

    void select(int from, int to) { selectText(editor(), from, to); }

    bool isInBar(const QWidget *widget)
    {
        return widget->isVisible() && widget->window() == m_window.get();
    }

    void resizeTo(int width)
    {
        m_window->resize(width, 400);
        QTRY_COMPARE(m_window->formatToolbar().width(), width);
    }

    /// That can be used, as they stand in rows.
    static QList<QWidget *> shownTools(QWidget &window)
    {
        QList<QWidget *> tools;
        for (auto *widget : window.findChildren<QWidget *>()) {
            const bool isTool =
                qobject_cast<QToolButton *>(widget) || qobject_cast<QComboBox *>(widget);
            if (isTool && widget->isVisible() && widget->isEnabled()
                && widget->window() == &window) {
                tools << widget;
            }
        }
        const auto place = [&window](const QWidget *tool) {
            constexpr int rowHeight = 16; // or less
            const QPoint middle = tool->mapTo(&window, tool->rect().center());
            return std::pair(middle.y() / rowHeight, middle.x());
        };
        std::sort(tools.begin(), tools.end(),
                  [&](const QWidget *a, const QWidget *b) { return place(a) < place(b); });
        return tools;
    }

    static QList<QWidget *> passedByTab(Qt::Key key, qsizetype steps)
    {
        QList<QWidget *> passed;
        while (passed.size() < steps) {
            QTest::keyClick(QApplication::focusWidget(), key);
            passed << QApplication::focusWidget();
        }
        return passed;
    }

private slots:

    void init()
    {
        m_run.clear();
        m_style = TextCommand::BodyText;
        m_styles.reset();
        m_lock = std::make_unique<QAction>(u"Lock"_s);
        m_window = std::make_unique<DocumentWindow>();
        m_styles = std::make_unique<CharacterStyles>(editor(), m_window->commands());
        m_window->formatToolbar().addLockAction(m_lock.get());
        using Command = TextCommand;
        define({Command::BodyText, Command::Heading1, Command::Heading2, Command::AlignLeft,
                Command::AlignRight, Command::BulletedList, Command::InsertTable, Command::Find,
                Command::TextColour, Command::LastTextColour});
        for (const Command command : {Command::Bold, Command::GoToToolbar}) {
            m_window->addAction(&m_window->commands().action(command)); // as a menu would
        }
        m_window->commands().setGate([this] { return !m_window->showsLockedAppearance(); });
        m_window->commands().validate();
        showText(editor(), u"some text to style"_s);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    void eachToolSaysWhatItIs()
    {
        QStringList names;
        for (const auto *widget : m_window->formatToolbar().findChildren<QWidget *>()) {
            const bool isTool = (qobject_cast<const QToolButton *>(widget)
                                 || qobject_cast<const QComboBox *>(widget))
                && widget->objectName() != u"qt_toolbar_ext_button"_s;
            if (!isTool) {
                continue;
            }
            const auto *button = qobject_cast<const QToolButton *>(widget);
            const bool isNamed =
                !widget->accessibleName().isEmpty() || (button && !button->text().isEmpty());
            QVERIFY2(isNamed && !widget->toolTip().isEmpty(), qPrintable(names.join(u' ')));
            QVERIFY2(!button || !button->icon().isNull() || button->defaultAction() == m_lock.get(),
                     qPrintable(widget->accessibleName()));
            names << widget->accessibleName();
        }
        QVERIFY(names.contains(u"Insert Table"_s) && names.contains(u"Find"_s));
        const QString keys = QKeySequence(QKeySequence::Bold).toString(QKeySequence::NativeText);
        QCOMPARE(tool<QToolButton>(u"Bold"_s)->toolTip(), u"Bold (%1)"_s.arg(keys));
    }

    void whatHasNoRoomIsInThePanelAndComesBack()
    {
        auto *more = tool<QToolButton>(u"More Tools"_s);
        auto *size = tool<QComboBox>(u"Font Size"_s);
        auto *table = tool<QToolButton>(u"Insert Table"_s);
        resizeTo(1100);
        QVERIFY(!more->isVisible());
        QVERIFY(isInBar(size) && isInBar(table));
        resizeTo(480);
        QVERIFY(isInBar(more) && isInBar(tool<QToolButton>(u"Bold"_s)));
        QVERIFY(isInBar(m_window->formatToolbar().widgetForAction(m_lock.get())));
        QVERIFY(!isInBar(size) && !isInBar(table));

        editor().selectAll();
        QTest::mouseClick(more, Qt::LeftButton);
        QTRY_VERIFY(size->isVisible() && table->isVisible());
        size->lineEdit()->selectAll();
        QTest::keyClicks(size->lineEdit(), u"13.5"_s);
        QTest::keyClick(size->lineEdit(), Qt::Key_Return);
        QTRY_VERIFY2(!size->isVisible(), "who has chosen is done with the panel");
        QCOMPARE(editor().textCursor().charFormat().fontPointSize(), 13.5);
        QTest::mouseClick(more, Qt::LeftButton);
        QTest::mouseClick(table, Qt::LeftButton);
        QCOMPARE(m_run, QList {TextCommand::InsertTable});
        QTRY_VERIFY(!table->isVisible());
        QTest::mouseClick(more, Qt::LeftButton);
        QTRY_VERIFY(table->isVisible());
        m_window->showLockedAppearance();
        QVERIFY2(!table->isVisible(), "nothing stays open over a locked window");
        m_window->showEditorAppearance();
        resizeTo(1100);
        QVERIFY(isInBar(size) && isInBar(table) && !more->isVisible());
    }

    void theBarIsLedByKeys()
    {
        editor().selectAll();
        QTest::keyClick(&editor(), Qt::Key_F6);
        QCOMPARE(QApplication::focusWidget(), tool<QComboBox>(u"Paragraph Style"_s));
        auto *bold = tool<QToolButton>(u"Bold"_s);
        bold->setFocus();
        QTest::keyClick(bold, Qt::Key_Right);
        auto *italic = tool<QToolButton>(u"Italic"_s);
        QCOMPARE(QApplication::focusWidget(), italic);
        QTest::keyClick(italic, Qt::Key_Return);
        QVERIFY(editor().textCursor().charFormat().fontItalic());
        italic->setFocus();
        QTest::keyClick(italic, Qt::Key_Left);
        QCOMPARE(QApplication::focusWidget(), bold);
        QTest::keyClick(bold, Qt::Key_Escape);
        QVERIFY(editor().hasFocus());
        QTest::keyClick(&editor(), Qt::Key_F6);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6);
        QVERIFY(editor().hasFocus());
    }

    void tabLeadsFromToolToToolAsTheyStand_data()
    {
        QTest::addColumn<QList<int>>("widths");
        QTest::newRow("all tools have room") << QList {1200};
        QTest::newRow("some are in the panel") << QList {640};
        QTest::newRow("some came back from the panel") << QList {480, 1200};
    }

    void tabLeadsFromToolToToolAsTheyStand()
    {
        QFETCH(const QList<int>, widths);
        std::for_each(widths.begin(), widths.end(), [this](int width) { resizeTo(width); });
        const QList<QWidget *> inBar = shownTools(*m_window);
        inBar.first()->setFocus();
        QCOMPARE(passedByTab(Qt::Key_Tab, inBar.size()), inBar.sliced(1) << &editor());
        inBar.last()->setFocus();
        QList<QWidget *> backwards(inBar.rbegin() + 1, inBar.rend());
        QCOMPARE(passedByTab(Qt::Key_Backtab, backwards.size()), backwards);

        auto *more = tool<QToolButton>(u"More Tools"_s);
        if (more->isVisible()) {
            QVERIFY(inBar.contains(more));
            more->click();
            const QList<QWidget *> inPanel = shownTools(*QApplication::activePopupWidget());
            inPanel.first()->setFocus();
            QCOMPARE(passedByTab(Qt::Key_Tab, inPanel.size() - 1), inPanel.sliced(1));
        }
    }

    void listsHaveRoomForTheirNames()
    {
        for (const QString &name : {u"Paragraph Style"_s, u"Font"_s}) {
            auto *box = tool<QComboBox>(name);
            box->showPopup();
            for (int i = 0; i < box->count(); ++i) {
                const QVariant own = box->itemData(i, Qt::FontRole);
                const QFontMetrics metrics(own.isValid() ? own.value<QFont>() : box->font());
                const int needed = metrics.horizontalAdvance(box->itemText(i));
                QVERIFY(box->view()->viewport()->width() > needed + 20);
                QVERIFY2(!box->itemText(i).contains(u'['), "whose font it is");
                QCOMPARE(box->findText(box->itemText(i)), i);
            }
            box->hidePopup();
        }
    }

    void theFieldsFollowTheSelectionAndAreEmptyForSeveralFonts()
    {
        auto *size = tool<QComboBox>(u"Font Size"_s);
        auto *family = tool<QComboBox>(u"Font"_s);
        QTextCharFormat look;
        look.setFontPointSize(30);
        look.setFontFamilies({u"DejaVu Serif"_s});
        select(0, 4);
        editor().applyCharFormat(look);
        QTRY_COMPARE(size->currentText(), u"30"_s);
        QCOMPARE(family->currentText(), u"DejaVu Serif"_s);
        QVERIFY(!editor().textCursor().charFormat().hasProperty(QTextFormat::ForegroundBrush));
        const QAction &bold = m_window->commands().action(TextCommand::Bold);
        m_window->commands().action(TextCommand::Bold).trigger();
        QVERIFY(bold.isChecked());
        select(2, 8);
        QTRY_COMPARE(size->currentText(), QString());
        QCOMPARE(family->currentText(), QString());
        QVERIFY(!bold.isChecked());
    }

    void aSizeIsTypedAsPeopleWriteIt_data()
    {
        QTest::addColumn<QString>("set");
        QTest::newRow("12,5") << u"12.5"_s;
        QTest::newRow("12.5") << u"12.5"_s;
        QTest::newRow(" 18 pt ") << u"18"_s;
        QTest::newRow("14") << u"14"_s;
        QTest::newRow("-4") << QString();
        QTest::newRow("0") << QString();
        QTest::newRow("1639") << QString();
        QTest::newRow("1e2") << QString();
        QTest::newRow("nan") << QString();
        QTest::newRow("large") << QString();
    }

    void aSizeIsTypedAsPeopleWriteIt()
    {
        QFETCH(const QString, set);
        const QString typed = QString::fromUtf8(QTest::currentDataTag());
        auto *size = tool<QComboBox>(u"Font Size"_s);
        editor().selectAll();
        const QString before = size->currentText();
        size->setFocus();
        size->lineEdit()->selectAll();
        QTest::keyClicks(size, typed);
        QTest::keyClick(size, Qt::Key_Escape);
        QVERIFY(editor().hasFocus());
        QCOMPARE(size->currentText(), before);
        size->setFocus();
        size->lineEdit()->selectAll();
        QTest::keyClicks(size, typed);
        QTest::keyClick(size, Qt::Key_Return);
        QCOMPARE(size->currentText(), set.isEmpty() ? before : set);
        QCOMPARE(editor().hasFocus(), !set.isEmpty());
        QCOMPARE(editor().content()->isUndoAvailable(), !set.isEmpty() && set != before);
        QCOMPARE(QToolTip::isVisible(), set.isEmpty());
        QToolTip::hideText();
    }

    void aFamilyThatIsMissingIsKeptAndToldOf()
    {
        auto *family = tool<QComboBox>(u"Font"_s);
        const QString before = family->currentText();
        editor().selectAll();
        family->setFocus();
        family->lineEdit()->selectAll();
        QTest::keyClicks(family->lineEdit(), u"Nowhere Sans"_s);
        QTest::keyClick(family->lineEdit(), Qt::Key_Escape);
        QVERIFY(editor().hasFocus());
        QTRY_COMPARE(family->currentText(), before);
        family->setFocus();
        family->lineEdit()->selectAll();
        QTest::keyClicks(family->lineEdit(), u"Nowhere Sans"_s);
        QTest::keyClick(family->lineEdit(), Qt::Key_Return);
        QTRY_VERIFY(editor().hasFocus());
        QCOMPARE(editor().textCursor().charFormat().fontFamilies().toStringList(),
                 QStringList {u"Nowhere Sans"_s});
        QVERIFY(family->toolTip().contains(u"“Nowhere Sans” is not installed"_s));
        editor().undo();
        QVERIFY2(!editor().content()->isUndoAvailable(), "it was one step");
    }

    void theStyleBoxShowsAndSetsWhatTheCommandsSay()
    {
        auto *box = tool<QComboBox>(u"Paragraph Style"_s);
        QCOMPARE(box->currentText(), u"Body"_s);
        m_style = TextCommand::Heading2;
        m_window->commands().validate();
        QCOMPARE(box->currentText(), u"Heading 2"_s);
        emit box->activated(1);
        QCOMPARE(m_run, QList {TextCommand::Heading1});
        m_window->setReadOnly(true);
        QVERIFY(!box->isEnabled());
    }

    void aMenuButtonShowsWhatHolds()
    {
        auto *alignment = tool<QToolButton>(u"Alignment"_s);
        const auto shown = [&] {
            return alignment->icon().pixmap(18).toImage();
        };
        const QImage before = shown();
        m_style = TextCommand::AlignRight;
        m_window->commands().validate();
        QVERIFY(shown() != before);
        QCOMPARE(alignment->menu()->actions().size(), 4);
        m_window->setReadOnly(true);
        QVERIFY(!alignment->isEnabled());
    }

    void theWheelChangesNothingInPassing()
    {
        auto *size = tool<QComboBox>(u"Font Size"_s);
        editor().selectAll();
        const QString before = size->currentText();
        QWheelEvent turn(QPointF(5, 5), size->mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120),
                         Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(size, &turn);
        QCOMPARE(size->currentText(), before);
        QVERIFY(!editor().content()->isUndoAvailable());
    }
};

QTEST_MAIN(TestFormatToolbar)
#include "tst_formattoolbar.moc"
