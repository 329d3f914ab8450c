#include "workflow/realprogram.h"

#include <QAccessible>
#include <QClipboard>
#include <QMimeData>
#include <QTextDocument>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString password = u"correct horse"_s;
const QString path = u"/documents/letter.quorvane"_s;
const QString planted = u"quicksilver"_s;
constexpr int mostNodes = 20'000;

bool tells(const QByteArray &bytes)
{
    const QByteArray lower = bytes.toLower();
    const auto *units = reinterpret_cast<const char *>(planted.utf16());
    return lower.contains(planted.toLatin1())
        || lower.contains(QByteArray(units, planted.size() * 2));
}

bool tells(const QString &text)
{
    return text.contains(planted, Qt::CaseInsensitive);
}

bool tells(const QMimeData *data)
{
    if (!data) {
        return false;
    }
    const QStringList formats = data->formats();
    return std::any_of(formats.begin(), formats.end(),
                       [data](const QString &format) { return tells(data->data(format)); });
}

bool clipboardTells()
{
    const QClipboard *clipboard = QGuiApplication::clipboard();
    return tells(clipboard->mimeData(QClipboard::Clipboard))
        || (clipboard->supportsSelection() && tells(clipboard->mimeData(QClipboard::Selection)));
}

/// Everything that an assistive program reads of a widget and all below it.
bool accessibilityTells(QAccessibleInterface *node, int &nodesLeft)
{
    if (!node || nodesLeft-- <= 0) {
        return false;
    }
    for (const QAccessible::Text kind :
         {QAccessible::Name, QAccessible::Description, QAccessible::Value, QAccessible::Help,
          QAccessible::Accelerator}) {
        if (tells(node->text(kind))) {
            return true;
        }
    }
    if (const QAccessibleTextInterface *text = node->textInterface();
        text && tells(text->text(0, text->characterCount()))) {
        return true;
    }
    for (int i = 0; i < node->childCount(); ++i) {
        if (accessibilityTells(node->child(i), nodesLeft)) {
            return true;
        }
    }
    return false;
}

bool anyWidgetTells()
{
    const QWidgetList widgets = QApplication::allWidgets();
    return std::any_of(widgets.begin(), widgets.end(), [](QWidget *widget) {
        int nodesLeft = mostNodes;
        return tells(widget->windowTitle()) || tells(widget->toolTip())
            || tells(widget->accessibleName()) || tells(widget->property("text").toString())
            || tells(widget->property("plainText").toString())
            || accessibilityTells(QAccessible::queryAccessibleInterface(widget), nodesLeft);
    });
}

bool anyActionTells(const QWidget &window)
{
    const auto actions = window.findChildren<QAction *>();
    return std::any_of(actions.begin(), actions.end(), [](const QAction *action) {
        return tells(action->text()) || tells(action->toolTip()) || tells(action->statusTip())
            || tells(action->data().toString());
    });
}

} // namespace

/// A word of a document is planted, the document is locked, and the word is looked for wherever a
/// program, a person or an assistive tool could get at it.
class TestLockedSilence : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noWayLeadsToAWordOfALockedDocument();
    void thePictureOfALockedWindowIsThatOfAnEmptyOne();

private:
    static bool open(RealProgram &program, const QByteArray &body);
};

bool TestLockedSilence::open(RealProgram &program, const QByteArray &body)
{
    program.files.files.insert(path, program.fileOf(body, password));
    program.documents.openDocumentWithContentsOfURL(path);
    LockedPage &page = program.window().lockedPage();
    RealProgram::type(page, u"Master Password"_s, password);
    QTest::keyClick(RealProgram::field(page, u"Master Password"_s), Qt::Key_Return);
    return !program.document()->isEncrypted();
}

void TestLockedSilence::noWayLeadsToAWordOfALockedDocument()
{
    RealProgram program;
    QVERIFY(open(program, planted.toUtf8() + " and more"));
    QTextEdit &editor = program.editor();
    QTest::keyClicks(&editor, planted + u' '); // for undo's sake
    QTest::keyClick(&editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&editor, Qt::Key_C, Qt::ControlModifier);
    QVERIFY(clipboardTells() && anyWidgetTells()); // the search finds it while it is there

    program.document()->doLockDocument();
    QTRY_COMPARE(program.window().size(), program.window().minimumSize());
    QVERIFY(!clipboardTells());
    QVERIFY(!anyWidgetTells());
    QVERIFY(!anyActionTells(program.window()));

    const QStringList harmless {u"New"_s,           u"Open…"_s,        u"Close"_s,
                                u"Quit Quorvane"_s, u"Preferences…"_s, u"Software Update…"_s,
                                u"About Quorvane"_s};
    const auto actions = program.window().findChildren<QAction *>();
    for (QAction *action : actions) {
        const QString title = action->text().remove(u'&');
        if (harmless.contains(title) || action->menu()) {
            continue;
        }
        const qsizetype savesBefore = program.panels.saved.size();
        emit action->triggered(action->isChecked()); // as a stale menu would
        QCoreApplication::processEvents();
        QVERIFY2(!RealProgram::dialog(), qPrintable(title));
        QVERIFY2(!clipboardTells() && !anyWidgetTells(), qPrintable(title));
        QCOMPARE(program.panels.saved.size(), savesBefore);
    }
    for (const Qt::Key key :
         {Qt::Key_A, Qt::Key_C, Qt::Key_X, Qt::Key_Insert, Qt::Key_Z, Qt::Key_P, Qt::Key_F}) {
        for (QWidget *receiver : {static_cast<QWidget *>(&editor), editor.viewport(),
                                  static_cast<QWidget *>(&program.window())}) {
            QTest::keyClick(receiver, key, Qt::ControlModifier);
            QVERIFY(!RealProgram::dialog() && !clipboardTells() && !anyWidgetTells());
        }
    }
    QVERIFY(program.document()->isEncrypted());
    for (const QByteArray &file : std::as_const(program.files.files)) {
        QVERIFY(!tells(file));
    }
}

void TestLockedSilence::thePictureOfALockedWindowIsThatOfAnEmptyOne()
{
    QImage pictures[2];
    for (const bool isPlanted : {false, true}) {
        RealProgram program;
        QVERIFY(open(program, isPlanted ? planted.repeated(400).toUtf8() : QByteArray()));
        program.document()->doLockDocument();
        QTRY_COMPARE(program.window().size(), program.window().minimumSize());
        program.window().menuBar()->setFocus(); // a blinking caret would be a difference
        pictures[isPlanted ? 1 : 0] = program.window().grab().toImage();
    }
    QCOMPARE(pictures[1], pictures[0]);
}

QTEST_MAIN(TestLockedSilence)
#include "tst_lockedsilence.moc"
