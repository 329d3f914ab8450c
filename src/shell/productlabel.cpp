#include "shell/productlabel.h"

#include "product/release.h"

#include <QLabel>

namespace quorvane {

namespace {

constexpr double nameScale = 1.9; // of the usual size of text

} // namespace

QLabel *newProductLabel(QWidget *parent)
{
    auto *label = new QLabel(productName, parent);
    QFont large = label->font();
    large.setPointSizeF(large.pointSizeF() * nameScale);
    large.setWeight(QFont::DemiBold);
    label->setFont(large);
    return label;
}

} // namespace quorvane
