#include "app/drivenprogram.h"

#include "editor/documentwindow.h"
#include "editor/lockedpage.h"
#include "editor/texteditor.h"

#include <QApplication>
#include <QLineEdit>
#include <QSocketNotifier>
#include <QTest>

#include <algorithm>
#include <iostream>
#include <string>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr const char *mark = "QUORVANE_DRIVEN";

/// In the order in which they were made.
QList<DocumentWindow *> documentWindows()
{
    QList<DocumentWindow *> windows;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        if (auto *window = qobject_cast<DocumentWindow *>(widget); window && window->isVisible()) {
            windows << window;
        }
    }
    return windows;
}

QString titleOf(const QWidget *window)
{
    return window ? window->windowTitle().remove(u"[*]"_s) : u""_s;
}

void typePassword(DocumentWindow &window, const QString &password)
{
    const auto fields = window.lockedPage().findChildren<QLineEdit *>();
    for (QLineEdit *field : fields) {
        if (field->accessibleName() == "Master Password"_L1) {
            QTest::keyClicks(field, password);
            QTest::keyClick(field, Qt::Key_Return);
        }
    }
}

QString answerTo(const QString &command, const QString &argument)
{
    const QList<DocumentWindow *> windows = documentWindows();
    if (command == "titles"_L1) {
        QStringList titles;
        for (const DocumentWindow *window : windows) {
            titles << titleOf(window);
        }
        titles.sort();
        return titles.join(u'/');
    }
    if (command == "windows"_L1) {
        QStringList titles;
        const QWidgetList widgets = QApplication::topLevelWidgets();
        for (const QWidget *widget : widgets) {
            if (widget->isVisible()) {
                titles << titleOf(widget);
            }
        }
        titles.sort();
        return titles.join(u'/');
    }
    if (command == "active"_L1) {
        return titleOf(QApplication::activeWindow());
    }
    const auto found = std::find_if(windows.begin(), windows.end(), [&](const QWidget *window) {
        return command == "activate"_L1 ? titleOf(window) == argument : true;
    });
    if (found == windows.end()) {
        return u"none"_s;
    }
    DocumentWindow &window = **found;
    if (command == "activate"_L1) {
        window.activateWindow();
    } else if (command == "unlock"_L1) {
        typePassword(window, argument);
    } else if (command == "type"_L1) {
        QTest::keyClicks(&window.editor(), argument);
    }
    return window.showsLockedAppearance() ? u"locked"_s : u"open"_s;
}

void readCommand()
{
    std::string line;
    if (!std::getline(std::cin, line)) {
        return;
    }
    const QString text = QString::fromStdString(line);
    std::cout << answerTo(text.section(u' ', 0, 0), text.section(u' ', 1)).toStdString()
              << std::endl;
}

void drive()
{
    if (DrivenProgram::isMeant()) {
        auto *notifier = new QSocketNotifier(0, QSocketNotifier::Read, qApp);
        QObject::connect(notifier, &QSocketNotifier::activated, qApp, readCommand);
    }
}

Q_COREAPP_STARTUP_FUNCTION(drive)

} // namespace

bool DrivenProgram::isMeant()
{
    return qEnvironmentVariableIsSet(mark);
}

DrivenProgram::DrivenProgram(const QStringList &files, const QString &workingDirectory)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(mark), u"1"_s);
    m_process.setProcessEnvironment(environment);
    m_process.setWorkingDirectory(workingDirectory);
    m_process.start(QCoreApplication::applicationFilePath(), files);
}

DrivenProgram::~DrivenProgram()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

QString DrivenProgram::tell(const QString &command, const QString &argument)
{
    m_process.write((command + u' ' + argument + u'\n').toUtf8());
    while (!m_process.canReadLine() && m_process.waitForReadyRead()) { }
    return QString::fromUtf8(m_process.readLine()).trimmed();
}

int DrivenProgram::exitCode()
{
    m_process.waitForFinished();
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

} // namespace quorvane
