#include "platform_qt/filepaneldialog.h"

#include "platform_qt/alertdialog.h"

#include <QDateTime>
#include <QFileInfo>
#include <QHeaderView>
#include <QLocale>
#include <QThread>
#include <QTimer>
#include <QTreeView>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

NSAlert replaceQuestion(const QFileInfo &file)
{
    return {u"“%1” already exists. Do you want to replace it?"_s.arg(file.fileName()),
            u"A file with this name is in the folder “%1”. Replacing it overwrites what it holds."_s
                .arg(file.dir().dirName()),
            {u"Cancel"_s, u"Replace"_s},
            NSAlertStyle::Warning};
}

QStringList patternsOf(const QStringList &types)
{
    QStringList patterns;
    for (const QString &type : types) {
        patterns.append(u"*."_s + type);
    }
    return patterns;
}

} // namespace

FilePanelDialog::FilePanelDialog(QWidget *parent, const NSOpenPanel &panel,
                                 const QString &directory)
    : QFileDialog(parent, u"Open"_s)
    , m_packageTypes(panel.packageTypes)
    , m_loopLevel(QThread::currentThread()->loopLevel())
{
    setUp(directory, panel.allowedFileTypes);
    setAcceptMode(QFileDialog::AcceptOpen);
    setFileMode(panel.allowsMultipleSelection ? QFileDialog::ExistingFiles
                                              : QFileDialog::ExistingFile);
    if (!panel.prompt.isEmpty()) {
        setLabelText(QFileDialog::Accept, panel.prompt);
    }
}

FilePanelDialog::FilePanelDialog(QWidget *parent, const NSSavePanel &panel,
                                 const QString &directory)
    : QFileDialog(parent, u"Save"_s)
    , m_packageTypes(panel.savesPackage ? panel.allowedFileTypes : QStringList())
    , m_loopLevel(QThread::currentThread()->loopLevel())
{
    setUp(directory, panel.allowedFileTypes);
    setAcceptMode(QFileDialog::AcceptSave);
    setFileMode(QFileDialog::AnyFile);
    if (!panel.name.isEmpty()) {
        selectFile(panel.name);
    }
}

void FilePanelDialog::setUp(const QString &directory, const QStringList &types)
{
    m_types = types;
    setOption(QFileDialog::DontUseNativeDialog);
    setOption(QFileDialog::DontConfirmOverwrite);
    setDirectory(directory);
    showDatesInFull();
    // A double click goes into every folder; a package is a folder for the disk alone.
    connect(this, &QFileDialog::directoryEntered, this, [this](const QString &path) {
        if (isPackage(path)) {
            setDirectory(QFileInfo(path).path());
            choosePackage(path);
        }
    });
    if (!types.isEmpty()) {
        setNameFilter(u"Files (%1)"_s.arg(patternsOf(types).join(u' ')));
    }
}

void FilePanelDialog::showDatesInFull()
{
    constexpr int nameColumn = 0;
    constexpr int dateColumn = 3;
    if (const auto *view = findChild<QTreeView *>(u"treeView"_s)) {
        const QString date = QLocale().toString(QDateTime::currentDateTime(), QLocale::ShortFormat);
        const int width = view->fontMetrics().horizontalAdvance(date + u"000 000"_s);
        view->header()->resizeSection(nameColumn, 2 * width);
        view->header()->resizeSection(dateColumn, width);
        resize(9 * width / 2, height());
    }
}

QStringList FilePanelDialog::chosenPaths() const
{
    return m_package.isEmpty() ? selectedFiles() : QStringList {m_package};
}

bool FilePanelDialog::isPackage(const QString &path) const
{
    const QFileInfo file(path);
    return file.isDir() && m_packageTypes.contains(file.suffix(), Qt::CaseInsensitive);
}

void FilePanelDialog::choosePackage(const QString &path)
{
    m_package = path;
    done(QDialog::Accepted);
}

QString FilePanelDialog::pathToSave() const
{
    const QStringList chosen = chosenPaths();
    const QString path = chosen.isEmpty() ? QString() : chosen.first();
    const QString type = QFileInfo(path).suffix();
    if (m_types.isEmpty() || m_types.contains(type, Qt::CaseInsensitive)) {
        return path;
    }
    return path + u'.' + m_types.first();
}

void FilePanelDialog::accept()
{
    m_package.clear();
    const QStringList chosen = selectedFiles();
    if (chosen.size() == 1 && isPackage(chosen.first())) {
        choosePackage(chosen.first());
        return;
    }
    QFileDialog::accept();
}

void FilePanelDialog::done(int result)
{
    const bool saves = result == QDialog::Accepted && acceptMode() == QFileDialog::AcceptSave;
    if (saves && QFileInfo(pathToSave()).isDir() && !isPackage(pathToSave())) {
        setDirectory(pathToSave()); // no file can take the place of a folder
        return;
    }
    if (saves && !m_mayReplace && QFileInfo::exists(pathToSave())) {
        askToReplace(pathToSave());
        return;
    }
    QFileDialog::done(result);
}

void FilePanelDialog::askToReplace(const QString &path)
{
    auto *question = new AlertDialog(replaceQuestion(QFileInfo(path)), this);
    connect(question, &QDialog::finished, this, [this, question](int code) {
        question->deleteLater();
        if (code == static_cast<int>(AlertAnswer::Second)) {
            m_mayReplace = true;
            done(QDialog::Accepted);
        }
    });
    question->open();
}

void FilePanelDialog::deleteWhenIdle()
{
    constexpr int patience = 50;
    if (QThread::currentThread()->loopLevel() <= m_loopLevel) {
        deleteLater();
        return;
    }
    QTimer::singleShot(patience, this, &FilePanelDialog::deleteWhenIdle);
}

} // namespace quorvane
