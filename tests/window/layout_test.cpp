// SPDX-License-Identifier: GPL-3.0-or-later
#include "windowharness.h"

#include "base/dialogue/localisation.h"
#include "base/text/shownname.h"
#include "gui/dialogs/preferencessheet.h"
#include "gui/window/batchdrawer.h"
#include "gui/window/rowdetails.h"
#include "support/qtprinters.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QFileInfo>
#include <QImage>
#include <QLabel>
#include <QListView>
#include <QMenuBar>
#include <QScrollBar>

namespace tavrix::test
{
namespace
{

// Buttons and one-line labels whose text is wider than they are.
QStringList clippedTexts(QWidget& top)
{
    QStringList clipped;
    for (const auto* button : top.findChildren<QAbstractButton*>()) {
        if (button->isVisible() && !button->text().isEmpty() && button->width() < button->sizeHint().width()) {
            clipped << button->text();
        }
    }
    for (const auto* label : top.findChildren<QLabel*>()) {
        const bool elides = label->minimumSizeHint().width() <= 40;
        if (!label->isVisible() || label->text().isEmpty() || elides) {
            continue;
        }
        const bool fits = label->wordWrap() ? label->height() >= label->heightForWidth(label->width())
                                            : label->width() >= label->sizeHint().width();
        if (!fits) {
            clipped << label->text();
        }
    }
    return clipped;
}

QStringList markedTexts(QWidget& top)
{
    QStringList marked;
    const auto check = [&marked](const QString& text) {
        if (text.startsWith(QStringLiteral("@@")) || text.startsWith(QStringLiteral("Win_"))) {
            marked << text;
        }
    };
    check(top.windowTitle());
    for (const auto* widget : top.findChildren<QWidget*>()) {
        check(widget->accessibleName());
        check(widget->toolTip());
        if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
            check(button->text());
        }
        if (const auto* label = qobject_cast<const QLabel*>(widget)) {
            check(label->text());
        }
    }
    return marked;
}

QStringList unnamedControls(QWidget& top)
{
    QStringList unnamed;
    for (auto* widget : top.findChildren<QWidget*>()) {
        if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible() || qobject_cast<QMenuBar*>(widget)) {
            continue;
        }
        const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
        if (accessible == nullptr || accessible->text(QAccessible::Name).isEmpty() || widget->objectName().isEmpty()) {
            unnamed << QString::fromLatin1(widget->metaObject()->className()) + QLatin1Char(' ') + widget->objectName();
        }
    }
    return unnamed;
}

} // namespace

class Layout : public WindowTest, public testing::WithParamInterface<const char*>
{
};

TEST_P(Layout, NothingIsClippedUnnamedOrUntranslated)
{
    setLanguage(QLatin1String(GetParam()));
    startProgram();
    EXPECT_TEXTS(clippedTexts(window()), QStringList());
    analysedClips(2);
    useDestination();
    rows().setSelectedRow(0);
    settle();
    EXPECT_TEXTS(clippedTexts(window()), QStringList());
    drop({folder_.makeFile(QStringLiteral("notes.txt")), folder_.makeFile(QStringLiteral("other.txt"))});
    settle();
    window().resize(window().minimumSizeHint());
    settle();
    EXPECT_TRUE(find<QWidget>("leftOutBt")->isVisible());
    EXPECT_TEXTS(clippedTexts(window()), QStringList());
    EXPECT_LE(window().width(), 1024);
    EXPECT_TEXTS(markedTexts(window()), QStringList());
    EXPECT_TEXTS(unnamedControls(window()), QStringList());
    trigger("menuPref");
    settle();
    EXPECT_TEXTS(clippedTexts(window().preferences()), QStringList());
    EXPECT_TEXTS(unnamedControls(window().preferences()), QStringList());
}

TEST_P(Layout, TheWindowFitsOnASmallScreen)
{
    setLanguage(QLatin1String(GetParam()));
    startProgram();
    analysedClips(1);
    settle();
    EXPECT_LE(window().minimumSizeHint().width(), 1024);
    EXPECT_LE(window().minimumSizeHint().height(), 560);
    window().resize(1024, 560);
    settle();
    EXPECT_EQ(window().height(), 560);
    EXPECT_TEXTS(clippedTexts(window()), QStringList());
    EXPECT_GE(find<QListView>("encBatchArrayController")->height(), 90);
}

INSTANTIATE_TEST_SUITE_P(Languages, Layout, testing::Values("en", "fr", "de"),
                         [](const auto& language) { return std::string(language.param); });

using WindowBehaviour = WindowTest;

TEST_F(WindowBehaviour, TabGoesThroughTheMainJobInOrder)
{
    startProgram();
    analysedClips(1);
    window().activateWindow();
    auto* widget = find<QWidget>("dragndropImgView");
    const QStringList wanted{QStringLiteral("addClipsBt"),
                             QStringLiteral("rowFormatBt"),
                             QStringLiteral("encBatchArrayController"),
                             QStringLiteral("batchEncRemoveAllBt"),
                             QStringLiteral("mainEncDstPathStr"),
                             QStringLiteral("mainEncDstSelectBt"),
                             QStringLiteral("mainEncDstRevealBt"),
                             QStringLiteral("everyTimeBt"),
                             QStringLiteral("formatBt"),
                             QStringLiteral("encStopBt.0"),
                             QStringLiteral("batchEncGoBt")};
    QStringList met;
    for (int i = 0; i < 60; ++i) {
        widget = widget->nextInFocusChain();
        if (wanted.contains(widget->objectName()) && !met.contains(widget->objectName())) {
            met << widget->objectName();
        }
    }
    EXPECT_TEXTS(met, wanted);
}

// A "move" would make the other program delete the clips after the drop.
TEST_F(WindowBehaviour, ADropIsACopyWhateverIsProposed)
{
    startProgram();
    const QString clip = folder_.makeFile(QStringLiteral("a.MTS"), "clip");
    EXPECT_EQ(drop({clip}, Qt::CopyAction | Qt::MoveAction, Qt::MoveAction), Qt::CopyAction);
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_EQ(rows().count(), 1);
    EXPECT_TRUE(itemExists(clip));
    EXPECT_EQ(drop({folder_.makeFile(QStringLiteral("b.MTS"))}, Qt::MoveAction, Qt::MoveAction), Qt::IgnoreAction);
    EXPECT_EQ(rows().count(), 1);
}

// A name is data: it neither turns the direction of writing nor begins a line of its own.
TEST_F(WindowBehaviour, NamesAreShownWithTheirControlCharactersEscaped)
{
    startProgram();
    const QString name = QStringLiteral("a\n\u202eb\x1b.MTS");
    const QString shown = QStringLiteral("a\\n\\u202eb\\x1b.MTS");
    drop({folder_.makeFile(name, "clip"), folder_.makeFile(QStringLiteral("n\u2028.txt"))});
    ASSERT_TRUE(tools_.finishAll());
    ASSERT_EQ(rows().count(), 1);
    EXPECT_TEXT(rows().row(0).src, name);
    RowDetails& details = window().batchDrawer().details();
    ASSERT_TRUE(waitFor([&] { return !details.outputName(rows().row(0)).isEmpty(); }));
    EXPECT_TRUE(details.summary(rows().row(0)).contains(shown));
    EXPECT_TEXT(shownLines(details.summary(rows().row(0))), details.summary(rows().row(0)));
    useDestination();
    click("batchEncGoBt");
    EXPECT_TEXT(find<QLabel>("mainEncProgressCaptionStr")->text(), shown);
    rows().setReason(0, name);
    EXPECT_TRUE(details.summary(rows().row(0)).endsWith(shown));
}

TEST_F(WindowBehaviour, ADropOfNothingNewSaysSo)
{
    startProgram();
    drop({folder_.makeFile(QStringLiteral("notes.txt"))});
    EXPECT_EQ(find<QLabel>("noticeStr")->text(), QStringLiteral("No new clip was found in what you dropped"));
    EXPECT_TRUE(find<QLabel>("dragndropCaptionStr")->isVisible());
}

TEST_F(WindowBehaviour, AClickOnTheDropAreaOffersToChoose)
{
    startProgram();
    QTest::mouseClick(find<QWidget>("dragndropImgView"), Qt::LeftButton);
    const QPointer<QMenu> menu = find<QMenu>("dropMenu");
    ASSERT_FALSE(menu.isNull());
    ASSERT_EQ(menu->actions().size(), 2);
    robot_->choose(folder_.makeFile(QStringLiteral("chosen.MTS"), "clip"));
    menu->actions().first()->trigger();
    if (!menu.isNull()) {
        menu->close(); // a later Qt has closed and deleted it
    }
    ASSERT_TRUE(waitFor([this] { return controller().isAnalysing(); }));
}

// Each picture is read once, however often the list is drawn, and 5,000 rows scroll without being measured one by one.
TEST_F(WindowBehaviour, ALongListScrollsAndReadsEachThumbnailOnce)
{
    startProgram();
    QImage picture(320, 180, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    const QString image = folder_.path(QStringLiteral("one.jpg"));
    ASSERT_TRUE(picture.save(image));
    constexpr int count = 5000;
    for (int i = 0; i < count; ++i) {
        BatchRow row;
        row.order = i + 1;
        row.src = QStringLiteral("clip%1.MTS").arg(i);
        row.out = 3;
        row.resultat = rowIcon::pending;
        row.img = i < 40 ? image : QString();
        row.dico.insert(record::mainEncSrcPathStr, folder_.path(row.src));
        rows().append(row);
    }
    trigger("menuDrawer");
    auto* list = find<QListView>("encBatchArrayController");
    list->grab();
    list->grab();
    EXPECT_EQ(window().batchDrawer().details().thumbnailLoads(), 1);
    constexpr int steps = 50;
    for (int i = 0; i <= steps; ++i) {
        list->verticalScrollBar()->setValue(list->verticalScrollBar()->maximum() * i / steps);
        list->grab();
    }
    EXPECT_EQ(window().batchDrawer().details().thumbnailLoads(), 1);
}

TEST_F(WindowBehaviour, ThePlannedNameAndSizeOfARowAreFoundOut)
{
    startProgram();
    analysedClips(1);
    RowDetails& details = window().batchDrawer().details();
    (void)details.outputName(rows().row(0));
    ASSERT_TRUE(waitFor([&] { return !details.outputName(rows().row(0)).isEmpty(); }));
    EXPECT_TRUE(details.outputName(rows().row(0)).startsWith(QStringLiteral("clip-")));
    EXPECT_TRUE(details.outputName(rows().row(0)).endsWith(QStringLiteral("-clip1.mov")));
    EXPECT_TRUE(details.summary(rows().row(0)).contains(QStringLiteral("Expected size: ")));
}

// The encode cuts such a name: the window announces the one that is made.
TEST_F(WindowBehaviour, TheAnnouncedNameOfALongSourceNameIsTheOneThatIsMade)
{
    startProgram();
    useDestination();
    const QString source = folder_.makeFile(QString(245, u'x') + QStringLiteral(".MTS"), "clip");
    drop({source});
    ASSERT_TRUE(tools_.finishAll());
    ASSERT_EQ(rows().count(), 1);
    RowDetails& details = window().batchDrawer().details();
    ASSERT_TRUE(waitFor([&] { return !details.outputName(rows().row(0)).isEmpty(); }));
    const QString announced = details.outputName(rows().row(0));
    EXPECT_EQ(announced.toUtf8().size(), 255);
    robot_->press(QStringLiteral("alertButton0"));
    click("batchEncGoBt");
    ASSERT_TRUE(tools_.finishAll());
    EXPECT_TRUE(waitFor([this] { return robot_->isDone(); }));
    EXPECT_TEXT(QFileInfo(rows().row(0).output).fileName(), announced);
}

TEST_F(WindowBehaviour, TheListGoesAlongWithTheBatch)
{
    startProgram();
    analysedClips(12);
    useDestination();
    auto* list = find<QListView>("encBatchArrayController");
    const auto isShown = [&](int row) {
        return list->viewport()->rect().contains(list->visualRect(rows().index(row)));
    };
    EXPECT_FALSE(isShown(11));
    robot_->press(QStringLiteral("alertButton0"));
    QStringList hidden;
    QObject::connect(&controller(), &appDelegate::rowStarted, list, [&](int row) {
        if (!isShown(row)) {
            hidden << QString::number(row);
        }
    });
    click("batchEncGoBt");
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_TRUE(waitFor([this] { return robot_->isDone(); }));
    EXPECT_TEXTS(hidden, QStringList());
    EXPECT_TRUE(isShown(11));
}

// The estimate writes a line to the log, which has no size limit.
TEST_F(WindowBehaviour, TheSizeIsEstimatedOncePerFormat)
{
    startProgram();
    analysedClips(1);
    RowDetails& details = window().batchDrawer().details();
    const BatchRow first = rows().row(0);
    const QString before = details.estimatedSize(first);
    const LogCapture log;
    EXPECT_TEXT(details.estimatedSize(first), before);
    EXPECT_EQ(log.lines().filter(QStringLiteral("encDstPoidsEstimatif")).size(), 0);
    rows().setOut(0, first.out - 1);
    EXPECT_FALSE(details.estimatedSize(rows().row(0)).isEmpty());
    EXPECT_TEXT(details.estimatedSize(rows().row(0)), details.estimatedSize(rows().row(0)));
}

} // namespace tavrix::test
