// SPDX-License-Identifier: GPL-3.0-or-later
#include "windowharness.h"

#include "app/logs.h"
#include "gui/dialogs/reportwindow.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>

namespace tavrix::test
{
namespace
{

class Report : public WindowTest
{
protected:
    ReportWindow* report() { return window().findChild<ReportWindow*>(); }
    void openReport()
    {
        startProgram();
        logResume(QStringLiteral("source : ") + QDir::homePath() + QStringLiteral("/a.mov\n"));
        trigger("menuBugreport");
        ASSERT_NE(report(), nullptr);
        ASSERT_TRUE(waitFor([this] { return !report()->isWaiting(); }));
    }
    QByteArray fileOf(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void saveAs(const QString& path)
    {
        click("reportSaveBt");
        auto* chooser = window().findChild<QFileDialog*>(QStringLiteral("reportFileChooser"));
        ASSERT_NE(chooser, nullptr);
        Q_EMIT chooser->fileSelected(path);
        chooser->close();
    }
};

} // namespace

// Nothing is opened and nothing is sent before a button says so.
TEST_F(Report, IsShownBeforeAnythingLeaves)
{
    openReport();
    EXPECT_TRUE(report()->text().startsWith(QStringLiteral("Program "))) << report()->text().toStdString();
    EXPECT_TRUE(report()->text().contains(QStringLiteral("---- Resume.log ----")));
    EXPECT_TRUE(report()->text().contains(QStringLiteral("start date")));
    EXPECT_TRUE(report()->text().contains(QStringLiteral("source : .../a.mov\n")));
    EXPECT_FALSE(report()->text().contains(QDir::homePath()));
    EXPECT_TRUE(desktop_.opened.isEmpty());
    robot_->press(QStringLiteral("alertButton0"));
    click("reportMailBt");
    ASSERT_EQ(desktop_.opened.size(), 1);
    EXPECT_EQ(desktop_.opened.first().scheme(), QStringLiteral("mailto"));
}

TEST_F(Report, IsSavedAsItIsShown)
{
    openReport();
    const QString path = folder_.path(QStringLiteral("report.txt"));
    saveAs(path);
    EXPECT_EQ(QString::fromUtf8(fileOf(path)), report()->text());
    EXPECT_TRUE(find<QLabel>("reportWords")->text().contains(path));
    saveAs(QStringLiteral("/nonexistent/report.txt"));
    EXPECT_TRUE(find<QLabel>("reportWords")->text().contains(QStringLiteral("could not be saved")));
}

TEST_F(Report, ShowsWholePathsWhenAskedTo)
{
    openReport();
    find<QCheckBox>("reportPathsBt")->setChecked(true);
    ASSERT_TRUE(waitFor([this] { return !report()->isWaiting(); }));
    EXPECT_TRUE(report()->text().contains(QDir::homePath())) << report()->text().toStdString();
}

} // namespace tavrix::test
