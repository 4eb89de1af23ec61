// SPDX-License-Identifier: GPL-3.0-or-later
#include "windowharness.h"

#include "app/stepflags.h"
#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "testpaths.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>

namespace tavrix::test
{

DialogRobot::DialogRobot()
{
    timer_.setInterval(5);
    QObject::connect(&timer_, &QTimer::timeout, this, &DialogRobot::tick);
    timer_.start();
}

void DialogRobot::press(const QString& button, bool tick)
{
    steps_.push_back({button, tick, false, {}, {}});
}

void DialogRobot::waitForTimeOut()
{
    steps_.push_back({{}, false, true, {}, {}});
}

void DialogRobot::choose(const QString& path)
{
    steps_.push_back({{}, false, false, path, {}});
}

void DialogRobot::look(std::function<void(QDialog&)> looker)
{
    steps_.push_back({{}, false, false, {}, std::move(looker)});
}

void DialogRobot::lookAtChooser(std::function<void(QDialog&)> looker)
{
    steps_.push_back({{}, false, false, {}, std::move(looker), true});
}

void DialogRobot::tick()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* dialog = qobject_cast<QDialog*>(widget);
        if (dialog == nullptr || !dialog->isVisible() || dialog == answered_ || steps_.empty()) {
            continue;
        }
        if (auto* chooser = qobject_cast<QFileDialog*>(dialog)) {
            answerChooser(*chooser);
            return;
        }
        if (dialog->objectName() == QLatin1String("alertDialog")) {
            answerAlert(*dialog);
            return;
        }
    }
}

void DialogRobot::answerChooser(QFileDialog& dialog)
{
    if (steps_.front().atChooser) {
        const Step step = steps_.front();
        steps_.pop_front();
        step.looker(dialog);
        return;
    }
    if (steps_.front().path.isEmpty()) {
        return;
    }
    const QString path = steps_.front().path;
    steps_.pop_front();
    answered_ = &dialog;
    dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
    QMetaObject::invokeMethod(&dialog, "accept");
}

void DialogRobot::answerAlert(QDialog& dialog)
{
    if (!steps_.front().path.isEmpty() || steps_.front().atChooser) {
        return;
    }
    const Step step = steps_.front();
    steps_.pop_front();
    if (step.looker) {
        step.looker(dialog);
        return;
    }
    answered_ = &dialog;
    titles << dialog.findChild<QLabel*>(QStringLiteral("alertTitle"))->text();
    if (step.timeOut) {
        return;
    }
    if (step.tick) {
        dialog.findChild<QCheckBox*>(QStringLiteral("alertCheckBox"))->click();
    }
    dialog.findChild<QAbstractButton*>(step.button)->click();
}

void WindowTest::SetUp()
{
    setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
    setLanguage(QStringLiteral("en"));
    for (const QString& key : prefAllKeys()) {
        prefDelete(key);
    }
    prefSynchronize();
    setDesktopServices(&desktop_);
    destination_ = folder_.makeFolder(QStringLiteral("converted"));
    robot_ = std::make_unique<DialogRobot>();
}

void WindowTest::TearDown()
{
    endProgram();
    setDesktopServices(nullptr);
    setDEBUG(0);
}

void WindowTest::startProgram(bool realTools)
{
    program_ = std::make_unique<WindowProgram>([this] { ++terminations_; });
    program_->face().setRedirectsOutput(false);
    program_->presenter().setTickMilliseconds(1);
    if (!realTools) {
        controller().setLauncherFactory(tools_.factory());
    }
    ASSERT_TRUE(program_->start());
    settle();
}

void WindowTest::endProgram()
{
    killProgram();
    // A user who quits has done with the list.
    prefDelete(pref::batchMemory);
}

void WindowTest::killProgram()
{
    if (program_ && !controller().isQuitting()) {
        controller().quitWithoutQuestion();
    }
    program_.reset();
}

void WindowTest::click(const char* name)
{
    auto* button = find<QAbstractButton>(name);
    ASSERT_NE(button, nullptr);
    ASSERT_TRUE(button->isEnabled()) << name;
    QTest::mouseClick(button, Qt::LeftButton);
}

void WindowTest::trigger(const char* action)
{
    auto* found = find<QAction>(action);
    ASSERT_NE(found, nullptr);
    ASSERT_TRUE(found->isEnabled()) << action;
    found->trigger();
}

void WindowTest::type(const char* name, const QString& text)
{
    auto* field = find<QLineEdit>(name);
    ASSERT_NE(field, nullptr);
    field->selectAll();
    QTest::keyClicks(field, text);
}

Qt::DropAction WindowTest::drop(const QStringList& paths, Qt::DropActions offered, Qt::DropAction proposed)
{
    auto* view = find<QWidget>("dragndropImgView");
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& path : paths) {
        urls << QUrl::fromLocalFile(path);
    }
    data.setUrls(urls);
    QDragEnterEvent enter(view->rect().center(), offered, &data, Qt::LeftButton, Qt::NoModifier);
    enter.setDropAction(proposed);
    QCoreApplication::sendEvent(view, &enter);
    if (!enter.isAccepted()) {
        return Qt::IgnoreAction;
    }
    QDropEvent event(view->rect().center(), offered, &data, Qt::LeftButton, Qt::NoModifier);
    event.setDropAction(proposed);
    QCoreApplication::sendEvent(view, &event);
    return event.dropAction();
}

QStringList WindowTest::analysedClips(int count)
{
    QStringList paths;
    for (int i = 1; i <= count; ++i) {
        paths << folder_.makeFile(QStringLiteral("clip%1.MTS").arg(i), "clip");
    }
    drop(paths);
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_EQ(rows().count(), count);
    return paths;
}

QStringList WindowTest::states()
{
    QStringList names;
    for (int i = 0; i < rows().count(); ++i) {
        names << rows().row(i).resultat;
    }
    return names;
}

void WindowTest::useDestination()
{
    type("mainEncDstPathStr", destination_);
}

} // namespace tavrix::test
