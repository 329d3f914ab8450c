#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringDecoder>

#include <optional>

namespace quorvane {

/// The text of well-formed UTF-8, with a leading U+FEFF kept as the character that it is; nothing
/// for any other bytes.
inline std::optional<QString> stringFromUtf8(QByteArrayView bytes)
{
    using Flag = QStringConverter::Flag;
    QStringDecoder decoder(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
}

} // namespace quorvane
