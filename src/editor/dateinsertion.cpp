#include "editor/dateinsertion.h"

#include "editor/textcommands.h"
#include "editor/texteditor.h"
#include "util/qvdatetagelaborated.h"

#include <QLocale>
#include <QMenu>

#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

/// The forms that are the same everywhere; those of the language come before them.
const QStringList &taggedForms()
{
    static const QStringList forms = {
        u"<YY>-<mm>-<dd>"_s, u"<YY>-<mm>-<dd> <hh>:<ii>"_s, u"<YY>-<mm>-<dd>T<hh>:<ii>:<ss>"_s,
        u"<dd>.<mm>.<YY>"_s, u"<dd>/<mm>/<YY>"_s,           u"<hh>:<ii>"_s,
    };
    return forms;
}

} // namespace

DateInsertion::DateInsertion(TextEditor &editor, TextCommands &commands, Clock clock)
    : m_editor(editor)
    , m_clock(std::move(clock))
{
    commands.define(TextMenu::DateAndTime, [this](QMenu &menu) { fill(menu); });
}

void DateInsertion::fill(QMenu &menu)
{
    const QDateTime now = m_clock();
    const QLocale locale;
    const QVDateTagElaborated tags([now] { return now; });
    QStringList texts = {
        locale.toString(now.date(), QLocale::LongFormat),
        locale.toString(now.date(), QLocale::ShortFormat),
        locale.toString(now.date(), QLocale::LongFormat) + u", "_s
            + locale.toString(now.time(), QLocale::ShortFormat),
    };
    for (const QString &form : taggedForms()) {
        texts.append(tags.transformedValue(form).toString());
    }
    texts.removeDuplicates();
    for (const QString &text : std::as_const(texts)) {
        QAction *item = menu.addAction(QString(text).replace(u'&', u"&&"_s));
        item->setEnabled(!m_editor.isReadOnly());
        QObject::connect(item, &QAction::triggered, &m_editor, [this, text] {
            if (!m_editor.isReadOnly() && !m_editor.isContentHidden()) {
                m_editor.insertText(text, u"Insert Date"_s);
                m_editor.setFocus();
            }
        });
    }
}

} // namespace quorvane
