#pragma once

#include <QListWidget>

namespace quorvane {

class RecentDocuments;

/// The recent documents as a list of rows: name above, folder below. A click or Enter opens one;
/// Delete, the cross at its end or its menu takes it off the list.
class RecentList final : public QListWidget
{
    Q_OBJECT

public:
    explicit RecentList(RecentDocuments &recents, QWidget *parent = nullptr);

    void reload();

Q_SIGNALS:
    void chosen(const QString &path);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    RecentDocuments &m_recents;
};

} // namespace quorvane
