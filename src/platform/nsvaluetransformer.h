#pragma once

#include <QString>
#include <QVariant>

#include <memory>

namespace quorvane {

/// What a transformer says that it gives.
enum class TransformedValueClass { NSNumber, NSString, NSImage };

/// Turns a value of the model into what a control needs. Nil is the invalid QVariant.
class NSValueTransformer
{
public:
    virtual ~NSValueTransformer() = default;

    virtual TransformedValueClass transformedValueClass() const = 0;

    virtual bool allowsReverseTransformation() const { return false; }

    virtual QVariant transformedValue(const QVariant &value) const = 0;

    /// Nil for a transformer that works one way only.
    virtual QVariant reverseTransformedValue(const QVariant &) const { return {}; }

    /// Keeps a transformer under a name for as long as the program runs; a later one takes its
    /// place.
    static void setValueTransformer(std::unique_ptr<const NSValueTransformer> transformer,
                                    const QString &name);
    /// Null where no transformer has that name.
    static const NSValueTransformer *valueTransformerForName(const QString &name);
};

} // namespace quorvane
