// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/face.h"

namespace tavrix
{

QString ApplicationFace::selectFolder(const QString& /*title*/)
{
    return {};
}

void ApplicationFace::ecran(const QString& /*side*/, float /*delta*/) {}

void ApplicationFace::preview(const QString& /*path*/) {}

} // namespace tavrix
