// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The media library that the program uses.

#include "quicktime/model/medialibrary.h"

namespace tavrix
{

// Movies through the FFmpeg libraries, with what those do not tell read from the file's atoms.
class AvMediaLibrary final : public MediaLibrary
{
public:
    [[nodiscard]] std::shared_ptr<Movie> movieWithFile(const QString& path, bool asyncOK) override;
};

} // namespace tavrix
