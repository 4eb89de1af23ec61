// SPDX-License-Identifier: GPL-3.0-or-later
#include "windowharness.h"

#include "gui/dialogs/toolwindow.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QProcess>

namespace tavrix::test
{
namespace
{

class Information : public WindowTest
{
protected:
    // A row of a real clip of a second.
    QString rowOfRealClip()
    {
        const QString clip = folder_.path(QStringLiteral("DSC00042.AVI"));
        const QString words = QStringLiteral("-nostdin -v error -y -f lavfi -i testsrc2=size=640x480:rate=25 -t 1 -c:v "
                                             "mjpeg -pix_fmt yuvj420p");
        EXPECT_EQ(QProcess::execute(QStringLiteral("ffmpeg"), words.split(u' ') + QStringList{clip}), 0);
        startProgram(true);
        drop({clip});
        EXPECT_TRUE(waitFor([this] { return rows().count() == 1; }));
        rows().setSelectedRow(0);
        return clip;
    }
    ToolWindow* information() { return window().findChild<ToolWindow*>(QStringLiteral("informationWindow")); }
};

} // namespace

TEST_F(Information, IsWhatTheInspectorSaysOfTheSelectedClip)
{
    const QString clip = rowOfRealClip();
    trigger("menuInformation");
    ASSERT_NE(information(), nullptr);
    EXPECT_TRUE(information()->isVisible());
    EXPECT_TRUE(information()->windowTitle().contains(QStringLiteral("DSC00042.AVI")));
    ASSERT_TRUE(waitFor([this] { return !information()->isWaiting(); }));

    QProcess tool;
    tool.start(QCoreApplication::applicationDirPath() + QStringLiteral("/tavrix-inspect"), {clip});
    ASSERT_TRUE(tool.waitForFinished(-1));
    const QString told = QString::fromUtf8(tool.readAllStandardOutput());
    EXPECT_TRUE(told.contains(QStringLiteral("Motion-JPEG")));
    EXPECT_EQ(information()->text(), told);
    click("informationWindowCopyBt");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), told);

    // The same window serves the next clip.
    trigger("menuInformation");
    EXPECT_EQ(window().findChildren<ToolWindow*>().size(), 1);
    ASSERT_TRUE(waitFor([this] { return !information()->isWaiting(); }));
    EXPECT_EQ(information()->text(), told);
    QTest::keyClick(information(), Qt::Key_Escape);
    EXPECT_TRUE(waitFor([this] { return information() == nullptr; }));
}

TEST_F(Information, NeedsAClipAndTakesTheFirstWhereNoneIsSelected)
{
    const QString clip = rowOfRealClip();
    rows().setSelectedRow(-1);
    EXPECT_TRUE(find<QAction>("menuInformation")->isEnabled());
    window().showInformation();
    EXPECT_EQ(rows().selectedRow(), 0);
    ASSERT_NE(information(), nullptr);
    ASSERT_TRUE(waitFor([this] { return !information()->isWaiting(); }));
    EXPECT_TRUE(information()->text().contains(clip)) << information()->text().toStdString();
    rows().clear();
    EXPECT_FALSE(find<QAction>("menuInformation")->isEnabled());
}

TEST_F(Information, TellsAFileThatHasGone)
{
    const QString clip = rowOfRealClip();
    ASSERT_TRUE(QFile::remove(clip));
    trigger("menuInformation");
    ASSERT_TRUE(waitFor([this] { return !information()->isWaiting(); }));
    EXPECT_TRUE(information()->text().contains(clip)) << information()->text().toStdString();
    EXPECT_FALSE(information()->text().contains(QStringLiteral("Motion-JPEG")));
}

// The window closes while the tool still reads.
TEST_F(Information, ClosesWhileItWaits)
{
    rowOfRealClip();
    trigger("menuInformation");
    ASSERT_NE(information(), nullptr);
    EXPECT_TRUE(information()->isWaiting());
    information()->close();
    EXPECT_TRUE(waitFor([this] { return information() == nullptr; }));
}

TEST_F(Information, AToolThatIsMissingIsTold)
{
    startProgram();
    auto* missing = new ToolWindow(QStringLiteral("missingTool"), &window());
    missing->showOutput(QStringLiteral("no-such-tool"), {});
    EXPECT_FALSE(missing->isWaiting());
    EXPECT_TRUE(missing->text().contains(QStringLiteral("no-such-tool")));
    EXPECT_TRUE(missing->isVisible());
}

} // namespace tavrix::test
