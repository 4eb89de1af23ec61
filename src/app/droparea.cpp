// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/droparea.h"

#include "base/store/settings.h"

namespace tavrix
{

bool DropArea::isOpen() const
{
    return getOPENPERM() != 0;
}

void DropArea::open()
{
    controls_.dragndropImgView.setImageName(QStringLiteral("dnd"));
    controls_.dragndropCaptionStr.setHidden(false);
    setOPENPERM(1);
    controls_.dragndropActionStr.setHidden(true);
    controls_.analyseWheelProgInd.stopAnimation();
}

void DropArea::close()
{
    controls_.dragndropImgView.setImageName(QStringLiteral("dndOff"));
    controls_.dragndropCaptionStr.setHidden(true);
    setOPENPERM(0);
    controls_.dragndropActionStr.setHidden(false);
    controls_.analyseWheelProgInd.startAnimation();
}

void DropArea::refuse()
{
    controls_.dragndropImgView.setImageName(QStringLiteral("dndOff"));
    controls_.dragndropCaptionStr.setHidden(true);
    controls_.dragndropActionStr.setHidden(true);
    controls_.analyseWheelProgInd.startAnimation();
}

} // namespace tavrix
