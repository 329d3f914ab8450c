#include "document/mydocument.h"

#include <QPointer>

namespace quorvane {

using namespace Qt::StringLiterals;

void MyDocument::switchReadAndWrite()
{
    setMyIsEditable(!myIsEditable());
}

void MyDocument::setReadOnly()
{
    setMyIsEditable(false);
}

void MyDocument::setReadAndWrite()
{
    setMyIsEditable(true);
}

void MyDocument::makePlainText()
{
    if (!myWindow) {
        return;
    }
    const NSAlert alert {
        u"Converting all the content in plain text?"_s,
        u"Making a rich text content plain will lose all text styles (such as fonts and colors), "
        "images, attachments and document properties."_s,
        {u"OK"_s, u"Cancel"_s},
        NSAlertStyle::Informational,
    };
    myWindow->beginAlert(alert, [self = QPointer(this)](AlertAnswer answer) {
        if (self && !self->isClosed() && answer == AlertAnswer::First) {
            self->doMakePlainText();
        }
    });
}

void MyDocument::doMakePlainText()
{
    if (!myTextView || !myTextView->isRichText() || !myIsEditable()) {
        return;
    }
    const NSParagraphStyle paragraphs = myTextView->defaultParagraphStyle();
    const std::optional<NSFont> font = startupFont();
    if (myTextView->length() != 0 && !myTextView->setAttributes(font)) {
        return;
    }
    myTextView->setTypingAttributes(font);
    myTextView->setDefaultParagraphStyle(paragraphs);
    myTextView->setUsesAdaptiveColorMappingForDarkAppearance(true);
}

// Close to the conversion above, but for three things that are meant: a read-only document is no
// exception, the colours come first, and it is a change.
void MyDocument::setContentAsText(const QString &)
{
    if (!myTextView || !myTextView->isRichText()) {
        return;
    }
    const NSParagraphStyle paragraphs = myTextView->defaultParagraphStyle();
    const std::optional<NSFont> font = startupFont();
    myTextView->setUsesAdaptiveColorMappingForDarkAppearance(true);
    if (myTextView->length() != 0 && !myTextView->setAttributes(font)) {
        return;
    }
    myTextView->setTypingAttributes(font);
    myTextView->setDefaultParagraphStyle(paragraphs);
    updateChangeCount(NSDocumentChangeType::Done);
}

} // namespace quorvane
