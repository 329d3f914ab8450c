#include "editor/publicnotesheet.h"

#include "editor/publicnoteview.h"

#include <QBoxLayout>
#include <QPushButton>

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
    auto *row = new QHBoxLayout;
    row->addStretch(1);
    auto *close = new QPushButton(u"Close"_s, this);
    close->setDefault(true);
    close->setMinimumHeight(28);
    connect(close, &QPushButton::clicked, this, &PublicNoteSheet::reject);
    row->addWidget(close);
    column().addLayout(row);
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
