// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/windowmodel.h"
#include "support/qtprinters.h"

#include <functional>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct ChangeRow {
    const char* name;
    int expected;
    std::function<void(WindowModel&)> act;
};

class Changes : public testing::TestWithParam<ChangeRow>
{
};

const ChangeRow changeRows[] = {
    {"SameText", 0,
     [](WindowModel& m) {
         m.versionStr.setStringValue(QString());
     }},
    {"OtherText", 1,
     [](WindowModel& m) {
         m.versionStr.setStringValue(QStringLiteral("1"));
     }},
    {"TextTwice", 1,
     [](WindowModel& m) {
         m.versionStr.setStringValue(QStringLiteral("1"));
         m.versionStr.setStringValue(QStringLiteral("1"));
     }},
    {"HiddenTwice", 1,
     [](WindowModel& m) {
         m.versionStr.setHidden(true);
         m.versionStr.setHidden(true);
     }},
    {"DisabledAndEnabled", 2,
     [](WindowModel& m) {
         m.versionStr.setEnabled(false);
         m.versionStr.setEnabled(true);
     }},
};

} // namespace

TEST_P(Changes, AreReportedOnce)
{
    WindowModel model;
    int changes = 0;
    QObject::connect(&model.versionStr, &Control::changed, &model, [&changes] { ++changes; });
    GetParam().act(model);
    EXPECT_EQ(changes, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Controls, Changes, testing::ValuesIn(changeRows), rowName<ChangeRow>);

TEST(Controls, SegmentsOutOfRangeAreIgnored)
{
    WindowModel model;
    SegmentedControl& control = model.prefCheckMatrix;
    EXPECT_EQ(control.segmentCount(), outputFormatCount);
    EXPECT_EQ(control.selectedSegment(), -1);
    control.setSelectedSegment(5);
    control.setSelectedSegment(outputFormatCount);
    EXPECT_EQ(control.selectedSegment(), 5);
    control.setSelectedSegment(-2);
    EXPECT_EQ(control.selectedSegment(), 5);
    control.setSelectedSegment(-1);
    EXPECT_EQ(control.selectedSegment(), -1);
}

TEST(Controls, ImagesChooseTheAction)
{
    WindowModel model;
    SegmentedControl& control = model.encStopBt;
    EXPECT_TEXT(control.imageName(encStopSegmentPause), controlImage::pause);
    EXPECT_TEXT(control.imageName(encStopSegmentStop), controlImage::stop);
    EXPECT_TEXT(control.imageName(-1), QString());
    EXPECT_TEXT(control.imageName(2), QString());
    control.setImageName(2, controlImage::play);
    control.setImageName(-1, controlImage::play);
    control.setImageName(0, controlImage::play);
    EXPECT_TEXT(control.imageName(0), controlImage::play);
    EXPECT_TEXT(control.imageName(1), controlImage::stop);
}

TEST(Controls, ColoursHaveAnImageEach)
{
    WindowModel model;
    QStringList names;
    for (int i = 0; i < model.prefColor.segmentCount(); ++i) {
        names << model.prefColor.imageName(i);
    }
    EXPECT_TEXTS(names, QStringList({QStringLiteral("color0"), QStringLiteral("color1"), QStringLiteral("color2"),
                                     QStringLiteral("color3"), QStringLiteral("color4"), QStringLiteral("color5")}));
}

TEST(Controls, ProgressAdvances)
{
    WindowModel model;
    ProgressBar& bar = model.encTaskProgress;
    EXPECT_TRUE(bar.isIndeterminate());
    bar.setRange(0, 30);
    bar.setDoubleValue(10);
    bar.incrementBy(2.5);
    EXPECT_DOUBLE_EQ(bar.doubleValue(), 12.5);
    EXPECT_DOUBLE_EQ(bar.maxValue(), 30);
    EXPECT_DOUBLE_EQ(bar.minValue(), 0);
}

TEST(Controls, AreFoundByName)
{
    WindowModel model;
    EXPECT_TEXT(model.encStopBt.objectName(), QStringLiteral("encStopBt"));
    EXPECT_TEXT(model.prefColor.objectName(), QStringLiteral("prefColor"));
    EXPECT_TEXT(model.objectName(), QStringLiteral("window"));
}
