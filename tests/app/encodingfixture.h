// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "controllertest.h"

#include "app/logs.h"
#include "base/files/fileinfo.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "base/text/format.h"

#include <QFile>

namespace tavrix::test
{

inline QString endSheet()
{
    return sheetEvent("D_fin_GUI");
}

class Encoding : public ControllerTest
{
protected:
    Encoding()
    {
        QObject::connect(controller.get(), &appDelegate::batchEnded, controller.get(), [this](bool stopped) {
            ++ends;
            stoppedEnds += stopped ? 1 : 0;
        });
    }

    void expectNormalEnd()
    {
        EXPECT_EQ(ends, 1);
        EXPECT_EQ(stoppedEnds, 0);
        EXPECT_TRUE(log.contains(QStringLiteral("enc fini :-)")));
        const qsizetype sheet = face.events.indexOf(endSheet());
        EXPECT_GE(sheet, 0);
        EXPECT_EQ(face.count(endSheet()), 1);
        EXPECT_TEXT(face.events.value(sheet + 1), QStringLiteral("open:") + events);
        EXPECT_TEXT(prefRead(pref::encCurrentProcessingFile), QStringLiteral(""));
        expectIdle();
    }

    int ends = 0;
    int stoppedEnds = 0;
};

} // namespace tavrix::test
