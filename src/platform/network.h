#pragma once

#include <QString>

// http and https only, limited in time and size; the caller waits while a worker thread fetches.
namespace tavrix
{

void openLocation(const QString& address);
[[nodiscard]] bool internetConnexionCheck(const QString& address);
// Nothing for nothing, "" when no ASCII page came back.
[[nodiscard]] QString webpageSource(const QString& address, unsigned char verbose);

} // namespace tavrix
