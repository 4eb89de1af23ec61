// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What a movie tells of itself: dates, camera, place, title.

struct AVDictionary;

namespace tavrix::movencoder
{

// Copies what describes the recording, and leaves out what describes the source's file and codec. A camera's software
// stays, under QuickTime's key; a writer's mark of the FFmpeg libraries goes.
void copyMetadata(AVDictionary*& to, const AVDictionary* from);

// Whether there are keys of QuickTime's newer kind ("com.apple.quicktime.make"), for which the user data of a movie has
// no place.
[[nodiscard]] bool hasQuickTimeKeys(const AVDictionary* metadata);

} // namespace tavrix::movencoder
