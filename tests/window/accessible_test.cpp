// SPDX-License-Identifier: GPL-3.0-or-later
#include "windowharness.h"

#include "support/qtprinters.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QLabel>

namespace tavrix::test
{
namespace
{

// Walks the tree that a screen reader gets, through a whole batch.
class Spoken : public WindowTest
{
protected:
    [[nodiscard]] QStringList tree()
    {
        QStringList names;
        collect(QAccessible::queryAccessibleInterface(&window()), names);
        return names;
    }
    [[nodiscard]] QStringList listItems()
    {
        QStringList names;
        QAccessibleInterface* list = QAccessible::queryAccessibleInterface(find<QWidget>("encBatchArrayController"));
        for (int i = 0; i < list->childCount(); ++i) {
            names << list->child(i)->text(QAccessible::Name);
        }
        return names;
    }

    // Labels that say nothing, and descriptions with markup, which would be read aloud.
    [[nodiscard]] QStringList slips()
    {
        QStringList found;
        collectSlips(QAccessible::queryAccessibleInterface(&window()), found);
        return found;
    }

private:
    static void collectSlips(QAccessibleInterface* part, QStringList& found)
    {
        if (part == nullptr || part->state().invisible) {
            return;
        }
        const QString name = part->text(QAccessible::Name);
        if (part->role() == QAccessible::StaticText && name.isEmpty()) {
            found << QStringLiteral("empty label ") + (part->object() ? part->object()->objectName() : QString());
        }
        if (const QString description = part->text(QAccessible::Description); description.contains(QLatin1Char('<'))) {
            found << name + QStringLiteral(": ") + description;
        }
        for (int i = 0; i < part->childCount(); ++i) {
            collectSlips(part->child(i), found);
        }
    }
    static void collect(QAccessibleInterface* part, QStringList& names)
    {
        if (part == nullptr || part->state().invisible) {
            return;
        }
        if (const QString name = part->text(QAccessible::Name); !name.isEmpty()) {
            names << name;
        }
        for (int i = 0; i < part->childCount(); ++i) {
            collect(part->child(i), names);
        }
    }
};

} // namespace

TEST_F(Spoken, TheDropAreaIsAButtonThatCanBePressed)
{
    startProgram();
    QAccessibleInterface* area = QAccessible::queryAccessibleInterface(find<QWidget>("dragndropImgView"));
    EXPECT_EQ(area->role(), QAccessible::Button);
    EXPECT_TEXT(area->text(QAccessible::Name), QStringLiteral("Drop area: press to choose clips"));
    ASSERT_NE(area->actionInterface(), nullptr);
    ASSERT_TRUE(area->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
    area->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(waitFor([this] { return window().findChild<QMenu*>(QStringLiteral("dropMenu")) != nullptr; }));
    window().findChild<QMenu*>(QStringLiteral("dropMenu"))->close();
}

TEST_F(Spoken, WhatIsIdleIsNotThere)
{
    startProgram();
    const QStringList idle = tree();
    EXPECT_TEXTS(slips(), QStringList());
    EXPECT_EQ(idle.filter(QStringLiteral("Reading")).size(), 0) << idle.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(idle.filter(QStringLiteral("Progress")).size(), 0);
    EXPECT_EQ(idle.count(QStringLiteral("Destination folder")), 1);
    drop({folder_.makeFile(QStringLiteral("a.MTS")), folder_.makeFile(QStringLiteral("b.MTS"))});
    EXPECT_TRUE(tree().contains(QStringLiteral("Reading clip 1/2")));
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_EQ(tree().filter(QStringLiteral("Reading")).size(), 0);
    EXPECT_TEXTS(slips(), QStringList());
}

TEST_F(Spoken, ABatchIsToldFromItsStartToItsEnd)
{
    startProgram();
    const QStringList clips = analysedClips(2);
    FakeClip bad;
    bad.kilobytes = -1;
    tools_.clips.insert(clips.at(1), bad);
    useDestination();
    EXPECT_TEXTS(listItems(), QStringList({QStringLiteral("1. clip1.MTS, Waiting, QuickTime, 0:30"),
                                           QStringLiteral("2. clip2.MTS, Waiting, QuickTime, 0:30")}));
    click("batchEncGoBt");
    tools_.current(ToolKind::Encode).launcher->write(QStringLiteral("frame=  1 fps=1 time=15.00 bitrate=1\n"));
    EXPECT_TEXT(listItems().first(), QStringLiteral("1. clip1.MTS, Being converted, 50 %, QuickTime, 0:30"));
    const QStringList running = tree();
    EXPECT_TEXTS(slips(), QStringList());
    for (const char* said : {"50 %", "clip1.MTS", "Clip 1 of 2", "Pause", "Stop", "Progress of the conversion"}) {
        EXPECT_TRUE(running.contains(QLatin1String(said))) << said;
    }
    // The line that tells the last event is what is announced.
    QStringList said;
    const auto listen = [this, &said] {
        said << QAccessible::queryAccessibleInterface(find<QLabel>("noticeStr"))->text(QAccessible::Name);
    };
    QObject::connect(&controller(), &appDelegate::rowFinished, &window(), listen);
    QObject::connect(&controller(), &appDelegate::batchEnded, &window(), listen);
    robot_->press(QStringLiteral("alertButton0"));
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_TRUE(waitFor([this] { return robot_->isDone(); }));
    EXPECT_TEXT(listItems().first(), QStringLiteral("1. clip1.MTS, Done, QuickTime, 0:30"));
    EXPECT_TEXT(listItems().last(),
                QStringLiteral("2. clip2.MTS, Failed, ") + rows().row(1).reason + QStringLiteral(", QuickTime, 0:30"));
    EXPECT_FALSE(rows().row(1).reason.isEmpty());
    EXPECT_TEXTS(said, QStringList({QStringLiteral("clip1.MTS: Done"), QStringLiteral("clip2.MTS: Failed"),
                                    find<QLabel>("noticeStr")->text()}));
}

// A name in the place of the content would be all that a screen reader says.
TEST_F(Spoken, LabelsTellTheirContent)
{
    startProgram();
    analysedClips(1);
    useDestination();
    click("batchEncGoBt");
    tools_.current(ToolKind::Encode).launcher->write(QStringLiteral("frame=  1 fps=1 time=15.00 bitrate=1\n"));
    int labels = 0;
    for (auto* label : window().findChildren<QLabel*>()) {
        if (label->isVisible() && !label->text().isEmpty() &&
            !label->objectName().startsWith(QStringLiteral("analyse"))) {
            ++labels;
            EXPECT_TEXT(QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name), label->text());
        }
    }
    EXPECT_GT(labels, 8);
}

} // namespace tavrix::test
