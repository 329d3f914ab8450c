#pragma once

#include <QByteArray>

namespace quorvane {

/// Appends a picture as a group of the text itself, in a form that every reader knows: PNG, JPEG,
/// EMF and WMF with the bytes as they are, other images as PNG.
/// \param width, height twips; 0: as large as the image says.
/// \return whether the file is an image that can be shown so.
bool appendPicture(QByteArray &out, const QByteArray &file, int width, int height);

} // namespace quorvane
