// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "controllertest.h"

#include "base/store/settings.h"

#include <QStringList>

namespace tavrix::test
{

// The controller with what it told of sources that gave no row, and of analyses that went no further.
class Analysis : public ControllerTest
{
protected:
    Analysis()
    {
        QObject::connect(controller.get(), &appDelegate::sourceRejected, controller.get(),
                         [this](const QString& path, const QString& reason) {
                             rejected << path;
                             reasons << reason;
                         });
        QObject::connect(controller.get(), &appDelegate::analysisStalled, controller.get(), [this] { ++stalls; });
    }

    void expectStalledButOpen()
    {
        EXPECT_EQ(stalls, 1);
        EXPECT_EQ(getOPENPERM(), 1);
        EXPECT_TEXT(model().dragndropImgView.imageName(), QStringLiteral("dnd"));
        EXPECT_TRUE(model().analyseStopBt.isHidden());
        EXPECT_FALSE(controller->isAnalysing());
        EXPECT_TRUE(tools.running().isEmpty());
    }

    QString caption() { return model().analyseCaptionStr.stringValue(); }

    QStringList rejected;
    QStringList reasons;
    int stalls = 0;
};

inline QStringList allSources(BatchList& rows)
{
    QStringList sources;
    for (int i = 0; i < rows.count(); ++i) {
        sources << rows.row(i).dico.value(record::mainEncSrcPathStr).toString();
    }
    return sources;
}

} // namespace tavrix::test
