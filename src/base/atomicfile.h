#pragma once

#include <QByteArray>
#include <QString>

namespace tavrix
{

// Replaces the file at once by a new one with these bytes and the mode 0600, after they have reached the disk. A link
// in its place is refused. False with the reason; the old file is untouched then.
[[nodiscard]] bool replaceFileAtomically(const QString& path, const QByteArray& bytes, QString* reason);

} // namespace tavrix
