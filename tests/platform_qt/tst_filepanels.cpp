#include "platform_qt/filepaneldialog.h"
#include "platform_qt/qtoperationqueue.h"
#include "platform_qt/qtpanels.h"
#include "platform_qt/qtwindow.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

using namespace quorvane;
using namespace Qt::StringLiterals;

class FilePanelsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aNameIsAnsweredWithItsExtension_data();
    void aNameIsAnsweredWithItsExtension();
    void anExistingFileIsAskedAbout();
    void aPanelEndedFromOutsideCountsAsDismissed_data();
    void aPanelEndedFromOutsideCountsAsDismissed();
    void theFolderLastUsedComesBack();
    void anOpenPanelAnswersWhatWasChosen();
    void aPackageIsChosenLikeAFile_data();
    void aPackageIsChosenLikeAFile();
    void aPackageIsReplacedAndAFolderIsNot_data();
    void aPackageIsReplacedAndAFolderIsNot();
    void noTraceIsLeftInTheSettingsOfOtherPrograms();

private:
    void beginSave(const NSSavePanel &panel);
    static FilePanelDialog *panel();
    static QWidget *question();
    static void press(QWidget *dialog, const QString &title);
    void typeName(const QString &name);

    QString inFolder(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QtOperationQueue m_queue;
    std::unique_ptr<QWidget> m_host;
    std::unique_ptr<QtWindow> m_window;
    std::unique_ptr<QtPanels> m_panels;
    std::optional<std::optional<QString>> m_answer; // nothing while the panel is up
};

void FilePanelsTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_host = std::make_unique<QWidget>();
    m_host->show();
    m_window = std::make_unique<QtWindow>(*m_host, m_queue);
    m_panels = std::make_unique<QtPanels>(m_queue);
    m_answer.reset();
}

void FilePanelsTest::cleanup()
{
    m_window.reset();
    m_host.reset();
    m_panels.reset();
}

void FilePanelsTest::beginSave(const NSSavePanel &panel)
{
    m_answer.reset();
    m_panels->beginSaveSheet(*m_window, panel,
                             [this](const std::optional<QString> &path) { m_answer = path; });
}

FilePanelDialog *FilePanelsTest::panel()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *dialog = qobject_cast<FilePanelDialog *>(widget);
        if (dialog != nullptr && dialog->isVisible()) {
            return dialog;
        }
    }
    return nullptr;
}

QWidget *FilePanelsTest::question()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == "alert"_L1 && widget->isVisible()) {
            return widget;
        }
    }
    return nullptr;
}

void FilePanelsTest::press(QWidget *dialog, const QString &title)
{
    for (QPushButton *button : dialog->findChildren<QPushButton *>()) {
        if (button->text().remove(u'&') == title) {
            QVERIFY(button->isEnabled());
            button->click();
            return;
        }
    }
    QFAIL(qPrintable(title));
}

void FilePanelsTest::typeName(const QString &name)
{
    QTRY_VERIFY(panel() != nullptr);
    panel()->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(name);
}

void FilePanelsTest::aNameIsAnsweredWithItsExtension_data()
{
    QTest::addColumn<QStringList>("types");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("answer");
    const QStringList rich {u"rtf"_s, u"txt"_s};
    QTest::newRow("none typed") << rich << u"notes"_s << u"notes.rtf"_s;
    QTest::newRow("the first") << rich << u"notes.rtf"_s << u"notes.rtf"_s;
    QTest::newRow("another that is allowed") << rich << u"notes.TXT"_s << u"notes.TXT"_s;
    QTest::newRow("a dot in the name") << rich << u"notes 1.2"_s << u"notes 1.2.rtf"_s;
    QTest::newRow("any is allowed") << QStringList() << u"notes"_s << u"notes"_s;
}

void FilePanelsTest::aNameIsAnsweredWithItsExtension()
{
    QFETCH(QStringList, types);
    QFETCH(QString, typed);
    QFETCH(QString, answer);
    beginSave({types, m_folder->path(), u"proposed"_s});
    QTRY_VERIFY(panel() != nullptr);
    QCOMPARE(panel()->findChild<QLineEdit *>(u"fileNameEdit"_s)->text(), u"proposed"_s);
    QVERIFY(m_window->attachedSheet() != nullptr);
    typeName(typed);
    press(panel(), u"Save"_s);
    QVERIFY(m_answer.has_value());
    QCOMPARE(*m_answer, inFolder(answer));
}

void FilePanelsTest::anExistingFileIsAskedAbout()
{
    QFile file(inFolder(u"notes.rtf"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    beginSave({{u"rtf"_s}, m_folder->path(), u"notes"_s});
    QTRY_VERIFY(panel() != nullptr);
    press(panel(), u"Save"_s);
    QVERIFY(!m_answer && question() != nullptr);
    press(question(), u"Cancel"_s);
    QVERIFY(!m_answer && panel() != nullptr && question() == nullptr);
    press(panel(), u"Save"_s);
    press(question(), u"Replace"_s);
    QVERIFY(m_answer.has_value());
    QCOMPARE(*m_answer, inFolder(u"notes.rtf"_s));
}

void FilePanelsTest::aPanelEndedFromOutsideCountsAsDismissed_data()
{
    QTest::addColumn<bool>("asks");
    QTest::newRow("the panel alone") << false;
    QTest::newRow("the panel with its question") << true;
}

void FilePanelsTest::aPanelEndedFromOutsideCountsAsDismissed()
{
    QFETCH(bool, asks);
    QFile file(inFolder(u"notes.rtf"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    beginSave({{u"rtf"_s}, m_folder->path(), u"notes"_s});
    QTRY_VERIFY(panel() != nullptr);
    if (asks) {
        press(panel(), u"Save"_s);
        QVERIFY(question() != nullptr);
    }
    m_window->endSheet(*m_window->attachedSheet(), modalResponseStop);
    QVERIFY(m_answer.has_value());
    QCOMPARE(*m_answer, std::nullopt);
    QVERIFY(panel() == nullptr && question() == nullptr);
}

void FilePanelsTest::theFolderLastUsedComesBack()
{
    QVERIFY(QDir(m_folder->path()).mkdir(u"sub"_s));
    beginSave({{}, inFolder(u"sub"_s), u"a"_s});
    QTRY_VERIFY(panel() != nullptr);
    press(panel(), u"Save"_s);
    QVERIFY(m_answer.has_value());
    beginSave({{}, {}, u"b"_s});
    QTRY_VERIFY(panel() != nullptr);
    QCOMPARE(panel()->directory().absolutePath(), inFolder(u"sub"_s));
}

void FilePanelsTest::anOpenPanelAnswersWhatWasChosen()
{
    QFile file(inFolder(u"notes.rtf"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    std::optional<QStringList> answer;
    for (const bool dismisses : {false, true}) {
        m_panels->beginOpen({{u"rtf"_s}, false}, [&answer](const QStringList &p) { answer = p; });
        typeName(file.fileName());
        QCOMPARE(panel()->windowModality(), Qt::ApplicationModal);
        press(panel(), dismisses ? u"Cancel"_s : u"Open"_s);
        QCOMPARE(answer, dismisses ? QStringList() : QStringList {file.fileName()});
    }
}

void FilePanelsTest::aPackageIsChosenLikeAFile_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("entersByDoubleClick");
    QTest::addColumn<bool>("isChosen");
    QTest::newRow("a package by its name") << u"a.rtfd"_s << false << true;
    QTest::newRow("a package by a double click") << u"a.RTFD"_s << true << true;
    QTest::newRow("a file") << u"a.txt"_s << false << true;
    QTest::newRow("any other folder is entered") << u"folder"_s << false << false;
}

void FilePanelsTest::aPackageIsChosenLikeAFile()
{
    QFETCH(QString, typed);
    QFETCH(bool, entersByDoubleClick);
    QFETCH(bool, isChosen);
    QFile file(inFolder(u"a.txt"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    for (const QString &name : {u"a.rtfd"_s, u"a.RTFD"_s, u"folder"_s}) {
        QVERIFY(QDir(m_folder->path()).mkdir(name));
    }
    std::optional<QStringList> answer;
    m_panels->beginOpenSheet(*m_window, {{}, false, {u"rtfd"_s}},
                             [&answer](const QStringList &paths) { answer = paths; });
    QTRY_VERIFY(panel() != nullptr);
    QVERIFY(m_window->attachedSheet() != nullptr);
    panel()->setDirectory(m_folder->path());
    if (entersByDoubleClick) {
        panel()->setDirectory(inFolder(typed));
        Q_EMIT panel()->directoryEntered(inFolder(typed));
    } else {
        typeName(inFolder(typed));
        press(panel(), u"Open"_s);
    }
    QCOMPARE(answer.has_value(), isChosen);
    if (isChosen) {
        QCOMPARE(*answer, QStringList {inFolder(typed)});
    } else {
        QCOMPARE(panel()->directory().absolutePath(), inFolder(typed));
    }
}

void FilePanelsTest::aPackageIsReplacedAndAFolderIsNot_data()
{
    QTest::addColumn<bool>("savesPackage");
    QTest::addColumn<QString>("typed");
    QTest::newRow("a package by its name") << true << u"a.rtfd"_s;
    QTest::newRow("a package without extension") << true << u"a"_s;
    QTest::newRow("a folder where a file is saved") << false << u"a"_s;
}

void FilePanelsTest::aPackageIsReplacedAndAFolderIsNot()
{
    QFETCH(bool, savesPackage);
    QFETCH(QString, typed);
    QVERIFY(QDir(m_folder->path()).mkdir(u"a.rtfd"_s));
    NSSavePanel asked {{u"rtfd"_s}, m_folder->path(), {}};
    asked.savesPackage = savesPackage;
    beginSave(asked);
    typeName(typed);
    press(panel(), typed.contains(u'.') ? u"Open"_s : u"Save"_s); // the toolkit's word for folders
    QVERIFY(!m_answer);
    QCOMPARE(question() != nullptr, savesPackage);
    if (!savesPackage) {
        QCOMPARE(panel()->directory().absolutePath(), inFolder(u"a.rtfd"_s));
        return;
    }
    press(question(), u"Replace"_s);
    QVERIFY(m_answer.has_value());
    QCOMPARE(*m_answer, inFolder(u"a.rtfd"_s));
}

void FilePanelsTest::noTraceIsLeftInTheSettingsOfOtherPrograms()
{
    beginSave({{}, m_folder->path(), u"secret"_s});
    QTRY_VERIFY(panel() != nullptr);
    press(panel(), u"Save"_s);
    QVERIFY(m_answer.has_value());
    QTRY_VERIFY(m_host->findChild<FilePanelDialog *>() == nullptr);
    QFile shared(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
                 + u"/QtProject.conf"_s);
    const QByteArray content = shared.open(QIODevice::ReadOnly) ? shared.readAll() : QByteArray();
    QVERIFY2(!content.contains(m_folder->path().toUtf8()), content.constData());
}

QTEST_MAIN(FilePanelsTest)
#include "tst_filepanels.moc"
