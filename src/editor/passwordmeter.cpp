#include "editor/passwordmeter.h"

#include "document/passwordstrength.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPainter>

#include <array>

namespace quorvane {

namespace {

constexpr int barHeight = 6;
constexpr int barGap = 3;
constexpr int usualLines = 2;
// By level. All of them stand out from light and from dark windows.
constexpr std::array<QRgb, 6> colours {qRgb(0xd0, 0x3b, 0x3b), qRgb(0xd0, 0x3b, 0x3b),
                                       qRgb(0xd9, 0x77, 0x1f), qRgb(0xc2, 0x94, 0x0c),
                                       qRgb(0x2f, 0x9e, 0x55), qRgb(0x2f, 0x9e, 0x55)};
constexpr int fields = colours.size() - 1; // too short fills none

} // namespace

class PasswordMeter::Bar final : public QWidget
{
public:
    explicit Bar(QWidget *parent)
        : QWidget(parent)
    {
        setFixedHeight(barHeight);
    }

    void setLevel(int level)
    {
        m_level = level;
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        QColor empty = palette().color(QPalette::WindowText);
        empty.setAlphaF(0.18F);
        const double each = (width() + barGap) / double(fields);
        for (int i = 0; i < fields; ++i) {
            painter.setBrush(i < m_level ? QColor(colours[size_t(m_level)]) : empty);
            const QRectF field(i * each, 0, each - barGap, height());
            painter.drawRoundedRect(field, barHeight / 2.0, barHeight / 2.0);
        }
    }

private:
    int m_level = 0;
};

PasswordMeter::PasswordMeter(QWidget *parent)
    : QWidget(parent)
    , m_bar(new Bar(this))
    , m_words(new QLabel(this))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(m_bar);
    m_words->setWordWrap(true);
    m_words->setTextFormat(Qt::PlainText);
    m_words->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_words->setMinimumHeight(usualLines * m_words->fontMetrics().lineSpacing());
    column->addWidget(m_words);
}

void PasswordMeter::setPassword(const QString &password)
{
    if (password.isEmpty()) {
        m_bar->setLevel(0);
        m_words->clear();
        return;
    }
    const PasswordStrength strength = PasswordStrength::of(password);
    m_bar->setLevel(static_cast<int>(strength.level));
    m_words->setText(strength.text());
}

QString PasswordMeter::text() const
{
    return m_words->text();
}

} // namespace quorvane
