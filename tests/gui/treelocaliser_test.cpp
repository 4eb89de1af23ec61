// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/treelocaliser.h"

#include "base/dialogue/localisation.h"
#include "gui/widgets/segmentedview.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

namespace tavrix::test
{
namespace
{

class TreeLocaliser : public testing::Test
{
protected:
    void SetUp() override
    {
        folder_.makeFile(QStringLiteral("en.lproj/Own.strings"),
                         "\"t\" = \"Title\";\n\"b\" = \"A much longer button text\";\n\"f\" = \"Field\";\n"
                         "\"p\" = \"Placeholder\";\n\"c\" = \"Cell\";\n\"h\" = \"Header\";\n\"s\" = \"Segment\";\n");
        FVAutoLocalizeSetBundle(folder_.path());
        FVAutoLocalizeSetName(QStringLiteral("Own"));
        setLanguage(QStringLiteral("en"));
    }
    void TearDown() override
    {
        FVAutoLocalizeSetBundle(QStringLiteral(""));
        FVAutoLocalizeSetName(QStringLiteral("Localizable"));
        setLanguage(QString());
    }
    TempFolder folder_;
};

} // namespace

TEST_F(TreeLocaliser, ReplacesMarkedTextsOfEveryKindOfView)
{
    QWidget window;
    window.setWindowTitle(QStringLiteral("@@t"));
    auto* layout = new QVBoxLayout(&window);
    auto* button = new QPushButton(QStringLiteral("@@b"));
    auto* box = new QCheckBox(QStringLiteral("@@c"));
    auto* label = new QLabel(QStringLiteral("@@f"));
    auto* field = new QLineEdit(QStringLiteral("@@f"));
    field->setPlaceholderText(QStringLiteral("@@p"));
    auto* table = new QTableWidget(1, 2);
    table->setItem(0, 0, new QTableWidgetItem(QStringLiteral("@@c")));
    table->setItem(0, 1, new QTableWidgetItem(QStringLiteral("plain")));
    table->setHorizontalHeaderLabels({QStringLiteral("@@h"), QStringLiteral("plain")});
    auto* tabs = new QTabWidget;
    auto* page = new QLabel(QStringLiteral("@@f"));
    tabs->addTab(page, QStringLiteral("@@t"));
    auto* segments = new SegmentedView(2);
    segments->setLabel(1, QStringLiteral("@@s"));
    auto* choices = new QComboBox;
    choices->addItems({QStringLiteral("@@c"), QStringLiteral("plain")});
    choices->setPlaceholderText(QStringLiteral("@@p"));
    for (QWidget* view : QList<QWidget*>{button, box, label, field, table, tabs, segments, choices}) {
        layout->addWidget(view);
    }
    label->setToolTip(QStringLiteral("@@p"));
    label->setAccessibleName(QStringLiteral("@@t"));
    FVAutoLocalizeWindow(&window);
    EXPECT_TEXT(window.windowTitle(), QStringLiteral("Title"));
    EXPECT_TEXT(button->text(), QStringLiteral("A much longer button text"));
    EXPECT_TEXT(box->text(), QStringLiteral("Cell"));
    EXPECT_TEXT(label->text(), QStringLiteral("Field"));
    EXPECT_TEXT(label->toolTip(), QStringLiteral("Placeholder"));
    EXPECT_TEXT(label->accessibleName(), QStringLiteral("Title"));
    EXPECT_TEXT(field->text(), QStringLiteral("Field"));
    EXPECT_TEXT(field->placeholderText(), QStringLiteral("Placeholder"));
    EXPECT_TEXT(table->item(0, 0)->text(), QStringLiteral("Cell"));
    EXPECT_TEXT(table->item(0, 1)->text(), QStringLiteral("plain"));
    EXPECT_TEXT(table->horizontalHeaderItem(0)->text(), QStringLiteral("Header"));
    EXPECT_TEXT(table->horizontalHeaderItem(1)->text(), QStringLiteral("plain"));
    EXPECT_TEXT(tabs->tabText(0), QStringLiteral("Title"));
    EXPECT_TEXT(page->text(), QStringLiteral("Field"));
    EXPECT_TEXT(segments->label(1), QStringLiteral("Segment"));
    EXPECT_TEXT(choices->itemText(0), QStringLiteral("Cell"));
    EXPECT_TEXT(choices->itemText(1), QStringLiteral("plain"));
    EXPECT_TEXT(choices->placeholderText(), QStringLiteral("Placeholder"));
}

TEST_F(TreeLocaliser, MissingKeysShowThemselvesAndAnEmptyKeyNothing)
{
    QLabel missing(QStringLiteral("@@nowhere"));
    FVAutoLocalizeView(&missing);
    EXPECT_TEXT(missing.text(), QStringLiteral("nowhere"));
    QLabel bare(QStringLiteral("@@"));
    FVAutoLocalizeView(&bare);
    EXPECT_TRUE(bare.text().isEmpty());
    QLabel single(QStringLiteral("@t"));
    FVAutoLocalizeView(&single);
    EXPECT_TEXT(single.text(), QStringLiteral("@t"));
    FVAutoLocalizeView(nullptr);
    FVAutoLocalizeWindow(nullptr);
}

TEST_F(TreeLocaliser, MenusAreLocalisedToTheirLastItem)
{
    QMenuBar bar;
    QMenu* menu = bar.addMenu(QStringLiteral("@@t"));
    QAction* item = menu->addAction(QStringLiteral("@@c"));
    QMenu* sub = menu->addMenu(QStringLiteral("@@s"));
    QAction* inner = sub->addAction(QStringLiteral("@@h"));
    QAction* plain = sub->addAction(QStringLiteral("plain"));
    FVAutoLocalizeMenu(&bar);
    EXPECT_TEXT(menu->title(), QStringLiteral("Title"));
    EXPECT_TEXT(item->text(), QStringLiteral("Cell"));
    EXPECT_TEXT(sub->title(), QStringLiteral("Segment"));
    EXPECT_TEXT(inner->text(), QStringLiteral("Header"));
    EXPECT_TEXT(plain->text(), QStringLiteral("plain"));
}

TEST_F(TreeLocaliser, AButtonGrowsToItsTextAndPushesItsNeighboursRight)
{
    QWidget parent;
    QPushButton button(QStringLiteral("@@b"), &parent);
    button.setGeometry(10, 10, 40, 30);
    QPushButton neighbour(QStringLiteral("x"), &parent);
    neighbour.setGeometry(60, 12, 40, 30);
    QPushButton below(QStringLiteral("y"), &parent);
    below.setGeometry(60, 60, 40, 30);
    FVAutoLocalizeView(&parent);
    EXPECT_EQ(button.width(), button.sizeHint().width());
    EXPECT_EQ(button.x(), 10);
    EXPECT_EQ(neighbour.x(), 60 + button.width() - 40);
    EXPECT_FALSE(button.geometry().intersects(neighbour.geometry()));
    EXPECT_EQ(below.x(), 60);
}

TEST_F(TreeLocaliser, AButtonHeldAtItsRightEdgeMovesTheOthersLeft)
{
    QWidget parent;
    parent.resize(500, 100);
    QPushButton button(QStringLiteral("@@b"), &parent);
    button.setGeometry(440, 10, 50, 30);
    button.setProperty("autoresizingMask", viewMinXMargin);
    QPushButton left(QStringLiteral("x"), &parent);
    left.setGeometry(380, 10, 50, 30);
    QPushButton otherTag(QStringLiteral("z"), &parent);
    otherTag.setGeometry(10, 10, 50, 30);
    otherTag.setProperty("tag", 7);
    FVAutoLocalizeView(&parent);
    EXPECT_EQ(button.geometry().right(), 489);
    EXPECT_EQ(left.x(), 380 - (button.width() - 50));
    EXPECT_EQ(otherTag.x(), 10);
}

} // namespace tavrix::test
