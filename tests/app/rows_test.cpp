// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

constexpr int cancelButton = 0;
constexpr int yesButton = 1;

class RemovingRows : public ControllerTest
{
protected:
    void begin(int count)
    {
        sources = makeClips(count);
        addRows(sources);
        for (int i = 0; i < count; ++i) {
            images << rows().row(i).img;
            ASSERT_TRUE(itemExists(images.last()));
        }
        face.events.clear();
        face.alerts.clear();
    }

    void remove(int row)
    {
        rows().setSelectedRow(row);
        controller->encBatchRemove(&model().batchEncRemoveBt);
    }

    QStringList sources;
    QStringList images;
};

} // namespace

TEST_F(RemovingRows, ButtonRemovesTheSelectedRowAndItsThumbnail)
{
    begin(3);
    remove(1);
    EXPECT_EQ(rows().count(), 2);
    EXPECT_TEXT(sourceOf(1), sources.at(2));
    EXPECT_EQ(rows().row(1).order, 2);
    EXPECT_FALSE(itemExists(images.at(1)));
    EXPECT_TRUE(itemExists(images.at(0)));
    EXPECT_TRUE(model().batchEncGoBt.isEnabled());
    EXPECT_TRUE(face.events.isEmpty());
}

TEST_F(RemovingRows, ButtonWithoutASelectionRemovesNothing)
{
    begin(2);
    remove(-1);
    EXPECT_EQ(rows().count(), 2);
    controller->encBatchRemove(nullptr);
    EXPECT_EQ(rows().count(), 1);
    EXPECT_TEXT(sourceOf(0), sources.at(1));
}

TEST_F(RemovingRows, LastRowClosesTheDrawerAndDisablesTheStart)
{
    begin(1);
    remove(0);
    EXPECT_FALSE(model().drawer.isOpen());
    EXPECT_FALSE(model().batchEncGoBt.isEnabled());
    controller->encBatchRemove(nullptr);
    controller->encBatchRemoveAll(nullptr);
    EXPECT_EQ(rows().count(), 0);
}

TEST_F(RemovingRows, RemovedSourceCanBeDroppedAgain)
{
    begin(1);
    remove(0);
    addRows(sources);
    EXPECT_EQ(rows().count(), 1);
    EXPECT_TRUE(model().drawer.isOpen());
}

TEST_F(RemovingRows, ButtonMayNotRemoveTheRowThatIsEncoded)
{
    begin(2);
    pressStart();
    remove(0);
    EXPECT_EQ(rows().count(), 2);
    EXPECT_TEXTS(face.events, QStringList(sheetEvent("D_batch_1")));
    ASSERT_TRUE(tools.finishAll());
    expectIdle();
}

TEST_F(RemovingRows, OtherRowsGoDuringTheBatch)
{
    begin(4);
    pressStart();
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    remove(2);
    remove(0);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_EQ(tools.count(ToolKind::Encode), 3);
    expectIdle();
}

TEST_F(RemovingRows, AllAsksFirst)
{
    begin(2);
    face.answer(cancelButton);
    controller->encBatchRemoveAll(&model().batchEncRemoveAllBt);
    EXPECT_EQ(rows().count(), 2);
    const AlertRequest& alert = face.alerts.first();
    EXPECT_TEXT(alert.title, QStringLiteral("Remove all clips from the list?"));
    EXPECT_TEXTS(alert.buttons, QStringList({QStringLiteral("Cancel"), QStringLiteral("Yes")}));
    EXPECT_EQ(alert.seconds, 60);
    face.answer(-1);
    controller->encBatchRemoveAll(&model().batchEncRemoveAllBt);
    EXPECT_EQ(rows().count(), 2);
}

TEST_F(RemovingRows, AllWhenIdle)
{
    begin(3);
    face.answer(yesButton);
    controller->encBatchRemoveAll(&model().batchEncRemoveAllBt);
    EXPECT_EQ(rows().count(), 0);
    EXPECT_FALSE(model().drawer.isOpen());
    EXPECT_FALSE(model().batchEncGoBt.isEnabled());
    for (const QString& image : images) {
        EXPECT_FALSE(itemExists(image));
    }
    expectIdle();
}

TEST_F(RemovingRows, AllDuringTheBatchKeepsTheRowThatIsEncoded)
{
    begin(3);
    pressStart();
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    face.answer(yesButton);
    controller->encBatchRemoveAll(&model().batchEncRemoveAllBt);
    ASSERT_EQ(rows().count(), 1);
    EXPECT_TEXT(sourceOf(0), sources.at(1));
    EXPECT_EQ(rows().row(0).order, 1);
    EXPECT_TRUE(itemExists(images.at(1)));
    EXPECT_FALSE(itemExists(images.at(2)));
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_EQ(tools.count(ToolKind::Encode), 2);
    expectIdle();
}

TEST_F(RemovingRows, AllAfterAStop)
{
    begin(2);
    pressStart();
    pressStop();
    face.answer(yesButton);
    controller->encBatchRemoveAll(&model().batchEncRemoveAllBt);
    EXPECT_EQ(rows().count(), 0);
    expectIdle();
}

TEST_F(RemovingRows, AllOfAnEmptyListAsksNothing)
{
    controller->encBatchRemoveAll(&model().batchEncRemoveAllBt);
    EXPECT_TRUE(face.events.isEmpty());
}

TEST_F(RemovingRows, ThumbnailOutsideOfTheTemporaryFolderStays)
{
    const QString precious = folder.makeFile(QStringLiteral("precious.jpg"), "picture");
    BatchRow row;
    row.dico = {{record::mainEncSrcPathStr, clip(QStringLiteral("a.mts"))}, {record::imgPathStr, precious}};
    rows().append(row);
    remove(0);
    EXPECT_EQ(rows().count(), 0);
    EXPECT_TRUE(itemExists(precious));
}

TEST_F(RemovingRows, DuringAnAnalysisLeavesTheStartDisabled)
{
    begin(2);
    controller->draggedFiles({clip(QStringLiteral("x.mts"))});
    remove(0);
    EXPECT_FALSE(model().batchEncGoBt.isEnabled());
    ASSERT_TRUE(tools.finishAll());
    EXPECT_EQ(rows().count(), 2);
    expectIdle();
}
