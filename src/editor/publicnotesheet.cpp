#include "editor/publicnotesheet.h"

#include "editor/publicnoteview.h"

#include <QBoxLayout>

using namespace Qt::StringLiterals;

namespace quorvane {

PublicNoteSheet::PublicNoteSheet(QWidget *host)
    : SheetDialog(u"Public Note"_s,
                  u"Everyone who has the file can read this note, without the password: it is not "
                  "encrypted. It is shown while the document is locked."_s,
                  host)
    , m_view(new PublicNoteView(this))
{
    m_view->setMinimumSize(400, 140);
    column().addWidget(m_view, 1);
    addCloseButton(u"Close"_s);
    resize(480, 340);
}

void PublicNoteSheet::reject()
{
    emit closeAsked();
}

void PublicNoteSheet::focusFirst()
{
    m_view->setFocus();
}

} // namespace quorvane
