#include "platform/nsvaluetransformer.h"

#include <map>
#include <utility>

namespace quorvane {

namespace {

using Registry = std::map<QString, std::unique_ptr<const NSValueTransformer>>;

Registry &registry()
{
    static Registry transformers;
    return transformers;
}

} // namespace

void NSValueTransformer::setValueTransformer(std::unique_ptr<const NSValueTransformer> transformer,
                                             const QString &name)
{
    registry()[name] = std::move(transformer);
}

const NSValueTransformer *NSValueTransformer::valueTransformerForName(const QString &name)
{
    const auto found = registry().find(name);
    return found == registry().end() ? nullptr : found->second.get();
}

} // namespace quorvane
