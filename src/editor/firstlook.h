#pragma once

#include <QObject>
#include <QTextFormat>

#include <functional>
#include <vector>

class QTextDocument;

namespace quorvane {

/// The look of what is typed at the very beginning of a text that is empty there. The toolkit keeps
/// it apart from the text, and no undo takes a change of it back: this does.
class FirstLook final : public QObject
{
    Q_OBJECT

public:
    /// Begins anew with that document.
    void watch(QTextDocument *document);
    /// Makes one step of undo, and keeps what it does to the look.
    void follow(const std::function<void()> &change);

private:
    struct Change
    {
        int start; // of its commands on the stack
        int end;
        QTextCharFormat before;
        QTextCharFormat after;
    };

    QTextCharFormat look() const;
    void forgetUndone();
    void settle();

    QTextDocument *m_document = nullptr;
    std::vector<Change> m_changes; // in the order of the stack
    int m_end = 0; // of the stack that is done
    bool m_follows = false;
};

} // namespace quorvane
