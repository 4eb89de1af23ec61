#pragma once

#include <QByteArray>
#include <QString>

// Copying files and folder trees: links as links, dates and modes kept, nothing existing ever overwritten.
namespace tavrix
{

// False with the reason when a part could not be copied; what had been made is removed again then. `durable` returns
// only after the data has reached the disk.
[[nodiscard]] bool copyTree(const QByteArray& source, const QByteArray& destination, bool durable, QString* reason);

} // namespace tavrix
