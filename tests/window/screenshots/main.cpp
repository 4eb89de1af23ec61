// SPDX-License-Identifier: GPL-3.0-or-later
#include "sizes.h"

#include "app/appdelegate.h"
#include "base/bundle/bundle.h"
#include "base/dialogue/alerts.h"
#include "base/dialogue/localisation.h"
#include "base/store/preferences.h"
#include "gui/dialogs/helpwindow.h"
#include "gui/dialogs/preferencessheet.h"
#include "gui/dialogs/toolwindow.h"
#include "gui/preview/moviewidget.h"
#include "gui/preview/partdialog.h"
#include "gui/preview/previewwindow.h"
#include "gui/preview/trimline.h"
#include "gui/widgets/theme.h"
#include "gui/window/batchdrawer.h"
#include "gui/window/batchview.h"
#include "gui/window/mainwindow.h"
#include "gui/window/windowprogram.h"
#include "platform/desktop.h"
#include "support/waituntil.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QListView>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <tuple>

// Makes the pictures of the window in its states, with real clips and the real tools: tavrix_screenshots FOLDER. Its
// sizes, with rows that are only pretended: tavrix_screenshots FOLDER --sizes PREFIX.
namespace
{

using tavrix::test::waitUntil;

// Nothing of the real desktop is opened meanwhile.
class QuietDesktop : public tavrix::DesktopServices
{
public:
    bool openUrl(const QUrl&) override { return true; }
    bool openFileWith(const QString&, const QString&) override { return true; }
    bool reveal(const QString&) override { return true; }
    void noteFileSystemChanged(const QString&) override {}
};

bool ffmpeg(const QStringList& arguments)
{
    return QProcess::execute(QStringLiteral("ffmpeg"),
                             QStringList{QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                                         QStringLiteral("-y"), QStringLiteral("-f"), QStringLiteral("lavfi"),
                                         QStringLiteral("-i")} +
                                 arguments) == 0;
}

bool makeClips(const QString& folder)
{
    const auto clip = [&folder](const QString& picture, const QString& name, const QStringList& options) {
        return ffmpeg(QStringList{picture} + options + QStringList{folder + QLatin1Char('/') + name});
    };
    const QStringList h264{QStringLiteral("-c:v"),      QStringLiteral("libx264"),  QStringLiteral("-preset"),
                           QStringLiteral("ultrafast"), QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p")};
    const QStringList mjpeg{QStringLiteral("-c:v"), QStringLiteral("mjpeg"), QStringLiteral("-pix_fmt"),
                            QStringLiteral("yuvj420p")};
    return clip(QStringLiteral("mandelbrot=size=1280x720:rate=25:end_scale=0.1,trim=duration=5"),
                QStringLiteral("00001.MTS"), h264) &&
           clip(QStringLiteral("testsrc2=size=1280x720:rate=25:duration=12"), QStringLiteral("00002.MTS"), h264) &&
           clip(QStringLiteral("life=size=320x180:mold=10:rate=25:ratio=0.1:death_color=#C83232:life_color=#00ff00,"
                               "scale=1280x720,trim=duration=6"),
                QStringLiteral("Birthday party.mov"), h264) &&
           clip(QStringLiteral("gradients=size=640x480:rate=25:duration=4"), QStringLiteral("DSC00042.AVI"), mjpeg) &&
           clip(QStringLiteral("color=c=navy:size=320x240:rate=5:duration=1"), QStringLiteral("short.avi"), mjpeg) &&
           clip(QStringLiteral("testsrc=size=1920x1080:rate=25:duration=1"), QStringLiteral("too large.mov"), h264);
}

class Session
{
public:
    Session(const QString& clips, const QString& pictures, const QString& prefix)
        : clips_(clips), pictures_(pictures), prefix_(prefix), program_([] {})
    {
        program_.face().setRedirectsOutput(false);
    }

    bool run(const QString& language, int theme)
    {
        tavrix::setLanguage(language);
        tavrix::prefWrite(QStringLiteral("prefColor"), theme);
        tavrix::prefWrite(QStringLiteral("prefCheckMatrix"), 1);
        return program_.start() && empty() && analysing() && encoding() && finished() && question() && sheets();
    }

private:
    tavrix::WindowModel& model() { return program_.controller().model(); }

    bool save(QWidget* widget, const char* name)
    {
        waitUntil([] { return false; }, 150);
        return widget != nullptr &&
               widget->grab().save(pictures_ + prefix_ + QLatin1String(name) + QStringLiteral(".png"));
    }
    QWidget* dialog(const char* name) { return program_.window().findChild<QWidget*>(QLatin1String(name)); }

    bool empty()
    {
        model().mainEncDstPathStr.setStringValue(QString());
        return save(&program_.window(), "main-empty");
    }
    bool analysing()
    {
        program_.openFiles({clips_});
        const QString wanted = QStringLiteral("3/6");
        return waitUntil([&] { return model().analyseCaptionStr.stringValue() == wanted; }, 30000) &&
               save(&program_.window(), "main-analysing") &&
               waitUntil([&] { return !program_.controller().isAnalysing(); }, 60000);
    }
    bool encoding()
    {
        model().mainEncDstPathStr.setStringValue(QStringLiteral("~/Videos"));
        QDir().mkpath(QDir::homePath() + QStringLiteral("/Videos"));
        // The outputs of the session before are replaced without a question.
        program_.controller().setReplacePolicy(1);
        program_.controller().iba_batchEncGoBt();
        return waitUntil(
                   [&] {
                       return model().encBatchArrayController.row(1).resultat == tavrix::rowIcon::current &&
                              model().encTaskProgress.doubleValue() > 0.3 * model().encTaskProgress.maxValue();
                   },
                   120000) &&
               save(&program_.window(), "main-encoding") &&
               waitUntil([&] { return model().batchEncGoBt.state() == 0; }, 240000);
    }
    // The second run meets the outputs of the first.
    bool question()
    {
        bool saved = false;
        closeSheets();
        QTimer::singleShot(600, &program_, [this, &saved] {
            saved = save(dialog("alertDialog"), "alert");
            program_.presenter().dismissAll();
            model().mainEncProgressInt.setIntValue(0);
        });
        program_.controller().setReplacePolicy(std::nullopt);
        QTimer answering;
        QObject::connect(&answering, &QTimer::timeout, &program_, [this] { program_.presenter().dismissAll(); });
        answering.start(1000);
        program_.controller().iba_batchEncGoBt();
        return waitUntil([&] { return model().batchEncGoBt.state() == 0; }, 240000) && saved;
    }
    void closeSheets()
    {
        waitUntil([this] {
            // A closed sheet is deleted later than this loop looks.
            bool open = false;
            for (auto* button : program_.window().findChildren<QPushButton*>(QStringLiteral("alertButton0"))) {
                open = open || button->isVisible();
                button->click();
            }
            return !open;
        });
    }
    bool finished()
    {
        closeSheets();
        tavrix::BatchList& rows = model().encBatchArrayController;
        rows.setSelectedRow(rows.count() - 1);
        program_.window().findChild<QListView*>(QStringLiteral("encBatchArrayController"))->scrollToBottom();
        const bool saved = save(&program_.window(), "main-finished");
        program_.window().findChild<QPushButton*>(QStringLiteral("leftOutBt"))->click();
        QWidget* list = dialog("leftOutDialog");
        const bool listed = save(list, "left-out");
        list->close();
        return saved && listed;
    }
    bool sheets()
    {
        program_.controller().iba_menuPref();
        const bool preferences = save(&program_.window().preferences(), "preferences");
        program_.controller().iba_menuPrefClose();
        program_.controller().iba_menuHelp(&model().versionStr);
        tavrix::HelpWindow* help = program_.face().helpWindow();
        auto* movie = help->findChild<tavrix::MovieWidget*>();
        waitUntil([movie] { return movie->hasFrame() || movie->hasFailed(); }, 5000);
        const bool moving = save(help, "help");
        help->showPages();
        const bool pages = save(help, "help-pages");
        program_.controller().iba_helpQtClose();
        const bool previewed = previewAndPart();
        const bool told = toolWindows();
        program_.controller().iba_menuQuit();
        return preferences && moving && pages && previewed && told;
    }

    // A part of a clip, marked, and how it is saved.
    bool previewAndPart()
    {
        program_.controller().iba_preview(1);
        tavrix::PreviewWindow* preview = program_.face().previewWindow();
        tavrix::MovieWidget& movie = preview->movieWidget();
        waitUntil([&movie] { return movie.hasFrame() || movie.hasFailed(); }, 5000);
        preview->findChild<QAbstractButton*>(QStringLiteral("previewStopBt"))->click();
        auto* line = preview->findChild<tavrix::TrimLine*>(QStringLiteral("previewTime"));
        const auto goTo = [preview, line](double share) {
            const double seconds = line->maximum() * share / 1000;
            Q_EMIT line->wentTo(seconds);
            waitUntil([preview, seconds] { return std::abs(preview->shownFrom() - seconds) < 0.1; }, 5000);
        };
        goTo(0.7);
        preview->findChild<QAbstractButton*>(QStringLiteral("trimOutBt"))->click();
        goTo(0.25);
        preview->findChild<QAbstractButton*>(QStringLiteral("trimInBt"))->click();
        waitUntil([line] { return line->isFilled(); }, 10000);
        const bool previewed = save(preview, "preview");
        preview->findChild<QAbstractButton*>(QStringLiteral("trimSaveBt"))->click();
        auto* dialog = preview->findChild<tavrix::PartDialog*>();
        const bool asked = save(dialog, "part-dialog");
        dialog->close();
        preview->close();
        return previewed && asked;
    }
    // Information and report.
    bool toolWindows()
    {
        program_.window().batchDrawer().view().setFocus();
        model().encBatchArrayController.setSelectedRow(1);
        bool saved = true;
        for (const auto& [action, window, name] : {std::tuple("menuInformation", "informationWindow", "information"),
                                                   std::tuple("menuBugreport", "reportWindow", "report")}) {
            program_.window().findChild<QAction*>(QLatin1String(action))->trigger();
            auto* shown = program_.window().findChild<tavrix::ToolWindow*>(QLatin1String(window));
            waitUntil([shown] { return shown->text().size() > 400; }, 20000);
            saved = save(shown, name) && saved;
            shown->close();
        }
        return saved;
    }

    QString clips_;
    QString pictures_;
    QString prefix_;
    tavrix::WindowProgram program_;
};

} // namespace

int main(int argc, char** argv)
{
    const QTemporaryDir home(QDir::tempPath() + QStringLiteral("/anna-XXXXXX"));
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_DATA_HOME", home.filePath(QStringLiteral("data")).toUtf8());
    if (!qEnvironmentVariableIsSet("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setQuitOnLastWindowClosed(false);
    const bool onlySizes = argc == 4 && qstrcmp(argv[2], "--sizes") == 0;
    if (argc != 2 && !onlySizes) {
        std::fputs("Usage: tavrix_screenshots FOLDER [--sizes PREFIX]\n", stderr);
        return 2;
    }
    const QString pictures = QFileInfo(QString::fromLocal8Bit(argv[1])).absoluteFilePath() + QLatin1Char('/');
    const QString clips = home.filePath(QStringLiteral("clips"));
    tavrix::setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
    QuietDesktop desktop;
    tavrix::setDesktopServices(&desktop);
    if (onlySizes) {
        const bool saved = QDir().mkpath(pictures) && savePicturesOfSizes(pictures, QString::fromLocal8Bit(argv[3]));
        return saved ? 0 : 1;
    }
    if (!QDir().mkpath(pictures) || !QDir().mkpath(clips) || !makeClips(clips)) {
        std::fputs("The clips cannot be made: is ffmpeg installed?\n", stderr);
        return 1;
    }
    for (const auto& [language, theme] :
         {std::pair("en", 0), std::pair("en", 4), std::pair("fr", 4), std::pair("de", 2)}) {
        const QString prefix = QStringLiteral("%1-theme%2-").arg(QLatin1String(language)).arg(theme);
        Session session(clips, pictures, prefix);
        if (!session.run(QLatin1String(language), theme)) {
            std::fprintf(stderr, "Not all pictures could be made (%s)\n", language);
            return 1;
        }
    }
    return 0;
}
