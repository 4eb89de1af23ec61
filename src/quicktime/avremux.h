#pragma once

#include <QString>

#include <vector>

namespace tavrix
{

// Copies the pictures and sound of any media file into a QuickTime file without decoding. The timeline starts at 0.
// `streams` receives the source's stream index of each new track. False (and no file) with *reason on failure.
[[nodiscard]] bool remuxToMov(const QString& sourcePath, const QString& destinationPath, int movieTimeScale,
                              std::vector<int>* streams, QString* reason);

} // namespace tavrix
