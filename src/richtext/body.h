#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

class QTextDocument;

namespace quorvane {

enum class BodyForm { Empty, FlatRtfd, Rtf, PlainText };

/// The form of a document's body, by its first bytes.
BodyForm formOf(const QByteArray &body);

/// Puts the body in place of all that \a document holds, which must not be shown yet: one edit
/// block, no undo of it. Undo is enabled afterwards where it was before; the document is
/// unmodified. Files beside the text go to the document's AttachmentStore. Every body can be read:
/// what is broken gives what is left of it. \a progress is told now and then how much is read, from
/// 0 to 1.
void readBody(const QByteArray &body, QTextDocument &document,
              const std::function<void(double done)> &progress = {});

/// Whether the body says more than readBody keeps, so that a text that is edited and written again
/// would lose it.
bool bodyHoldsSurplus(const QByteArray &body);

/// The document as flattened RTFD. The same document gives the same bytes.
QByteArray bodyFromDocument(const QTextDocument &document);

/// The characters of the body: paragraphs parted by LF, U+FFFC for an attachment. No document is
/// built.
QString plainTextFromBody(const QByteArray &body);

} // namespace quorvane
