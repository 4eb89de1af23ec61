// SPDX-License-Identifier: GPL-3.0-or-later
// The name of an output: "clip-", the date of the recording, the clip's name. And where that date was found.
#pragma once

#include <QString>

#include <optional>

namespace tavrix
{

// Where the date of a name was found, as records and JSON tell it.
namespace dateSource
{
inline const QString playlist = QStringLiteral("playlist");           // the playlists of an AVCHD camera
inline const QString pictureStream = QStringLiteral("pictureStream"); // beside the pictures, by the camera's clock
inline const QString creationDate = QStringLiteral("creationDate");   // Apple's creation date
inline const QString movieHeader = QStringLiteral("movieHeader");     // the creation time of QuickTime and MP4
inline const QString aviDate = QStringLiteral("aviDate");             // AVI's date chunk
inline const QString file = QStringLiteral("file");                   // the file's own date
} // namespace dateSource

struct RecordingName {
    QString name;                  // base name of the output
    QString date;                  // "yyyy-MM-dd HH:mm:ss +hhmm" in local time; nothing when no date was found
    QString source;                // one of dateSource; nothing when no date was found
    std::optional<qint64> seconds; // the date in seconds since 1970
};

// The camera's playlists count first, then what the clip itself says, then the file's date. The clip is read for it:
// of a transport stream the first megabytes, of other containers the header. Everything is nothing for nothing.
[[nodiscard]] RecordingName recordingName(const QString& sourcePath);

// The shell's command that prints the dates of a folder of playlists.
[[nodiscard]] QString timestampCommand(const QString& tools, const QString& playlistFolder);

} // namespace tavrix
