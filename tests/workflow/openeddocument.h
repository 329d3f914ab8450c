#pragma once

#include "editor/placedattachment.h"
#include "editor/textcommands.h"
#include "richtext/textproperties.h"
#include "workflow/realprogram.h"

#include <QBuffer>
#include <QClipboard>
#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QTemporaryDir>

using namespace quorvane;
using namespace Qt::StringLiterals;

inline const QString password = u"correct horse"_s;
inline const QString path = u"/documents/letter.quorvane"_s;
inline const QString object(QChar::ObjectReplacementCharacter);

inline QImage image(const QSize &size)
{
    QImage made(size, QImage::Format_RGB32);
    made.fill(Qt::darkGreen);
    return made;
}

inline QByteArray png(const QSize &size)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return image(size).save(&buffer, "PNG") ? bytes : QByteArray();
}

/// The program with one document from a file, unlocked.
struct Opened
{
    explicit Opened(const QByteArray &body = "text")
    {
        program.runtimePath = runtime.path();
        program.files.files.insert(path, program.fileOf(body, password));
        program.documents.openDocumentWithContentsOfURL(path);
        unlock();
        editor().moveCursor(QTextCursor::End);
    }

    void unlock()
    {
        RealProgram::type(program.window().lockedPage(), u"Master Password"_s, password);
        QTest::keyClick(passwordField(), Qt::Key_Return);
    }

    QLineEdit *passwordField() const
    {
        return RealProgram::field(program.window().lockedPage(), u"Master Password"_s);
    }

    MyDocument &document() const { return *program.document(); }

    TextEditor &editor() const { return program.editor(); }

    QAction &action(TextCommand command) const
    {
        program.window().commands().validate();
        return program.window().commands().action(command);
    }

    /// Presses that button of the question that comes.
    bool answer(const QString &button)
    {
        return QTest::qWaitFor([] { return RealProgram::dialog() != nullptr; })
            && RealProgram::press(button)
            && QTest::qWaitFor([] { return RealProgram::dialog() == nullptr; });
    }

    bool insert(TextCommand command, const QString &name, const QByteArray &bytes)
    {
        program.files.files.insert(u"/home/"_s + name, bytes);
        return choose(command, u"/home/"_s + name);
    }

    bool choose(TextCommand command, const QString &file)
    {
        // A sheet that was answered goes on a later turn.
        const bool mayRun = QTest::qWaitFor([&] { return action(command).isEnabled(); });
        action(command).trigger();
        const bool isChosen =
            mayRun && QTest::qWaitFor([&] { return program.panels.answerSheet(file); });
        QCoreApplication::processEvents();
        return isChosen;
    }

    void paste(std::unique_ptr<QMimeData> data) const
    {
        QGuiApplication::clipboard()->setMimeData(data.release());
        editor().paste();
    }

    void drop(const QMimeData &data) const
    {
        const QPoint place(30, 30);
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(editor().viewport(), &enter);
        QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, {});
        if (enter.isAccepted()) {
            QCoreApplication::sendEvent(editor().viewport(), &drop);
        }
    }

    PlacedAttachment attachment(int position) const
    {
        return attachmentAt(*editor().document(), position).value_or(PlacedAttachment());
    }

    QSize sizeAt(int position) const // in pixels
    {
        const QTextCharFormat format = attachment(position).format;
        return QSize(format.intProperty(AttachmentWidth), format.intProperty(AttachmentHeight))
            / 15;
    }

    QString undoName() const { return editor().undoNames().undoName(); }

    void drag(const QPointF &from, const QPointF &to, Qt::KeyboardModifiers modifiers = {},
              bool isDropped = true) const
    {
        QWidget *view = editor().viewport();
        QTest::mousePress(view, Qt::LeftButton, {}, from.toPoint());
        QMouseEvent move(QEvent::MouseMove, to, view->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                         modifiers);
        QCoreApplication::sendEvent(view, &move);
        if (!isDropped) {
            QTest::keyClick(&editor(), Qt::Key_Escape);
        }
        QTest::mouseRelease(view, Qt::LeftButton, modifiers, to.toPoint());
    }

    QStringList copies() const
    {
        QStringList found;
        for (const QString &folder :
             QDir(runtime.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            const QDir inner(runtime.filePath(folder));
            for (const QString &each : inner.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
                found += QDir(inner.filePath(each)).entryList(QDir::Files);
            }
        }
        return found;
    }

    QTemporaryDir runtime;
    RealProgram program;
};

inline std::unique_ptr<QMimeData> imageData(const QSize &size)
{
    auto data = std::make_unique<QMimeData>();
    data->setImageData(image(size));
    return data;
}
