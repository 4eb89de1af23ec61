// SPDX-License-Identifier: GPL-3.0-or-later
#include "sizes.h"

#include "app/appdelegate.h"
#include "base/dialogue/localisation.h"
#include "base/store/preferences.h"
#include "base/text/format.h"
#include "gui/window/mainwindow.h"
#include "gui/window/windowprogram.h"
#include "probe/batchtexts.h"
#include "support/waituntil.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>

namespace
{

using namespace tavrix;

QString thumbnail(int number)
{
    const QString path = QDir::tempPath() + QStringLiteral("/thumbnail%1.jpg").arg(number % 12);
    QImage picture(320, 180, QImage::Format_RGB32);
    QPainter painter(&picture);
    QLinearGradient sky(0, 0, 0, 180);
    sky.setColorAt(0, QColor::fromHsv(number * 31 % 360, 140, 230));
    sky.setColorAt(1, QColor::fromHsv((number * 31 + 60) % 360, 160, 90));
    painter.fillRect(picture.rect(), sky);
    painter.end();
    picture.save(path);
    return path;
}

// An empty file with a date: all that the window looks at.
QString source(int number, const QString& name)
{
    const QString folder = QDir::homePath() + QStringLiteral("/card/%1").arg(number);
    QDir().mkpath(folder);
    QFile file(folder + QLatin1Char('/') + name);
    if (file.open(QIODevice::WriteOnly)) {
        file.setFileTime(QDateTime(QDate(2011, 7, 2), QTime(10, 12)).addSecs(number * 311),
                         QFile::FileModificationTime);
    }
    return file.fileName();
}

BatchRow rowOf(int number)
{
    static const QStringList names{QStringLiteral("00001.MTS"), QStringLiteral("MVI_0003.MOV"),
                                   QStringLiteral("Birthday party in the garden, second part.mov"),
                                   QStringLiteral("DSC00042.AVI")};
    BatchRow row;
    row.order = number;
    row.src = names.at(number % names.size());
    row.out = number % 5 == 4 ? 5 : 3;
    row.resultat = rowIcon::pending;
    row.img = thumbnail(number);
    row.dico.insert(record::mainEncSrcPathStr, source(number, row.src));
    row.dico.insert(record::stream('v', 0, "bitrate"), 17000);
    row.dico.insert(record::v0_codec, QStringLiteral("h264"));
    row.dico.insert(record::v0_width, 1280);
    row.dico.insert(record::v0_height, 720);
    row.dico.insert(record::v0_fps, 59.94F);
    row.dico.insert(record::w_duration, 20 + number * 7 % 300);
    return row;
}

class Pictures
{
public:
    Pictures(QString folder, QString prefix, QString language, int theme)
        : folder_(std::move(folder)), prefix_(std::move(prefix)), language_(std::move(language)), theme_(theme)
    {
    }

    bool run()
    {
        const QList<std::pair<QString, QSize>> sizes{{QStringLiteral("1280x800"), {1280, 800}},
                                                     {QStringLiteral("1920x1080"), {1920, 1080}},
                                                     {QStringLiteral("smallest"), {1, 1}}};
        bool saved = true;
        for (const int count : {0, 1, 12, 200}) {
            for (const auto& [name, size] : sizes) {
                saved = picture(count, name, size) && saved;
            }
        }
        return saved;
    }

private:
    bool picture(int count, const QString& name, const QSize& size)
    {
        setLanguage(language_);
        prefWrite(QStringLiteral("prefColor"), theme_);
        WindowProgram program([] {});
        program.face().setRedirectsOutput(false);
        if (!program.start()) {
            return false;
        }
        WindowModel& model = program.controller().model();
        model.mainEncDstPathStr.setStringValue(QStringLiteral("~/Videos"));
        for (int i = 1; i <= count; ++i) {
            model.encBatchArrayController.append(rowOf(i));
        }
        if (count > 0) {
            model.drawer.open();
            model.batchEncGoBt.setEnabled(true);
        }
        if (count > 1) {
            pretendToRun(program);
        }
        test::waitUntil([] { return false; }, 150);
        program.window().resize(size.expandedTo(program.window().minimumSizeHint()));
        test::waitUntil([] { return false; }, 150);
        const bool saved = program.window().grab().save(
            folder_ + formatText(QStringLiteral("%@%@-theme%d-%@-%d.png"), {prefix_, language_, theme_, name, count}));
        // Only pretended: there is nothing to ask about.
        model.batchEncGoBt.setState(0);
        model.encBatchArrayController.clear();
        program.controller().iba_menuQuit();
        return saved;
    }

    // As it stands in the middle of a batch; nothing is encoded.
    static void pretendToRun(WindowProgram& program)
    {
        WindowModel& model = program.controller().model();
        BatchList& rows = model.encBatchArrayController;
        rows.setResultat(0, rowIcon::success);
        rows.setResultat(1, rowIcon::failure);
        rows.setReason(1, batchText("Row_nothingDecodable"));
        rows.setResultat(2, rowIcon::success);
        rows.setWarning(2, formatText(batchText("Row_incomplete"), {batchText("Row_cutOff")}), true);
        rows.setResultat(3, rowIcon::current);
        model.batchEncGoBt.setEnabled(false);
        model.batchEncGoBt.setState(1);
        model.encStopBt.setHidden(false);
        model.encTaskProgress.setIndeterminate(false);
        model.encTaskProgress.setRange(0, 100);
        model.encTaskProgress.setDoubleValue(47);
        model.mainEncProgressCaptionStr.setStringValue(rows.row(3).src);
        Q_EMIT program.controller().rowStarted(0);
        Q_EMIT program.controller().rowFinished(2, true);
        Q_EMIT program.controller().rowStarted(3);
        Q_EMIT program.controller().rowStep(3, 2, 2, 0.47);
        rows.setSelectedRows({5, 6});
    }

    QString folder_;
    QString prefix_;
    QString language_;
    int theme_;
};

} // namespace

bool savePicturesOfSizes(const QString& folder, const QString& prefix)
{
    bool saved = true;
    for (const auto& [language, theme] : {std::pair("en", 0), std::pair("fr", 4), std::pair("de", 2)}) {
        saved = Pictures(folder, prefix, QString::fromLatin1(language), theme).run() && saved;
    }
    return saved;
}
