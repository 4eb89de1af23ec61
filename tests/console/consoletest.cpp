// SPDX-License-Identifier: GPL-3.0-or-later
#include "consoletest.h"

#include "base/bundle/bundle.h"
#include "base/files/fileinfo.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "base/text/format.h"
#include "base/text/paths.h"
#include "testpaths.h"

namespace tavrix::test
{

ConsoleTest::ConsoleTest()
{
    setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
    setLanguage(QStringLiteral("en"));
    for (const QString& key : prefAllKeys()) {
        prefDelete(key);
    }
    setTMPFOLDER(folder.makeFolder(QStringLiteral("temporary")) + u'/');
    setOPENPERM(1);
    setAIC(0);
    setPRORES(0);
    setFreeSpaceForTests(1000000);
}

ConsoleTest::~ConsoleTest()
{
    setFreeSpaceForTests(-1);
    setTMPFOLDER(QString());
    setLanguage(QStringLiteral("en"));
}

void NotingReporter::queued(int count)
{
    notes << formatText(QStringLiteral("queued %d"), {count});
}

void NotingReporter::analysing(const QString& path, int number, int total)
{
    notes << formatText(QStringLiteral("analysing %d/%d %@"), {number, total, lastPathComponent(path)});
}

void NotingReporter::accepted(const QString& path, const QVariantMap& /*infos*/)
{
    notes << QStringLiteral("accepted ") + lastPathComponent(path);
}

void NotingReporter::rejected(const QString& path, const QString& reason)
{
    notes << formatText(QStringLiteral("rejected %@: %@"), {lastPathComponent(path), reason});
}

void NotingReporter::rowStarted(int number, int total, const QString& source, const std::optional<ClipPart>& /*part*/)
{
    notes << formatText(QStringLiteral("started %d/%d %@"), {number, total, source});
}

void NotingReporter::rowProgress(const RowProgress& progress)
{
    notes << formatText(QStringLiteral("progress %@ of %@, %d/%d %.2f"),
                        {progress.value, progress.maximum, progress.pass, progress.passes, progress.fraction});
}

void NotingReporter::rowFinished(int number, int total, const RowReport& row)
{
    notes << formatText(QStringLiteral("finished %d/%d %@"),
                        {number, total, row.success ? QStringLiteral("done") : row.reason});
}

void NotingReporter::message(const QString& title, const QString& text, const QString& answer)
{
    notes << QStringLiteral("message ") + QStringList{title, text, answer}.join(u'|');
}

void NotingReporter::notice(const QString& title, const QString& text)
{
    notes << QStringLiteral("notice ") + QStringList{title, text}.join(u'|');
}

void NotingReporter::plan(const QList<PlannedRow>& rows, int leftOut, const QString& outputFolder, int exitCode)
{
    folder = outputFolder;
    for (const PlannedRow& row : rows) {
        notes << formatText(QStringLiteral("planned %d/%d %@ format %d %@%@%@"),
                            {row.number, row.total, lastPathComponent(row.source), row.out,
                             lastPathComponent(row.output), row.exists ? QStringLiteral(" exists") : QStringLiteral(""),
                             row.sameName ? QStringLiteral(" twice") : QStringLiteral("")});
    }
    notes << formatText(QStringLiteral("plan of %d, %d left out, status %d"), {qint64(rows.size()), leftOut, exitCode});
}

void NotingReporter::summary(const QList<RowReport>& rows, const NotConverted& others, const QString& outputFolder,
                             int exitCode)
{
    folder = outputFolder;
    notes << formatText(QStringLiteral("summary of %d, %d left out, status %d"),
                        {qint64(rows.size()), others.leftOut, exitCode});
}

} // namespace tavrix::test
