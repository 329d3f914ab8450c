#pragma once

#include "editor/sheetdialog.h"

#include <QSizeF>

class QCheckBox;
class QDoubleSpinBox;
class QGridLayout;

namespace quorvane {

/// Asks how large a picture is to be shown. Sizes are in a document's pixels.
class PictureSizeSheet final : public SheetDialog
{
    Q_OBJECT

public:
    PictureSizeSheet(const QString &name, const QSizeF &size, const QSizeF &natural, QWidget *host);

    QSizeF chosenSize() const;

    void accept() override;
    void reject() override;

signals:
    /// A button was pressed: the code is QDialog's.
    void answered(int code);

protected:
    void focusFirst() override;

private:
    QDoubleSpinBox *addField(QGridLayout &grid, const QString &title, double value);
    void follow(bool width);
    void showOriginal();

    QSizeF m_natural;
    double m_ratio; // width by height, kept while the box is checked
    QDoubleSpinBox *m_width = nullptr;
    QDoubleSpinBox *m_height = nullptr;
    QCheckBox *m_keepsRatio = nullptr;
};

} // namespace quorvane
