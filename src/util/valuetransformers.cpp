#include "util/valuetransformers.h"

#include "platform/nskeyedarchiver.h"
#include "platform/nsurlbookmark.h"
#include "util/qvstringutils.h"

#include <QFileInfo>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

NSNumber numberOf(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return NSNumber::numberWithBool(value.toBool());
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::QString:
        return NSNumber::numberWithDouble(value.toDouble());
    case QMetaType::ULongLong:
        return NSNumber::numberWithUnsignedLong(value.toULongLong());
    default:
        return NSNumber::numberWithLong(value.toLongLong());
    }
}

// Cut to 16 bits and widened again: existing bindings count on what that gives.
qint32 shortOf(const QVariant &value)
{
    return static_cast<qint16>(static_cast<quint64>(numberOf(value).longValue()) & 0xffff);
}

QVariant one(bool holds)
{
    return holds ? 1 : 0;
}

std::optional<QString> fileOf(const QVariant &bookmark)
{
    const std::optional<ResolvedBookmark> resolved = nsurlbookmark::resolve(bookmark.toByteArray());
    return resolved ? std::optional(resolved->path) : std::nullopt;
}

} // namespace

QVariant QVIntToBool::transformedValue(const QVariant &value) const
{
    return numberOf(value).intValue() != 0;
}

QVariant QVIntToBool::reverseTransformedValue(const QVariant &value) const
{
    return one(numberOf(value).boolValue());
}

QVariant QVNegateIntToBool::transformedValue(const QVariant &value) const
{
    return numberOf(value).intValue() == 0;
}

QVariant QVNegateIntToBool::reverseTransformedValue(const QVariant &value) const
{
    return one(!numberOf(value).boolValue());
}

QVariant QVOneIfOneInArray::transformedValue(const QVariant &value) const
{
    return one(value.toList().size() > 1);
}

QVariant QVOneIfOneInArray::reverseTransformedValue(const QVariant &) const
{
    return QVariantList();
}

QVariant QVPathFromBookmark::transformedValue(const QVariant &value) const
{
    if (!value.isValid()) {
        return u""_s;
    }
    const std::optional<QString> file = fileOf(value);
    return file ? QVariant(*file) : QVariant();
}

QVariant QVNameFromBookmark::transformedValue(const QVariant &value) const
{
    if (!value.isValid()) {
        return u""_s;
    }
    const std::optional<QString> file = fileOf(value);
    return file ? QVariant(QFileInfo(*file).fileName()) : QVariant();
}

QVariant QV1IfNot0::transformedValue(const QVariant &value) const
{
    return one(numberOf(value).intValue() != 0);
}

QVariant QVNumberBoolToNumberNum::transformedValue(const QVariant &value) const
{
    return one(numberOf(value).boolValue());
}

QVariant QVNumberBoolToNumberNum::reverseTransformedValue(const QVariant &value) const
{
    return numberOf(value).longValue() != 0;
}

QVariant QV1IfEqualToRef::transformedValue(const QVariant &value) const
{
    return value.isValid() ? one(shortOf(value) == m_myRefValue) : QVariant();
}

QVariant QVValueIsEqualToRef::transformedValue(const QVariant &value) const
{
    return value.isValid() ? one(shortOf(value) == m_myRefValue) : QVariant();
}

QVariant QVValueIsEqualToRef::reverseTransformedValue(const QVariant &value) const
{
    return numberOf(value).boolValue() ? QVariant(m_myRefValue) : QVariant();
}

QVariant QVValueIsGreaterOfRef::transformedValue(const QVariant &value) const
{
    return value.isValid() ? one(shortOf(value) > m_myRefValue) : QVariant();
}

QVariant QVValueIsSmallerOfRef::transformedValue(const QVariant &value) const
{
    return value.isValid() ? one(shortOf(value) < m_myRefValue) : QVariant();
}

QVariant QVValueNotEqualToRef::transformedValue(const QVariant &value) const
{
    return value.isValid() ? one(shortOf(value) != m_myRefValue) : QVariant();
}

QVariant QVValueMultipliedBy::transformedValue(const QVariant &value) const
{
    return value.isValid() ? QVariant(value.toFloat() * m_myRefValue.toFloat()) : QVariant();
}

QVariant QVHeightForFontSize::transformedValue(const QVariant &value) const
{
    constexpr float perPoint = 1.4F;
    constexpr float atLeast = 2.0F;
    return value.isValid() ? QVariant(static_cast<int>(value.toFloat() * perPoint + atLeast))
                           : QVariant();
}

QVariant QVValueIsEqualToStr::transformedValue(const QVariant &value) const
{
    return value.isValid() ? QVariant(value.toString() == m_myRefString) : QVariant();
}

QVariant QVUnarchivieFromDataToText::transformedValue(const QVariant &value) const
{
    const std::optional<NSObject> text =
        NSKeyedUnarchiver::unarchiveObjectWithData(value.toByteArray());
    return text && text->string() ? QVariant(*text->string()) : QVariant();
}

QVariant QVValueIsInSet::transformedValue(const QVariant &value) const
{
    return value.isValid() ? QVariant(m_myRefSet.contains(value)) : QVariant();
}

QVariant QVValueIsInArray::transformedValue(const QVariant &value) const
{
    return value.isValid() ? QVariant(m_myRefArray.contains(value)) : QVariant();
}

QVariant QVEmptyTrimmedString::transformedValue(const QVariant &value) const
{
    return !value.isValid() || QVStringUtils::trimLateralSpace(value.toString()).isEmpty();
}

QVariant QVFilledTrimmedString::transformedValue(const QVariant &value) const
{
    return value.isValid() && !QVStringUtils::trimLateralSpace(value.toString()).isEmpty();
}

} // namespace quorvane
