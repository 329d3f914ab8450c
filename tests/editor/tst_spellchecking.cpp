#include "editor/editorview.h"
#include "editor/spellchecking.h"
#include "editor/spellingwords.h"
#include "editor/textcontextmenu.h"
#include "platform_qt/enchantspelling.h"
#include "support/writtentext.h"

#include <QContextMenuEvent>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

// A language that hardly any machine has a dictionary for.
const auto latin = u"la_VA"_s;

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("cannot write the dictionary");
    }
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A window whose spelling is checked in Latin.
struct Window
{
    explicit Window(Spelling &spelling)
        : view(window.editor())
        , checking({window.editor(), window.commands(), marks, contextMenu, view, sheets, spelling})
    {
        view.setContinuousSpellCheckingEnabled(true);
        window.addAction(&command(TextCommand::NextMisspelling));
        window.addAction(&command(TextCommand::CheckSpelling));
        choose(u"Latin (Vatican City"_s);
        bringUp(window);
    }

    void choose(const QString &title)
    {
        QMenu languages;
        window.commands().attach(TextMenu::SpellingLanguage, languages);
        emit languages.aboutToShow();
        for (QAction *action : languages.actions()) {
            if (action->text().contains(title)) {
                action->trigger();
            }
        }
    }

    void show(const QString &text) { showText(editor(), text); }

    TextEditor &editor() { return window.editor(); }

    QAction &command(TextCommand which) { return window.commands().action(which); }

    void place(int position) { selectText(editor(), position, position); }

    bool shows(const QStringList &words)
    {
        return QTest::qWaitFor([&] {
            QStringList marked;
            for (const QTextCursor &word : checking.underlined()) {
                marked << word.selectedText();
            }
            return marked == words;
        });
    }

    /// What the menu key offers, up to the usual commands; the item of that title is chosen.
    QStringList offered(const QString &chosen = {})
    {
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint(), Qt::NoModifier);
        QCoreApplication::sendEvent(editor().viewport(), &event);
        auto *menu = editor().findChild<QMenu *>();
        QStringList titles;
        for (QAction *action : menu->actions()) {
            if (action->text() == u"Cu&t"_s) {
                break;
            }
            if (!action->isSeparator()) {
                titles << action->text();
            }
            if (!chosen.isEmpty() && action->text() == chosen) {
                action->trigger();
            }
        }
        menu->close();
        QCoreApplication::sendPostedEvents(menu, QEvent::DeferredDelete);
        return titles;
    }

    ManualQueue queue;
    ScriptedWindow sheets {queue};
    DocumentWindow window;
    EditorView view;
    VisibleMarks marks {window.editor()};
    TextContextMenu contextMenu {window.editor(), window.commands()};
    SpellChecking checking;
};

} // namespace

class TestSpellChecking : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder; // of the person's dictionaries and words
    std::unique_ptr<EnchantSpelling> m_spelling;

    QString file(const QString &name) const { return m_folder.filePath(name); }

    QByteArray everyFileButTheDictionary() const
    {
        QByteArray all;
        for (const QString &name : QDir(m_folder.path()).entryList(QDir::Files)) {
            all += read(file(name));
        }
        return all;
    }

    void learnAndIgnore()
    {
        Window window(*m_spelling);
        window.show(u"amo zyxw vutsr"_s);
        QVERIFY(window.shows({u"zyxw"_s, u"vutsr"_s}));
        window.place(6);
        QCOMPARE(window.offered(u"&Ignore Word"_s).first(), u"No Suggestions"_s);
        QVERIFY(window.shows({u"vutsr"_s}));
        QCOMPARE(everyFileButTheDictionary(), QByteArray());
        Window other(*m_spelling);
        other.show(u"zyxw vutsr"_s);
        QVERIFY2(other.shows({u"vutsr"_s}), "it is ignored in every window");
        window.place(12);
        window.window.commands().validate();
        window.command(TextCommand::LearnWord).trigger();
        QVERIFY(window.shows({}) && other.shows({}));
        other.choose(u"Latin (la_IT"_s);
        QVERIFY2(other.shows({u"vutsr"_s}), "it is ignored in every language, and learnt in one");
        QCOMPARE(everyFileButTheDictionary().trimmed(), "vutsr"_ba);
    }

private slots:

    void init()
    {
        QDir(m_folder.path()).mkpath(u"hunspell"_s);
        for (const QString &name : QDir(m_folder.path()).entryList(QDir::Files)) {
            QFile::remove(file(name));
        }
        write(file(u"hunspell/la_VA.aff"_s), "SET UTF-8\nTRY aeiou\n");
        write(file(u"hunspell/la_IT.aff"_s), "SET UTF-8\n");
        write(file(u"hunspell/la_IT.dic"_s), "1\namo\n");
        write(file(u"hunspell/la_VA.dic"_s), "5\namo\namas\nrosa\ncæsar\nl'aqua\n");
        qputenv("ENCHANT_CONFIG_DIR", QFile::encodeName(m_folder.path()));
        m_spelling = std::make_unique<EnchantSpelling>();
    }

    void whatIsNoWordIsNotChecked_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("words");
        const auto row = [](const char *name, const QString &text, const QStringList &words) {
            QTest::newRow(name) << text << words;
        };
        row("words", u"Two words, (three)."_s, {u"Two"_s, u"words"_s, u"three"_s});
        row("hyphens part, apostrophes do not", u"well-known don't l’eau 'quoted'"_s,
            {u"well"_s, u"known"_s, u"don't"_s, u"l’eau"_s, u"quoted"_s});
        row("digits and lines", u"mp3 x_axis 12th and"_s, {u"and"_s});
        row("addresses and files",
            u"https://a.example/page www.there.example me@there.example /usr/bin ~/notes "
            "C:\\files notes.txt or"_s,
            {u"or"_s});
        row("capitals", u"NATO's USA Usa"_s, {u"NATO's"_s, u"Usa"_s});
        row("one letter", u"a I and"_s, {u"and"_s});
        row("other scripts", u"слово 漢字 ภาษาไทย λόγος"_s, {u"слово"_s, u"λόγος"_s});
        row("a soft hyphen is of the word", u"hy\u00adphen"_s, {u"hy\u00adphen"_s});
        row("attachments and faces part", u"one\ufffctwo\U0001F600three"_s,
            {u"one"_s, u"two"_s, u"three"_s});
        row("what nobody writes", QString(100, u'a'), {});
    }

    void whatIsNoWordIsNotChecked()
    {
        QFETCH(QString, text);
        QStringList words;
        for (const TextSpan &word : wordsToCheck(text, {0, int(text.size())})) {
            words << text.mid(word.from, word.length);
        }
        QTEST(words, "words");
    }

    void onlyWhatIsInViewIsLookedAt()
    {
        const QString text = u"https://one.example two three four"_s;
        const auto words = wordsToCheck(text, {10, 12});
        QCOMPARE(words.size(), 1U); // and no end of an address
        QCOMPARE(text.mid(words.front().from, words.front().length), u"two"_s);
        QCOMPARE(wordsToCheck(u"one,two,three"_s, {4, 2}).size(), 1U);
    }

    void theLanguageIsTheSystems_data()
    {
        QTest::addColumn<QStringList>("installed");
        QTest::addColumn<QString>("system");
        QTest::addColumn<QString>("language");
        const QStringList some {u"de_AT"_s, u"de_DE"_s, u"en_GB"_s, u"en_US"_s, u"eo"_s};
        QTest::newRow("the very one") << some << u"de_DE"_s << u"de_DE"_s;
        QTest::newRow("of no country") << some << u"eo_001"_s << u"eo"_s;
        QTest::newRow("of another country") << some << u"en_AU"_s << u"en_GB"_s;
        QTest::newRow("of a system without one") << some << u"C"_s << u"en_US"_s;
        QTest::newRow("never another") << some << u"fr_FR"_s << u""_s;
        QTest::newRow("none") << QStringList() << u"en_US"_s << u""_s;
    }

    void theLanguageIsTheSystems()
    {
        QFETCH(QStringList, installed);
        QFETCH(QString, system);
        QTEST(offeredLanguage(installed, QLocale(system)).value_or(QString()), "language");
    }

    void wrongWordsAreMarkedButTheOneBeingTyped()
    {
        Window window(*m_spelling);
        window.show(u"amo rosam CÆSAR cæsar"_s);
        QVERIFY(window.shows({u"rosam"_s}));
        window.place(21);
        QTest::keyClicks(&window.editor(), u" amax amaxx"_s);
        QVERIFY(window.shows({u"rosam"_s, u"amax"_s}));
        QTest::keyClick(&window.editor(), Qt::Key_Home);
        const QStringList all {u"rosam"_s, u"amax"_s, u"amaxx"_s};
        QVERIFY(window.shows(all));
        window.command(TextCommand::CheckSpelling).trigger();
        QVERIFY(window.shows({}));
        QVERIFY(!window.command(TextCommand::CheckSpelling).isChecked());
        window.command(TextCommand::CheckSpelling).trigger();
        QVERIFY(window.shows(all));
        window.window.setReadOnly(true);
        window.marks.refresh();
        QVERIFY(window.shows({}));
        QVERIFY(!window.command(TextCommand::NextMisspelling).isEnabled());
    }

    void aWaveIsDrawnUnderTheWrongWordAlone_data()
    {
        QTest::addColumn<QString>("html");
        QTest::addColumn<double>("zoom");
        QTest::addColumn<int>("lines");
        const auto row = [](const char *name, const QString &html, double zoom, int lines) {
            QTest::newRow(name) << html << zoom << lines;
        };
        const auto word = u"quisquam"_s;
        row("in a paragraph", u"<p>amo amas %1 amo</p>"_s.arg(word), 1, 1);
        row("larger", u"<p>amo amas %1 amo</p>"_s.arg(word), 2, 1);
        row("behind what is being composed", u"<p>amo amas %1 amo</p>"_s.arg(word), 1, 1);
        row("in a paragraph to the left", u"<p dir=rtl>amo amas %1 amo</p>"_s.arg(word), 1, 1);
        row("at its end", u"<p dir=rtl>\u05d0\u05d1\u05d2 amo %1</p>"_s.arg(word), 1, 1);
        row("before words to the left", u"<p dir=rtl>amo %1 \u05d0\u05d1\u05d2</p>"_s.arg(word), 1,
            1);
        row("in an item", u"<ol><li>amo</li><li>amas %1 amo</li></ol>"_s.arg(word), 1, 1);
        row("in a cell", u"<table><tr><td>amo</td><td>%1 amo</td></tr></table>"_s.arg(word), 1, 1);
        row("broken into lines",
            u"<table width=100><tr><td width=50>%1</td><td>amo</td></tr></table>"_s.arg(
                word.repeated(3)),
            1, 4);
    }

    void aWaveIsDrawnUnderTheWrongWordAlone()
    {
        QFETCH(QString, html);
        QFETCH(double, zoom);
        QFETCH(int, lines);
        Window window(*m_spelling);
        auto document = std::make_unique<QTextDocument>();
        document->setHtml(html);
        showText(window.editor(), std::move(document));
        QVERIFY(window.editor().setZoom(zoom));
        QTRY_COMPARE(window.checking.underlined().size(), 1);
        const QTextCursor word = window.checking.underlined().first();
        if (QByteArray(QTest::currentDataTag()).contains("composed")) {
            QInputMethodEvent composing(u"composed"_s, {});
            QCoreApplication::sendEvent(&window.editor(), &composing);
        }
        QMap<int, QRect> inner; // of the lines, by their bottoms: from letter to letter
        for (int at = word.selectionStart() + 1; at < word.selectionEnd(); ++at) {
            QTextCursor letter(word);
            letter.setPosition(at);
            const QRect place = window.editor().cursorRect(letter);
            inner[place.bottom()] = inner[place.bottom()].united(place);
        }
        QVERIFY(inner.size() >= lines);
        QMap<int, QRect> waves;
        const QImage shown = window.editor().viewport()->grab().toImage();
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x) {
                const QColor colour = shown.pixelColor(x, y);
                if (colour.red() - colour.green() > 100) {
                    const auto line = inner.lowerBound(y);
                    QVERIFY(line != inner.end() && y > line->center().y());
                    waves[line.key()] = waves[line.key()].united({x, y, 1, 1});
                }
            }
        }
        QCOMPARE(waves.keys(), inner.keys());
        const int letter = qRound(14 * zoom);
        for (const int line : inner.keys()) {
            QVERIFY(waves[line].left() <= inner[line].left() + 2);
            QVERIFY(waves[line].right() >= inner[line].right() - 2);
            QVERIFY(waves[line].left() >= inner[line].left() - letter);
            QVERIFY(waves[line].right() <= inner[line].right() + letter);
        }
    }

    void marksEndWithTheTextTheyStandIn()
    {
        Window window(*m_spelling);
        window.show(u"rosaa amo"_s);
        QVERIFY(window.shows({u"rosaa"_s}));
        window.show(u"amo rosax"_s);
        QVERIFY(window.shows({u"rosax"_s}));
    }

    void aSuggestionCorrectsInOneStep()
    {
        Window window(*m_spelling);
        auto document = std::make_unique<QTextDocument>();
        QTextCursor cursor(document.get());
        QTextCharFormat bold;
        bold.setFontWeight(QFont::Bold);
        cursor.insertText(u"amo "_s);
        cursor.insertText(u"rosaa"_s, bold);
        showText(window.editor(), std::move(document));
        QVERIFY(window.shows({u"rosaa"_s}));
        window.place(6);
        QCOMPARE(window.offered(u"rosa"_s),
                 QStringList({u"rosa"_s, u"&Learn Word"_s, u"&Ignore Word"_s}));
        QCOMPARE(window.editor().toPlainText(), u"amo rosa"_s);
        cursor = QTextCursor(window.editor().content());
        cursor.setPosition(7);
        QCOMPARE(cursor.charFormat().fontWeight(), int(QFont::Bold));
        QCOMPARE(window.editor().undoNames().undoName(), u"Correct Spelling"_s);
        window.editor().undo();
        QCOMPARE(window.editor().toPlainText(), u"amo rosaa"_s);
        window.place(1);
        QCOMPARE(window.offered(), QStringList());
        QCOMPARE(everyFileButTheDictionary(), QByteArray());
    }

    void onlyALearntWordIsWritten()
    {
        learnAndIgnore();
        m_spelling = std::make_unique<EnchantSpelling>(); // the next run
        Window next(*m_spelling);
        next.show(u"zyxw vutsr"_s);
        QVERIFY(next.shows({u"zyxw"_s}));
    }

    void f7GoesFromOneToTheNextAndRound()
    {
        Window window(*m_spelling);
        const QString good = u"amo "_s.repeated(249);
        window.show(good + u"rosaa "_s + good + QString(3000, u'\n') + u"amas amax rosa"_s);
        for (const auto &word : {u"rosaa"_s, u"amax"_s, u"rosaa"_s}) {
            QTest::keyClick(&window.editor(), Qt::Key_F7);
            QVERIFY(QTest::qWaitFor(
                [&] { return window.editor().textCursor().selectedText() == word; }));
        }
        window.show(u"amo amas"_s);
        window.place(4);
        QTest::keyClick(&window.editor(), Qt::Key_F7);
        QTRY_VERIFY(!window.sheets.alerts.isEmpty());
        QCOMPARE(window.sheets.alerts.first().messageText, u"No misspelled word was found."_s);
    }

    void aLockedWindowShowsNoWord()
    {
        Window window(*m_spelling);
        window.show(u"rosaa"_s);
        QVERIFY(window.shows({u"rosaa"_s}));
        window.place(2);
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint(), Qt::NoModifier);
        QCoreApplication::sendEvent(window.editor().viewport(), &event);
        const QPointer<QMenu> menu = window.editor().findChild<QMenu *>();
        QVERIFY(menu && menu->isVisible());
        window.window.showLockedAppearance();
        QTRY_VERIFY(!menu);
        QVERIFY(window.shows({}));
        QVERIFY(!window.command(TextCommand::LearnWord).isEnabled());
    }
};

QTEST_MAIN(TestSpellChecking)
#include "tst_spellchecking.moc"
