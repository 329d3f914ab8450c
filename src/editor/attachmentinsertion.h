#pragma once

#include "editor/editorsurroundings.h"

#include <QByteArray>
#include <QObject>
#include <QSizeF>
#include <QString>
#include <QStringList>

#include <vector>

class QImage;
class QMimeData;

namespace quorvane {

class NSWindow;
class TextCommands;
class TextEditor;

/// Puts files into the text, by command, paste or drop: pictures are shown, others stand as an
/// icon. Their bytes are in the document from then on. Each turn is one step of undo, and what
/// could not be put there is told of by its name.
class AttachmentInsertion final : public QObject
{
public:
    AttachmentInsertion(TextEditor &editor, TextCommands &commands, NSWindow &sheets,
                        const EditorSurroundings &world);

private:
    enum class As { Pictures, Files, WhateverTheyAre };

    struct Batch; // of files, on their way

    struct Item
    {
        QString name;
        QByteArray bytes;
        QSizeF size; // as a picture; empty for a file
    };

    void choose(As as);
    void insertFiles(const QStringList &paths, As as);
    void read(Batch batch);
    void readNow(const Batch &batch);
    void tell(const QStringList &problems);
    bool insert(std::vector<Item> items, const QString &undoName);
    Item pictureItem(const QString &name, const QByteArray &bytes) const;
    QSizeF shownSize(const QSizeF &natural) const;

    bool offers(const QMimeData &source) const;
    bool take(const QMimeData &source);
    bool takeImage(const QMimeData &source);

    TextEditor &m_editor;
    NSWindow &m_sheets;
    const EditorSurroundings &m_world;
};

} // namespace quorvane
