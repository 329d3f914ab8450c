#pragma once

#include "editor/sheetdialog.h"

#include <QTextBlockFormat>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;

namespace quorvane {

class LengthField;

/// The sheet of all that a paragraph has beside its text. It begins with what one paragraph has;
/// what is not touched in it stays as it is in each paragraph.
class ParagraphSheet final : public SheetDialog
{
    Q_OBJECT

public:
    ParagraphSheet(const QTextBlockFormat &format, bool isListItem, QWidget *host);

    /// Gives a paragraph what was changed in the sheet.
    void applyTo(QTextBlockFormat &format) const;

protected:
    void focusFirst() override;

private:
    void addAlignment(QFormLayout &form);
    void addSpacing(QFormLayout &form);
    void addIndents(QFormLayout &form, bool isListItem);
    LengthField *addLength(QFormLayout &form, const QString &title, bool isIndent, double pixels);
    void showSpacingUnit();

    QTextBlockFormat m_initial;
    QComboBox *m_alignment = nullptr;
    QComboBox *m_spacing = nullptr;
    QDoubleSpinBox *m_spacingValue = nullptr;
    LengthField *m_before = nullptr;
    LengthField *m_after = nullptr;
    LengthField *m_left = nullptr;
    LengthField *m_right = nullptr;
    LengthField *m_first = nullptr;
    QCheckBox *m_pageBreak = nullptr;
    bool m_spacingIsTouched = false;
};

} // namespace quorvane
