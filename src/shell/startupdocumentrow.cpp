#include "shell/startupdocumentrow.h"

#include "platform/nsuserdefaults.h"
#include "product/settings.h"
#include "shell/qvappdelegatebase.h"
#include "shell/shownpath.h"
#include "util/valuetransformers.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int pathWidth = 400;

bool isTrue(const QString &transformer, const QVariant &value)
{
    const NSValueTransformer *found = NSValueTransformer::valueTransformerForName(transformer);
    return found && found->transformedValue(value).toBool();
}

} // namespace

StartupDocumentRow::StartupDocumentRow(QVAppDelegateBase &delegate, NSUserDefaults &defaults,
                                       QComboBox &action)
    : m_delegate(delegate)
    , m_defaults(defaults)
    , m_action(action)
    , m_name(new QLabel(this))
    , m_path(new QLabel(this))
    , m_status(new QLabel(this))
{
    m_name->setTextFormat(Qt::PlainText);
    m_path->setTextFormat(Qt::PlainText);
    m_status->setTextFormat(Qt::PlainText);
    QFont bold = m_name->font();
    bold.setBold(true);
    m_name->setFont(bold);
    // On one line with its label, which a form gives this height beside a high field.
    m_name->setMinimumHeight(m_name->sizeHint().height() * 7 / 4);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->addWidget(m_name);
    column->addWidget(m_path);
    column->addSpacing(4);
    column->addWidget(newButtons());
    column->addSpacing(4);
    column->addWidget(m_status);
    connect(&m_action, &QComboBox::currentTextChanged, this, &StartupDocumentRow::show);
    connect(&m_delegate, &QVAppDelegateBase::StartupDocPathMessageStringChanged, this,
            &StartupDocumentRow::show);
    connect(&m_delegate, &QVAppDelegateBase::StartupDocSpecifiedChanged, this,
            &StartupDocumentRow::show);
    connect(&m_defaults, &NSUserDefaults::changed, this, [this](const QString &key) {
        if (key == settings::startupSelectedDocBookmark) {
            show();
        }
    });
    show();
}

QWidget *StartupDocumentRow::newButtons()
{
    auto *buttons = new QWidget(this);
    auto *row = new QHBoxLayout(buttons);
    row->setContentsMargins({});
    const auto add = [&](const QString &title, const QString &description) {
        auto *button = new QPushButton(title, buttons);
        button->setAutoDefault(true); // Enter presses it, too
        button->setAccessibleDescription(description);
        row->addWidget(button);
        return button;
    };
    m_select = add(u"Se&lect…"_s, u"Chooses the document to open at startup"_s);
    auto *test = add(u"&Test Open"_s, u"Opens the document as a start does"_s);
    auto *showFile = add(u"Sho&w in Files"_s, u"Shows the document's file in the file manager"_s);
    auto *clear = add(u"&Clear"_s, u"Forgets the document to open at startup"_s);
    row->addStretch();
    connect(m_select, &QPushButton::clicked, &m_delegate, &QVAppDelegateBase::selectStartupDoc);
    connect(test, &QPushButton::clicked, &m_delegate, &QVAppDelegateBase::testOpenStartupDoc);
    connect(showFile, &QPushButton::clicked, &m_delegate,
            &QVAppDelegateBase::showInFinderStartupDoc);
    connect(clear, &QPushButton::clicked, &m_delegate, &QVAppDelegateBase::clearStartupSelectedDoc);
    m_ofChosen = {test, showFile, clear};
    return buttons;
}

void StartupDocumentRow::show()
{
    const QVariant bookmark = m_defaults.objectForKey(settings::startupSelectedDocBookmark);
    const QString name = QVNameFromBookmark().transformedValue(bookmark).toString();
    const QString path = QVPathFromBookmark().transformedValue(bookmark).toString();
    const QString folder = path.isEmpty() ? QString() : shownFolder(path);
    m_name->setText(name.isEmpty() ? u"No document selected"_s : name);
    m_path->setText(m_path->fontMetrics().elidedText(folder, Qt::ElideMiddle, pathWidth));
    m_path->setToolTip(path);
    m_path->setAccessibleName(path); // not cut to what there is room for
    m_status->setText(m_delegate.StartupDocPathMessageString());
    const bool isWanted = isTrue(u"valueIsOpSelDoc"_s, m_action.currentText());
    m_name->setEnabled(isWanted);
    m_path->setEnabled(isWanted);
    m_select->setEnabled(isWanted);
    for (QPushButton *button : std::as_const(m_ofChosen)) {
        button->setEnabled(isWanted && m_delegate.StartupDocSpecified());
    }
}

} // namespace quorvane
