#pragma once

#include <QWidget>

class QLabel;

namespace quorvane {

/// Shows how well a new password protects, as a bar and in words. It informs and never refuses.
class PasswordMeter final : public QWidget
{
    Q_OBJECT

public:
    explicit PasswordMeter(QWidget *parent);

    /// An empty one shows nothing.
    void setPassword(const QString &password);
    QString text() const; ///< The words, empty where nothing is shown.

private:
    class Bar;

    Bar *m_bar = nullptr;
    QLabel *m_words = nullptr;
};

} // namespace quorvane
