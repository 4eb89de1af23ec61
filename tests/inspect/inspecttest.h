// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the tests of the inspection share: the program's English texts, and clips made by the installed ffmpeg.

#include "inspect/inspection.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace tavrix::test
{

// The build's own resources, in English.
class InspectTest : public testing::Test
{
protected:
    InspectTest();
    ~InspectTest() override;

    const TempFolder folder;

private:
    QString previousResources_;
};

// Makes a file with the installed ffmpeg; the words are the arguments before the output.
[[nodiscard]] bool makeMedia(const QString& path, const QString& arguments);
// 720p59.94 H.264 and AC-3 in a transport stream, as an AVCHD Lite camera writes it.
[[nodiscard]] bool makeTransportClip(const QString& path, double seconds = 1);
// 640x480 Motion-JPEG and PCM in AVI.
[[nodiscard]] bool makeAviClip(const QString& path);

// A described 720p59.94 clip of 6 seconds, as the inspector would fill it.
[[nodiscard]] Inspection describedClip();

} // namespace tavrix::test
