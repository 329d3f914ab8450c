#include "editor/sheetdialog.h"

#include "editor/scrolleddialog.h"

#include <QApplication>
#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace quorvane {

namespace {

constexpr int side = 24;
constexpr int end = 20;
constexpr int distance = 14;
constexpr int buttonHeight = 28;

/// Wants to be as wide as what it shows.
class ContentArea final : public QScrollArea
{
public:
    explicit ContentArea(QWidget *parent)
        : QScrollArea(parent)
    {
        setFrameShape(QFrame::NoFrame);
        setWidgetResizable(true);
        setFocusPolicy(Qt::NoFocus);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    }

    QSize sizeHint() const override { return widget()->sizeHint(); }

    QSize minimumSizeHint() const override
    {
        return {widget()->minimumSizeHint().width(), fontMetrics().height()};
    }
};

/// All that the keyboard reaches, in the order of the layout.
void collectFields(const QLayout &layout, QList<QWidget *> &fields)
{
    for (int i = 0; i < layout.count(); ++i) {
        QLayoutItem *item = layout.itemAt(i);
        QWidget *widget = item->widget();
        const QLayout *inner = widget ? widget->layout() : item->layout();
        if (widget && (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus) {
            fields << widget;
        } else if (inner) {
            collectFields(*inner, fields);
        }
    }
}

} // namespace

SheetDialog::SheetDialog(const QString &title, const QString &explanation, QWidget *host)
    : QDialog(host)
    , m_content(new QWidget)
    , m_column(new QVBoxLayout(m_content))
    , m_foot(new QVBoxLayout)
{
    setWindowTitle(title);
    setWindowModality(Qt::WindowModal);
    setAccessibleDescription(explanation);
    m_column->setContentsMargins(side, end, side, distance);
    m_column->setSpacing(distance);
    m_foot->setContentsMargins(side, 0, side, end);
    auto *heading = new QLabel(title, m_content);
    QFont font = heading->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.2);
    heading->setFont(font);
    m_column->addWidget(heading);
    auto *words = new QLabel(explanation, m_content);
    words->setWordWrap(true);
    m_column->addWidget(words);
    auto *area = new ContentArea(this);
    area->setWidget(m_content);
    m_content->installEventFilter(this);
    auto *all = new QVBoxLayout(this);
    all->setContentsMargins({});
    all->setSpacing(0);
    all->addWidget(area, 1);
    all->addLayout(m_foot);
    connect(this, &QDialog::finished, this, [this](int code) {
        if (const auto ended = std::exchange(m_ended, nullptr)) {
            ended(code);
        }
    });
}

QPushButton &SheetDialog::addButtons(const QString &acceptTitle, const QString &rejectTitle)
{
    auto *buttons = new QDialogButtonBox(this);
    QPushButton *accepts = buttons->addButton(acceptTitle, QDialogButtonBox::AcceptRole);
    QPushButton *rejects = buttons->addButton(rejectTitle, QDialogButtonBox::RejectRole);
    accepts->setDefault(true);
    rejects->setAutoDefault(false);
    for (QPushButton *button : {accepts, rejects}) {
        button->setMinimumHeight(buttonHeight);
    }
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { accept(); });
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
    m_foot->addWidget(buttons);
    return *accepts;
}

void SheetDialog::addCloseButton(const QString &title)
{
    auto *buttons = new QDialogButtonBox(this);
    QPushButton *closes = buttons->addButton(title, QDialogButtonBox::RejectRole);
    closes->setDefault(true);
    closes->setMinimumHeight(buttonHeight);
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
    m_foot->addWidget(buttons);
}

void SheetDialog::beginSheet(std::function<void(int code)> ended)
{
    m_ended = std::move(ended);
    orderTabs();
    nameFields();
    const int usual = testAttribute(Qt::WA_Resized) ? width() : sizeHint().width();
    resize(std::max(usual, minimumWidth()), testAttribute(Qt::WA_Resized) ? height() : 0);
    makeRoom();
    open();
    focusFirst();
}

bool SheetDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_content && event->type() == QEvent::LayoutRequest && isVisible()) {
        makeRoom();
    }
    return QDialog::eventFilter(watched, event);
}

int SheetDialog::neededHeight() const
{
    // A scroll bar that came up on the way goes only where all has room beside it.
    const int narrow = width() - style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const int content = m_column->hasHeightForWidth() ? m_column->totalHeightForWidth(narrow)
                                                      : m_column->totalSizeHint().height();
    return content + m_foot->sizeHint().height();
}

// Layouts do not enlarge a window for words that wrap. It stays as large as it was needed once: a
// sheet that went up and down with each key would be worse.
void SheetDialog::makeRoom()
{
    const int most = tallestOnScreen(*this);
    const int needed = std::min(neededHeight(), most);
    if (needed > minimumHeight()) {
        setMinimumHeight(needed);
    }
    setMaximumHeight(std::max(most, needed));
}

void SheetDialog::orderTabs()
{
    QList<QWidget *> fields;
    collectFields(*m_column, fields);
    collectFields(*m_foot, fields);
    for (qsizetype i = 1; i < fields.size(); ++i) {
        setTabOrder(fields[i - 1], fields[i]);
    }
}

// Assistive programs would read the colon and the key of the label.
void SheetDialog::nameFields()
{
    const QList<QLabel *> labels = m_content->findChildren<QLabel *>();
    for (const QLabel *label : labels) {
        if (QWidget *field = label->buddy(); field && field->accessibleName().isEmpty()) {
            field->setAccessibleName(label->text().remove(u'&').remove(u':'));
        }
    }
}

void SheetDialog::endSheet(int code)
{
    // A menu that is open on the sheet would stay.
    while (QWidget *popup = QApplication::activePopupWidget()) {
        popup->close();
    }
    done(code);
}

void SheetDialog::putForward()
{
    raise();
    activateWindow();
}

} // namespace quorvane
