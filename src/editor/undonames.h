#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <vector>

class QTextDocument;

namespace quorvane {

/// What each step of a document's undo stack is called. The toolkit's stack has no names.
class UndoNames final : public QObject
{
public:
    /// The steps that are made while it lives bear its name.
    class Scope final
    {
    public:
        Scope(UndoNames &names, const QString &name);
        ~Scope();
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

    private:
        UndoNames &m_names;
        QString m_outer;
    };

    using QObject::QObject;

    /// From now on names the steps of this document, whose stack is empty.
    void watch(QTextDocument *document);

    /// Of the scope that is open; empty where none is.
    const QString &current() const { return m_name; }

    QString undoName() const; ///< Of the step that undo takes back; empty where there is none.
    QString redoName() const;

private:
    struct Step
    {
        int end; // how many commands the stack holds behind it
        QString name;
    };

    void noteStep();

    QPointer<QTextDocument> m_document;
    std::vector<Step> m_steps;
    int m_end = 0; // of the stack, before what is done now
    QString m_name;
};

} // namespace quorvane
