#include "document/documentfixture.h"
#include "platform/posixfilestore.h"
#include "savetorture/savetorture.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString password = u"correct horse"_s;
const QByteArray oldBody("what was there before");
const QByteArray newBody("what has been typed since");

/// A document that is open, with its file in a folder of its own.
class Scene
{
public:
    Scene()
        : m_folder(QFileInfo(u"/dev/shm"_s).isWritable()
                       ? u"/dev/shm/documenttorture-XXXXXX"_s
                       : QDir::tempPath() + "/documenttorture-XXXXXX"_L1)
        , m_path(m_folder.filePath(u"letter.quorvane"_s))
        , m_oldFile(fileOf(m_world, oldBody, password))
    {
        MyDocumentSurroundings surroundings = m_world.surroundings();
        surroundings.loadNib = [this](MyDocument &made) {
            auto outlets = std::make_unique<Outlets>(m_world.queue);
            outlets->connectTo(made);
            return outlets;
        };
        const DocumentSurroundings &made = surroundings.machinery;
        m_document = std::make_unique<MyDocument>(
            MyDocumentSurroundings {{made.mainQueue, m_files, made.panels, made.timers},
                                    surroundings.defaults,
                                    surroundings.fontManager,
                                    surroundings.alerts,
                                    surroundings.workspace,
                                    surroundings.loadNib});
        m_isOpen = m_document->readFromData(m_oldFile);
        m_document->makeWindowControllers();
        m_document->setFileURL(m_path);
        m_document->submitPasswordToDecrypt(password);
        m_isOpen = m_isOpen && !m_document->isEncrypted();
    }

    bool isOpen() const { return m_isOpen; }

    SaveUnderTorture save()
    {
        return {[this] { prepare(); }, [this] { return saveDocument(); }, [this] { return look(); },
                [this] {
                    return leftovers();
                }};
    }

private:
    void prepare()
    {
        for (const QString &name : leftovers()) {
            QFile::remove(m_folder.filePath(name));
        }
        QVERIFY(!m_files.replace(m_path, m_oldFile));
        m_document->setFileURL(m_path);
    }

    SaveUnderTorture::Answer saveDocument()
    {
        m_document->setMyTextViewData(newBody);
        m_document->updateChangeCount(NSDocumentChangeType::Done);
        bool isSaved = false;
        m_document->NSDocument::saveDocument([&isSaved](bool saved) { isSaved = saved; });
        auto &window = static_cast<ScriptedWindow &>(*m_document->myWindow);
        // What a save left that was killed, or a look that failed, is to the document as another
        // program's work: the user has it written all the same.
        while (!isSaved && !window.alerts.isEmpty()
               && window.alerts.last().buttons.value(1) == "Save Anyway"_L1) {
            window.answer(AlertAnswer::Second);
            m_world.queue.runAll();
        }
        if (isSaved) {
            return SaveUnderTorture::Saved;
        }
        // Edited and told of: nothing else may follow a save that failed.
        if (!m_document->isDocumentEdited() || window.attachedSheet() == nullptr) {
            return SaveUnderTorture::Saved;
        }
        return window.alerts.last().informativeText.contains(u"has not been changed"_s)
            ? SaveUnderTorture::Refused
            : SaveUnderTorture::SavedUnsurely;
    }

    /// A file that opens with the password, with the one text or the other.
    SaveUnderTorture::State look()
    {
        const auto data = m_files.read(m_path).data;
        MyDocument opened(m_world.surroundings());
        if (!data || !opened.readFromData(*data)) {
            return SaveUnderTorture::State::Broken;
        }
        if (data == m_oldFile) {
            return SaveUnderTorture::State::Old;
        }
        opened.setPlainPassword(password);
        return opened.Decript() == 0 && opened.myTextViewData() == newBody
            ? SaveUnderTorture::State::New
            : SaveUnderTorture::State::Broken;
    }

    QStringList leftovers() const
    {
        QStringList rest =
            QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
        rest.removeAll(u"letter.quorvane"_s);
        return rest;
    }

    World m_world;
    PosixFileStore m_files;
    QTemporaryDir m_folder;
    QString m_path;
    QByteArray m_oldFile;
    std::unique_ptr<MyDocument> m_document;
    bool m_isOpen = false;
};

} // namespace

class TestDocumentTorture : public QObject
{
    Q_OBJECT

private slots:
    void aSaveBrokenOffAnywhereLeavesAFileThatOpens();
};

void TestDocumentTorture::aSaveBrokenOffAnywhereLeavesAFileThatOpens()
{
    Scene scene;
    QVERIFY(scene.isOpen());
    const TortureReport report = torture(scene.save());
    qInfo("%d calls, broken off in %d ways", report.calls, report.runs);
    QVERIFY2(report.complaints.isEmpty(), qPrintable(report.complaints.join(u'\n')));
    QVERIFY(report.calls > 0);
}

QTEST_GUILESS_MAIN(TestDocumentTorture)
#include "tst_documenttorture.moc"
