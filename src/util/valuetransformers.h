#pragma once

#include "platform/nsvaluetransformer.h"

#include <QVariantList>

#include <utility>

namespace quorvane {

// Small conversions between a value of the model and what a control shows. Numbers go in and out as
// int, bool or float, strings as QString, lists as QVariantList. Nil counts as 0 or false unless a
// class says otherwise.

/// Base of those that give a number in one direction only.
class NumberTransformer : public NSValueTransformer
{
public:
    TransformedValueClass transformedValueClass() const override
    {
        return TransformedValueClass::NSNumber;
    }
};

class ReversibleNumberTransformer : public NumberTransformer
{
public:
    bool allowsReverseTransformation() const override { return true; }

    QVariant reverseTransformedValue(const QVariant &value) const override = 0;
};

class StringTransformer : public NSValueTransformer
{
public:
    TransformedValueClass transformedValueClass() const override
    {
        return TransformedValueClass::NSString;
    }
};

/// The bytes of an image <-> the image. Nil gives an empty image.
class QVImgData final : public NSValueTransformer
{
public:
    TransformedValueClass transformedValueClass() const override
    {
        return TransformedValueClass::NSImage;
    }

    bool allowsReverseTransformation() const override { return true; }

    QVariant transformedValue(const QVariant &value) const override; ///< A QImage.
    QVariant reverseTransformedValue(const QVariant &value) const override; ///< TIFF bytes.
};

class QVIntToBool final : public ReversibleNumberTransformer
{
public:
    QVariant transformedValue(const QVariant &value) const override;
    QVariant reverseTransformedValue(const QVariant &value) const override;
};

class QVNegateIntToBool final : public ReversibleNumberTransformer
{
public:
    QVariant transformedValue(const QVariant &value) const override;
    QVariant reverseTransformedValue(const QVariant &value) const override;
};

/// 1 for a list of two and more; in spite of the name, one element gives 0.
class QVOneIfOneInArray final : public ReversibleNumberTransformer
{
public:
    QVariant transformedValue(const QVariant &value) const override;
    QVariant reverseTransformedValue(const QVariant &value) const override;
};

/// The path of a bookmarked file; nil for a bookmark that leads nowhere.
class QVPathFromBookmark final : public StringTransformer
{
public:
    QVariant transformedValue(const QVariant &value) const override;
};

class QVNameFromBookmark final : public StringTransformer
{
public:
    QVariant transformedValue(const QVariant &value) const override;
};

class QV1IfNot0 final : public NumberTransformer
{
public:
    QVariant transformedValue(const QVariant &value) const override;
};

class QVNumberBoolToNumberNum final : public ReversibleNumberTransformer
{
public:
    QVariant transformedValue(const QVariant &value) const override;
    QVariant reverseTransformedValue(const QVariant &value) const override;
};

// The four that compare with a reference see 16 bits of the value: 65536 compares as 0, and a
// reference outside that range is never equal to anything.

class QV1IfEqualToRef final : public NumberTransformer
{
public:
    explicit QV1IfEqualToRef(qint32 value)
        : m_myRefValue(value)
    { }

    QVariant transformedValue(const QVariant &value) const override;

private:
    qint32 m_myRefValue;
};

class QVValueIsEqualToRef : public ReversibleNumberTransformer
{
public:
    explicit QVValueIsEqualToRef(qint32 value)
        : m_myRefValue(value)
    { }

    QVariant transformedValue(const QVariant &value) const override;
    QVariant reverseTransformedValue(const QVariant &value) const override; ///< Nil for false.

private:
    qint32 m_myRefValue;
};

/// QVValueIsEqualToRef with a digit for its reference, unless another is given.
template <qint32 digit> class QVValueIsDigit final : public QVValueIsEqualToRef
{
public:
    explicit QVValueIsDigit(qint32 value = digit)
        : QVValueIsEqualToRef(value)
    { }
};

using QVValueIs0 = QVValueIsDigit<0>;
using QVValueIs1 = QVValueIsDigit<1>;
using QVValueIs2 = QVValueIsDigit<2>;
using QVValueIs3 = QVValueIsDigit<3>;
using QVValueIs4 = QVValueIsDigit<4>;
using QVValueIs5 = QVValueIsDigit<5>;
using QVValueIs6 = QVValueIsDigit<6>;
using QVValueIs7 = QVValueIsDigit<7>;
using QVValueIs8 = QVValueIsDigit<8>;
using QVValueIs9 = QVValueIsDigit<9>;

class QVValueIsGreaterOfRef final : public NumberTransformer
{
public:
    explicit QVValueIsGreaterOfRef(qint32 value)
        : m_myRefValue(value)
    { }

    QVariant transformedValue(const QVariant &value) const override;

private:
    qint32 m_myRefValue;
};

class QVValueIsSmallerOfRef final : public NumberTransformer
{
public:
    explicit QVValueIsSmallerOfRef(qint32 value)
        : m_myRefValue(value)
    { }

    QVariant transformedValue(const QVariant &value) const override;

private:
    qint32 m_myRefValue;
};

class QVValueNotEqualToRef final : public NumberTransformer
{
public:
    explicit QVValueNotEqualToRef(qint32 value)
        : m_myRefValue(value)
    { }

    QVariant transformedValue(const QVariant &value) const override;

private:
    qint32 m_myRefValue;
};

/// Its string, whatever goes in.
class QVReturnInitStr final : public StringTransformer
{
public:
    explicit QVReturnInitStr(QString string)
        : m_myRefString(std::move(string))
    { }

    QVariant transformedValue(const QVariant &) const override { return m_myRefString; }

private:
    QString m_myRefString;
};

/// A product in single precision.
class QVValueMultipliedBy final : public NumberTransformer
{
public:
    explicit QVValueMultipliedBy(QVariant value)
        : m_myRefValue(std::move(value))
    { }

    QVariant transformedValue(const QVariant &value) const override;

private:
    QVariant m_myRefValue;
};

/// The height of a row, in points, for a font size.
class QVHeightForFontSize final : public NumberTransformer
{
public:
    QVariant transformedValue(const QVariant &value) const override;
};

/// Says of itself that it gives a string, and gives a boolean.
class QVValueIsEqualToStr final : public StringTransformer
{
public:
    explicit QVValueIsEqualToStr(QString string)
        : m_myRefString(std::move(string))
    { }

    QVariant transformedValue(const QVariant &value) const override;

private:
    QString m_myRefString;
};

/// The characters of an archived text.
class QVUnarchivieFromDataToText final : public StringTransformer
{
public:
    QVariant transformedValue(const QVariant &value) const override;
};

class QVValueIsInSet final : public NumberTransformer
{
public:
    explicit QVValueIsInSet(QVariantList set)
        : m_myRefSet(std::move(set))
    { }

    QVariant transformedValue(const QVariant &value) const override;

private:
    QVariantList m_myRefSet;
};

class QVValueIsInArray final : public NumberTransformer
{
public:
    explicit QVValueIsInArray(QVariantList array)
        : m_myRefArray(std::move(array))
    { }

    QVariant transformedValue(const QVariant &value) const override;

private:
    QVariantList m_myRefArray;
};

/// Nothing is left without the blanks at both ends; true for nil.
class QVEmptyTrimmedString final : public NumberTransformer
{
public:
    QVariant transformedValue(const QVariant &value) const override;
};

class QVFilledTrimmedString final : public NumberTransformer
{
public:
    QVariant transformedValue(const QVariant &value) const override;
};

} // namespace quorvane
