#pragma once

#include <QComboBox>

class QStringListModel;

namespace quorvane {

/// Offers the families of fonts that there are: their names, to be read whatever the font is made
/// of, and a sample of each.
class FontFamilyBox final : public QComboBox
{
    Q_OBJECT

public:
    explicit FontFamilyBox(QWidget *parent = nullptr);

    void showPopup() override;

private:
    void list();

    QStringListModel *m_families;
};

} // namespace quorvane
