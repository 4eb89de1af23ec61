// SPDX-License-Identifier: GPL-3.0-or-later
#include "windowharness.h"

#include "gui/dialogs/preferencessheet.h"
#include "gui/window/mainwindow.h"
#include "support/qtprinters.h"

#include <QApplication>
#include <QDropEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QMimeData>

namespace tavrix::test
{
namespace
{

class Drops : public WindowTest
{
protected:
    // Drops on the part the way the toolkit does: the part itself, or the next one around it that takes drops.
    static Qt::DropAction dropOn(QWidget* part, const QList<QUrl>& urls, Qt::DropActions offered = anyAction(),
                                 Qt::DropAction proposed = Qt::MoveAction)
    {
        QMimeData data;
        data.setUrls(urls);
        for (; part != nullptr; part = part->isWindow() ? nullptr : part->parentWidget()) {
            if (!part->acceptDrops()) {
                continue;
            }
            QDragEnterEvent enter(part->rect().center(), offered, &data, Qt::LeftButton, Qt::NoModifier);
            enter.setDropAction(proposed);
            QCoreApplication::sendEvent(part, &enter);
            if (enter.isAccepted()) {
                QDropEvent event(part->rect().center(), offered, &data, Qt::LeftButton, Qt::NoModifier);
                event.setDropAction(proposed);
                QCoreApplication::sendEvent(part, &event);
                return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
            }
        }
        return Qt::IgnoreAction;
    }
    // What a part would do with a drag that proposes a move.
    static Qt::DropAction enter(QWidget* part, const QList<QUrl>& urls)
    {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent event(part->rect().center(), anyAction(), &data, Qt::LeftButton, Qt::NoModifier);
        event.setDropAction(Qt::MoveAction);
        QCoreApplication::sendEvent(part, &event);
        const Qt::DropAction action = event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(part, &leave);
        return action;
    }
    static Qt::DropActions anyAction() { return Qt::CopyAction | Qt::MoveAction | Qt::LinkAction; }
    static QList<QUrl> urlsOf(const QStringList& paths)
    {
        QList<QUrl> urls;
        for (const QString& path : paths) {
            urls << QUrl::fromLocalFile(path);
        }
        return urls;
    }
};

} // namespace

// The file manager may delete the clips after a move; the fields took one as text.
TEST_F(Drops, NoPartOfAnyWindowTakesAMove)
{
    startProgram();
    trigger("menuPref");
    trigger("menuHelp");
    QFileDialog chooser;
    chooser.setOption(QFileDialog::DontUseNativeDialog);
    chooser.show();
    settle();
    const QList<QUrl> clip = urlsOf({folder_.makeFile(QStringLiteral("clip.MTS"), "clip")});
    const QList<QUrl> place = urlsOf({destination_});
    int parts = 0;
    for (QWidget* widget : QApplication::allWidgets()) {
        if (!widget->isVisible()) {
            continue;
        }
        ++parts;
        for (const QList<QUrl>& urls : {clip, place}) {
            EXPECT_EQ(dropOn(widget, urls, Qt::MoveAction), Qt::IgnoreAction) << widget->metaObject()->className();
            EXPECT_NE(enter(widget, urls), Qt::MoveAction) << widget->metaObject()->className();
        }
    }
    EXPECT_GT(parts, 30);
    EXPECT_EQ(rows().count(), 0);
}

TEST_F(Drops, TheFieldsTakeOneFolderOfThisMachine)
{
    startProgram();
    trigger("menuPref");
    settle();
    auto* field = find<QLineEdit>("mainEncDstPathStr");
    auto* preferred = window().preferences().findChild<QLineEdit*>(QStringLiteral("prefDefautDstPathStr"));
    ASSERT_NE(preferred, nullptr);
    const QString file = folder_.makeFile(QStringLiteral("clip.MTS"), "clip");
    const QString other = folder_.makeFolder(QStringLiteral("other"));
    for (QLineEdit* edit : {field, preferred}) {
        edit->clear();
        EXPECT_EQ(dropOn(edit, {QUrl(QStringLiteral("https://example.org/a"))}), Qt::IgnoreAction);
        EXPECT_EQ(dropOn(edit, {QUrl(QStringLiteral("file://far.example/tmp"))}), Qt::IgnoreAction);
        EXPECT_EQ(edit->text(), QString());
        EXPECT_EQ(dropOn(edit, urlsOf({destination_})), Qt::CopyAction);
        EXPECT_EQ(edit->text(), destination_);
    }
    // Clips that miss the drop area are clips all the same; the preferences have no place for them.
    for (const QStringList& clips : {QStringList{file}, QStringList{destination_, other}}) {
        EXPECT_EQ(dropOn(preferred, urlsOf(clips)), Qt::IgnoreAction);
        EXPECT_EQ(dropOn(field, urlsOf(clips)), Qt::CopyAction);
        EXPECT_TRUE(tools_.finishAll());
        EXPECT_EQ(rows().count(), 1);
    }
    EXPECT_EQ(field->text(), destination_);
    EXPECT_EQ(preferred->text(), destination_);
    EXPECT_TEXT(model().mainEncDstPathStr.stringValue(), destination_);
}

TEST_F(Drops, TextIsNoFolder)
{
    startProgram();
    auto* field = find<QLineEdit>("mainEncDstPathStr");
    QMimeData data;
    data.setText(QStringLiteral("/tmp"));
    QDragEnterEvent enter(field->rect().center(), anyAction(), &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(field, &enter);
    EXPECT_FALSE(enter.isAccepted());
}

TEST_F(Drops, TheWholeWindowTakesClips)
{
    startProgram();
    int clips = 0;
    for (const char* part : {"mainEncProgressCaptionStr", "encBatchArrayController", "leftOutBt", "batchEncGoBt"}) {
        SCOPED_TRACE(part);
        ++clips;
        const QString clip = folder_.makeFile(QStringLiteral("clip%1.MTS").arg(clips), "clip");
        EXPECT_EQ(dropOn(find<QWidget>(part), urlsOf({clip})), Qt::CopyAction);
        EXPECT_TRUE(tools_.finishAll());
        EXPECT_EQ(rows().count(), clips);
    }
    EXPECT_EQ(dropOn(window().centralWidget(), {QUrl(QStringLiteral("https://example.org/a.mts"))}), Qt::IgnoreAction);
}

} // namespace tavrix::test
