// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/ecran.h"

#include "base/text/log.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace tavrix::test
{
namespace
{

const QRect only(0, 0, 1920, 1080);
const QRect right(1920, 0, 1280, 1024);

struct Growth {
    const char* name;
    QRect frame;
    const char* side;
    float delta;
    QList<QRect> screens;
    std::optional<QRect> expected;
};

class EcranFrame : public testing::TestWithParam<Growth>
{
};

} // namespace

TEST_P(EcranFrame, GrowsAndStaysOnTheScreen)
{
    const Growth& row = GetParam();
    const std::optional<QRect> frame = ecranFrame(row.frame, text(row.side), row.delta, row.screens);
    ASSERT_EQ(frame.has_value(), row.expected.has_value());
    if (frame) {
        EXPECT_EQ(*frame, *row.expected) << frame->x() << "," << frame->y() << " " << frame->width() << "x"
                                         << frame->height();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Ecran, EcranFrame,
    testing::Values(
        Growth{"left", {500, 300, 400, 300}, "l", 100, {only}, QRect(350, 300, 550, 300)},
        Growth{"right", {500, 300, 400, 300}, "r", 100, {only}, QRect(500, 300, 550, 300)},
        Growth{"bottom", {500, 300, 400, 300}, "b", 100, {only}, QRect(500, 300, 400, 450)},
        Growth{"top", {500, 300, 400, 300}, "t", 100, {only}, QRect(500, 150, 400, 450)},
        Growth{"upperCaseSide", {500, 300, 400, 300}, "R", 100, {only}, QRect(500, 300, 550, 300)},
        Growth{"leftAtTheEdge", {20, 300, 400, 300}, "l", 100, {only}, QRect(0, 300, 550, 300)},
        Growth{"rightAtTheEdge", {1500, 300, 400, 300}, "r", 100, {only}, QRect(1370, 300, 550, 300)},
        Growth{"bottomAtTheEdge", {500, 700, 400, 300}, "b", 100, {only}, QRect(500, 630, 400, 450)},
        Growth{"topAtTheEdge", {500, 30, 400, 300}, "t", 100, {only}, QRect(500, 0, 400, 450)},
        Growth{"tooTallForTheScreen", {500, 30, 400, 900}, "b", 320, {only}, QRect(500, 0, 400, 1080)},
        Growth{"tooWideForTheScreen", {10, 30, 1800, 900}, "r", 320, {only}, QRect(0, 30, 1920, 900)},
        Growth{"secondScreenLeft", {1930, 100, 400, 300}, "l", 100, {only, right}, QRect(1920, 100, 550, 300)},
        Growth{"secondScreenRight", {2700, 100, 400, 300}, "r", 100, {only, right}, QRect(2650, 100, 550, 300)},
        Growth{"secondScreenBottom", {2000, 700, 400, 300}, "b", 100, {only, right}, QRect(2000, 574, 400, 450)},
        Growth{"secondScreenTop", {2000, 10, 400, 300}, "t", 100, {only, right}, QRect(2000, 0, 400, 450)},
        Growth{"firstOfTwoScreensRight", {1400, 100, 500, 300}, "r", 100, {only, right}, QRect(1270, 100, 650, 300)},
        Growth{
            "spanningTwoGoesToTheFuller", {1500, 100, 500, 300}, "r", 100, {only, right}, QRect(1270, 100, 650, 300)},
        Growth{
            "spanningTwoMostlyOnTheSecond", {1900, 100, 500, 300}, "l", 100, {only, right}, QRect(1920, 100, 650, 300)},
        Growth{"screensInAnyOrder", {2700, 100, 400, 300}, "r", 100, {right, only}, QRect(2650, 100, 550, 300)},
        Growth{"negativeScreenPlace",
               {-900, 100, 400, 300},
               "l",
               800,
               {only, QRect(-1280, 0, 1280, 1024)},
               QRect(-1280, 100, 1250, 300)},
        Growth{"amountOfZero", {500, 300, 400, 300}, "r", -50, {only}, QRect(500, 300, 400, 300)},
        Growth{"deltaZero", {500, 300, 400, 300}, "r", 0, {only}, std::nullopt},
        Growth{"noSide", {500, 300, 400, 300}, nullptr, 100, {only}, std::nullopt},
        Growth{"unknownSide", {500, 300, 400, 300}, "x", 100, {only}, std::nullopt},
        Growth{"onNoScreen", {5000, 5000, 400, 300}, "r", 100, {only, right}, std::nullopt},
        Growth{"noScreens", {500, 300, 400, 300}, "r", 100, {}, std::nullopt}),
    rowName<Growth>);

TEST(Ecran, LogsItsFrames)
{
    const LogCapture log;
    (void)ecranFrame({1500, 300, 400, 300}, QStringLiteral("r"), 100, {only});
    EXPECT_TEXTS(log.lines(), QStringList({QStringLiteral("window current size:  400x 300, x=1500, y=300"),
                                           QStringLiteral("window desired size:  550x 300, x=1500, y=300"),
                                           QStringLiteral("screen #0      size: 1920x1080, x=0, y=0"),
                                           QStringLiteral("ecran() > recalage")}));
}

TEST(Ecran, ARealWindowEndsOnItsScreen)
{
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    QWidget window;
    window.setGeometry(QRect(screen.center(), QSize(200, 150)));
    window.show();
    for (const char* side : {"l", "b", "r", "t"}) {
        ecran(&window, QString::fromLatin1(side), 250);
        EXPECT_TRUE(screen.contains(window.frameGeometry())) << side;
    }
    EXPECT_EQ(window.frameGeometry().width(), screen.width());
    ecran(nullptr, QStringLiteral("l"), 10);
}

} // namespace tavrix::test
