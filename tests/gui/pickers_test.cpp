// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/dialogs/pickers.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "base/dialogue/runloopgate.h"
#include "support/ordinaryuser.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "testpaths.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QTimer>

#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrix::test
{
namespace
{

// Acts on the next chooser as soon as it is on the screen.
class Chooser : public QObject
{
public:
    explicit Chooser(QString path) : Chooser([path = std::move(path)](QFileDialog& dialog) { answer(dialog, path); }) {}
    explicit Chooser(std::function<void(QFileDialog&)> action) : action_(std::move(action))
    {
        timer_.setInterval(5);
        connect(&timer_, &QTimer::timeout, this, [this] { look(); });
        timer_.start();
    }

    QString title;
    QStringList filters;
    bool gateWasClosed = false;

private:
    void look()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* dialog = qobject_cast<QFileDialog*>(widget);
            if (dialog == nullptr || !dialog->isVisible()) {
                continue;
            }
            timer_.stop();
            title = dialog->windowTitle();
            filters = dialog->nameFilters();
            gateWasClosed = RunLoopGate::instance().isClosed();
            action_(*dialog);
            return;
        }
    }
    static void answer(QFileDialog& dialog, const QString& path)
    {
        if (path.isNull()) {
            dialog.reject();
            return;
        }
        dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
        QMetaObject::invokeMethod(&dialog, "accept");
    }

    std::function<void(QFileDialog&)> action_;
    QTimer timer_;
};

class Pickers : public testing::Test
{
protected:
    void SetUp() override
    {
        setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
        setLanguage(QStringLiteral("en"));
    }
    void TearDown() override { setLanguage(QString()); }
    TempFolder folder_;
};

} // namespace

TEST_F(Pickers, PatternsHoldThreeFormsOfEachType)
{
    EXPECT_TEXTS(selectFilePatterns({QStringLiteral("avi"), QStringLiteral("mov")}),
                 QStringList({QStringLiteral("*.avi"), QStringLiteral("*.AVI"), QStringLiteral("*.Avi"),
                              QStringLiteral("*.mov"), QStringLiteral("*.MOV"), QStringLiteral("*.Mov")}));
    EXPECT_TEXTS(selectFilePatterns({}), QStringList());
}

TEST_F(Pickers, SelectFileGivesTheChosenFile)
{
    const QString file = folder_.makeFile(QStringLiteral("a clip.AVI"));
    const LogCapture log;
    Chooser chooser(file);
    EXPECT_TEXT(selectFile(QString(), {QStringLiteral("avi")}), file);
    EXPECT_TEXT(chooser.title, QStringLiteral("Select a file"));
    EXPECT_TEXTS(chooser.filters, QStringList({QStringLiteral("*.avi *.AVI *.Avi")}));
    EXPECT_TRUE(chooser.gateWasClosed);
    EXPECT_FALSE(RunLoopGate::instance().isClosed());
    EXPECT_TRUE(log.contains(QStringLiteral("returnedStr : ") + file));
}

TEST_F(Pickers, SelectFileResolvesAliases)
{
    const QString file = folder_.makeFile(QStringLiteral("target.avi"));
    const QString link = folder_.path(QStringLiteral("alias.avi"));
    ASSERT_EQ(symlink(file.toUtf8().constData(), link.toUtf8().constData()), 0);
    const Chooser chooser(link);
    EXPECT_TEXT(selectFile(QString(), {QStringLiteral("avi")}), file);
}

TEST_F(Pickers, CancelledChoosersGiveNothing)
{
    const LogCapture log;
    const Chooser first{QString()};
    EXPECT_TEXT(selectFile(QString(), {QStringLiteral("avi")}), QString());
    EXPECT_TRUE(log.contains(QStringLiteral("returnedStr : (null)")));
    const Chooser second{QString()};
    EXPECT_TEXT(selectFolder(QString()), QString());
    EXPECT_TEXT(second.title, QStringLiteral("Select a Folder"));
    const Chooser third{QString()};
    EXPECT_FALSE(selectFileFolder(QString()).has_value());
    EXPECT_TEXT(third.title, QStringLiteral("Select a File or a Folder"));
}

TEST_F(Pickers, TheEndOfTheProgramCancelsOpenAndLaterChoosers)
{
    const Chooser open([](QFileDialog&) { cancelPickers(); });
    EXPECT_TEXT(selectFolder(QString()), QString());
    EXPECT_TEXT(selectFile(QString(), {QStringLiteral("avi")}), QString());
    EXPECT_FALSE(RunLoopGate::instance().isClosed());
    setPickerWindow(nullptr);
    const Chooser chooser(folder_.makeFolder(QStringLiteral("later")));
    EXPECT_FALSE(selectFolder(QString()).isNull());
}

TEST_F(Pickers, SourcesAreNamedByTheirKindNotByTheirPatterns)
{
    const Chooser chooser{QString()};
    EXPECT_TRUE(selectSources(QStringLiteral("Clips?")).isEmpty());
    ASSERT_EQ(chooser.filters.size(), 1);
    EXPECT_TRUE(chooser.filters.first().startsWith(QStringLiteral("Camera clips")));
}

TEST_F(Pickers, SelectFolderWantsAWritableFolder)
{
    const QString folder = folder_.makeFolder(QStringLiteral("there"));
    const Chooser chooser(folder);
    EXPECT_TEXT(selectFolder(QStringLiteral("Where to?")), folder);
    EXPECT_TEXT(chooser.title, QStringLiteral("Where to?"));
    const OrdinaryUser user;
    if (!user.isBound()) {
        GTEST_SKIP() << "this superuser may not lay down its privileges";
    }
    ASSERT_EQ(chmod(folder.toUtf8().constData(), 0500), 0);
    const Chooser again(folder);
    EXPECT_TEXT(selectFolder(QString()), QString());
}

TEST_F(Pickers, SelectFileFolderTakesEither)
{
    const QString file = folder_.makeFile(QStringLiteral("x/clip.mov"));
    const Chooser first(file);
    EXPECT_TEXTS(selectFileFolder(QString()).value_or(QStringList()), QStringList({file}));
    const QString folder = folder_.path(QStringLiteral("x"));
    const Chooser second(folder);
    EXPECT_TEXTS(selectFileFolder(QString()).value_or(QStringList()), QStringList({folder}));
}

TEST_F(Pickers, DstAutoBtIsTheWritableFolderOfTheSource)
{
    EXPECT_TEXT(dstAutoBt(QString()), QString());
    EXPECT_TEXT(dstAutoBt(QStringLiteral("")), QString());
    const QString file = folder_.makeFile(QStringLiteral("card/clip.mov"));
    EXPECT_TEXT(dstAutoBt(file), folder_.path(QStringLiteral("card")) + QLatin1Char('/'));
    EXPECT_TEXT(dstAutoBt(QStringLiteral("/proc/self/nothing")), QString());
    const OrdinaryUser user;
    if (!user.isBound()) {
        GTEST_SKIP() << "this superuser may not lay down its privileges";
    }
    ASSERT_EQ(chmod(folder_.path(QStringLiteral("card")).toUtf8().constData(), 0500), 0);
    EXPECT_TEXT(dstAutoBt(file), QString());
}

} // namespace tavrix::test
