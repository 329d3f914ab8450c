#include "shell/startwindow.h"

#include "editor/glyphpicture.h"
#include "editor/palelabel.h"
#include "platform/nsdocumentcontroller.h"
#include "product/release.h"
#include "shell/productlabel.h"
#include "shell/recentlist.h"
#include "shell/recentmenu.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int markExtent = 56;
constexpr QSize initialSize(540, 560);
constexpr QSize smallestSize(400, 400);
constexpr double largestShare = 0.9; // of the screen

} // namespace

StartWindow::StartWindow(const MenuSurroundings &surroundings)
    : m_surroundings(surroundings)
    , m_recents(new RecentList(surroundings.recents))
{
    setWindowTitle(productName);
    setContextMenuPolicy(Qt::NoContextMenu);
    auto *page = new QWidget(this);
    auto *column = new QVBoxLayout(page);
    column->setContentsMargins(28, 26, 28, 28);
    column->setSpacing(0);
    column->addWidget(newHeader());
    column->addSpacing(24);
    column->addWidget(newButtons());
    column->addSpacing(26);
    auto *heading = new QLabel(u"&Recent Documents"_s, page);
    heading->setBuddy(m_recents);
    column->addWidget(heading);
    column->addSpacing(8);
    column->addWidget(m_recents, 1);
    setCentralWidget(page);
    setMinimumSize(smallestSize);
    resize(initialSize.boundedTo(screen()->availableSize() * largestShare));
    new MainMenu(*this, m_surroundings); // owned by the window
    connect(m_recents, &RecentList::chosen, this,
            [this](const QString &path) { openRecentDocument(path, m_surroundings); });
    if (m_recents->count() > 0) {
        m_recents->setFocus();
    }
}

QWidget *StartWindow::newHeader()
{
    auto *header = new QWidget(this);
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins({});
    row->setSpacing(16);
    row->addWidget(new GlyphPicture(Glyph::Padlock, markExtent, header));
    auto *words = new QVBoxLayout;
    words->setSpacing(2);
    auto *what = new PaleLabel(u"Documents that are kept encrypted, always."_s, header);
    what->setWordWrap(true);
    words->addStretch();
    words->addWidget(newProductLabel(header));
    words->addWidget(what);
    words->addStretch();
    row->addLayout(words, 1);
    return header;
}

QWidget *StartWindow::newButtons()
{
    auto *buttons = new QWidget(this);
    auto *row = new QHBoxLayout(buttons);
    row->setContentsMargins({});
    row->setSpacing(12);
    NSDocumentController *documents = &m_surroundings.documents;
    const auto add = [&](const QString &title) {
        auto *button = new QPushButton(title, buttons);
        button->setAutoDefault(true); // Enter presses it, too
        button->setMinimumHeight(button->sizeHint().height() * 3 / 2);
        row->addWidget(button, 1);
        return button;
    };
    connect(add(u"New &Document"_s), &QPushButton::clicked, documents,
            [documents] { documents->newDocument(); });
    connect(add(u"Open Do&cument…"_s), &QPushButton::clicked, documents,
            [documents] { documents->openDocument(); });
    return buttons;
}

void StartWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    Q_EMIT closed();
}

// What has happened to the files meanwhile shows when the user comes back.
void StartWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        m_recents->reload();
    }
    QMainWindow::changeEvent(event);
}

} // namespace quorvane
