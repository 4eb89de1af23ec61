// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/window/rowdetails.h"

#include "app/partfile.h"
#include "base/dialogue/shownvalues.h"
#include "base/files/fileinfo.h"
#include "base/text/shownname.h"
#include "encode/encoderarguments.h"
#include "encode/outputname.h"
#include "encode/rowforecast.h"
#include "gui/widgets/windowtext.h"
#include "probe/batchtexts.h"
#include "probe/cameraclip.h"
#include "probe/recordersources.h"
#include "probe/recordingname.h"

#include <QImageReader>

namespace tavrix
{

namespace
{

constexpr qsizetype maximumWanted = 64;
constexpr int lastFormatOfOnePass = 3;

// In bytes; -1 when nothing can be said.
qint64 estimateOf(const BatchRow& row, double megabytes)
{
    if (megabytes < 0) {
        return -1;
    }
    const MediaInfoRecord record = convertedRecord(row);
    if (const qint64 forecast = outputForecast(record, row.out); forecast > 0) {
        return forecast;
    }
    // The rule's estimate counts the first pass only: what a second one makes is many times as large.
    if (row.out > lastFormatOfOnePass) {
        return -1;
    }
    const auto duration = static_cast<float>(record.value(record::w_duration).toDouble());
    constexpr double bytesPerMegabyte = 1024.0 * 1024;
    const float estimate = encDstPoidsEstimatif(duration, megabytes * convertedShare(row), row.out);
    return static_cast<qint64>(static_cast<double>(estimate) * bytesPerMegabyte);
}

// "0:10 to 0:42 of 1:20".
QString partWords(const ClipPart& part, double whole)
{
    return windowText("Win_rowPart",
                      {shownClipTime(part.from), shownClipTime(part.to.value_or(whole)), durationWords(whole)});
}

QString dateSourceWords(const QString& source)
{
    static const QHash<QString, const char*> keys{
        {dateSource::playlist, "Win_date_playlist"},         {dateSource::pictureStream, "Win_date_pictureStream"},
        {dateSource::creationDate, "Win_date_creationDate"}, {dateSource::movieHeader, "Win_date_movieHeader"},
        {dateSource::aviDate, "Win_date_aviDate"},           {dateSource::file, "Win_date_file"}};
    return windowText(keys.value(source, "Win_date_file"));
}

} // namespace

RowDetails::RowDetails(BatchList& rows, QObject* parent) : QObject(parent), rows_(rows)
{
    lookUp_.setSingleShot(true);
    connect(&lookUp_, &QTimer::timeout, this, &RowDetails::lookUpNext);
    // A later clip of the same name gets the thumbnail file's name again.
    connect(&rows, &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex&, int first, int last) { forget(first, last); });
    connect(&rows, &QAbstractItemModel::modelAboutToBeReset, this, [this] { forget(0, rows_.count() - 1); });
}

QPixmap RowDetails::thumbnail(const BatchRow& row, const QSize& size, qreal scale)
{
    if (row.img.isEmpty()) {
        return {};
    }
    const auto known = thumbnails_.constFind(row.img);
    if (known != thumbnails_.constEnd()) {
        return *known;
    }
    ++thumbnailLoads_;
    QImageReader reader(row.img);
    reader.setScaledSize(reader.size().scaled(size * scale, Qt::KeepAspectRatio));
    QPixmap pixmap = QPixmap::fromImage(reader.read());
    pixmap.setDevicePixelRatio(scale);
    thumbnails_.insert(row.img, pixmap);
    return pixmap;
}

QString RowDetails::outputName(const BatchRow& row)
{
    const QString source = row.source();
    const auto known = names_.constFind(source);
    if (known != names_.constEnd()) {
        return tavrix::outputName(*known, row.out, row.dico.value(record::v0_codec).toString());
    }
    // The last rows asked for are those on the screen: older wishes of a fast scroll are dropped.
    wanted_.removeAll(source);
    wanted_.append(source);
    if (wanted_.size() > maximumWanted) {
        wanted_.removeFirst();
    }
    if (!lookUp_.isActive()) {
        lookUp_.start(0);
    }
    return {};
}

// One clip per turn of the event loop: the look-up runs a tool for clips of recorders.
void RowDetails::lookUpNext()
{
    if (wanted_.isEmpty()) {
        return;
    }
    const QString source = wanted_.takeLast();
    if (rows_.indexOfSource(source) >= 0) {
        names_.insert(source, dateCreation2iMovieName(source));
        Q_EMIT changed();
    }
    if (!wanted_.isEmpty()) {
        lookUp_.start(0);
    }
}

qint64 RowDetails::estimatedBytes(const BatchRow& row)
{
    const QString source = row.source();
    const auto known = sizes_.constFind(source);
    if (known != sizes_.constEnd() && known->out == row.out && known->part == row.part) {
        return known->bytes;
    }
    // The estimate writes to the log: it is not made anew for every painting.
    const double megabytes = known != sizes_.constEnd() ? known->source : poidsFile(source, QStringLiteral("m"));
    const qint64 bytes = estimateOf(row, megabytes);
    sizes_.insert(source, {megabytes, row.out, row.part, bytes});
    return bytes;
}

QString RowDetails::estimatedSize(const BatchRow& row)
{
    const qint64 bytes = estimatedBytes(row);
    return bytes < 0 ? QStringLiteral("") : shownSize(bytes);
}

QString RowDetails::description(const BatchRow& row)
{
    const MediaInfoRecord& infos = row.dico;
    QStringList parts = pictureWords(infos);
    if (infos.contains(record::w_duration)) {
        const double whole = infos.value(record::w_duration).toDouble();
        parts << (row.part ? partWords(*row.part, whole) : durationWords(whole));
    }
    return parts.isEmpty() ? windowText("Win_unknownClip") : besideEachOther(parts);
}

qint64 RowDetails::outputBytes(const BatchRow& row)
{
    if (row.output.isEmpty()) {
        return -1;
    }
    const auto known = outputSizes_.constFind(row.output);
    if (known != outputSizes_.constEnd()) {
        return *known;
    }
    const auto bytes = static_cast<qint64>(poidsFile(row.output, QStringLiteral("O")));
    outputSizes_.insert(row.output, bytes);
    return bytes;
}

QString RowDetails::outputSize(const BatchRow& row)
{
    const qint64 bytes = outputBytes(row);
    return bytes < 0 ? QStringLiteral("") : shownSize(bytes);
}

// Rows that cannot be read become nothing and count for nothing.
qint64 RowDetails::sizeOfAll()
{
    qint64 bytes = 0;
    for (int i = 0; i < rows_.count(); ++i) {
        const BatchRow& row = rows_.row(i);
        if (const qint64 made = outputBytes(row); made >= 0) {
            bytes += made;
        } else if (row.dico.contains(record::v0_codec)) {
            bytes += qMax(qint64(0), estimatedBytes(row));
        }
    }
    return bytes;
}

void RowDetails::setStep(const RowStep& step)
{
    step_ = step;
    if (step.row < 0) {
        // The output of a row that ran again has another size.
        outputSizes_.clear();
    }
    Q_EMIT changed();
}

QString RowDetails::stepWords(int row) const
{
    if (row < 0 || row != step_.row || row >= rows_.count()) {
        return QStringLiteral("");
    }
    const int percent = wholePercents(step_.fraction);
    if (step_.passes == 1) {
        return windowText("Win_percent", {percent});
    }
    // The part is made before all else.
    const int pass = rows_.row(row).part ? step_.pass - 1 : step_.pass;
    const bool converts = pass == 2 || (pass == 1 && step_.passes == 2 && rows_.row(row).part);
    const char* const key = pass == 0 ? "Win_partStep" : converts ? "Win_secondStep" : "Win_firstStep";
    return windowText("Win_stepOfWithPart", {step_.pass, step_.passes, windowText(key), percent});
}

QString RowDetails::spokenWords(int row) const
{
    const BatchRow& shown = rows_.row(row);
    QStringList parts{formatText(QStringLiteral("%d. %@"), {shown.order, shownText(shown.src)}), stateWords(shown)};
    if (const QString step = stepWords(row); !step.isEmpty()) {
        parts << step;
    }
    for (const QString& words : {shown.reason, shown.warning}) {
        if (!words.isEmpty()) {
            parts << shownText(words);
        }
    }
    parts << formatName(shown.out);
    if (shown.dico.contains(record::w_duration)) {
        const double whole = shown.dico.value(record::w_duration).toDouble();
        parts << (shown.part ? partWords(*shown.part, whole) : durationWords(whole));
    }
    return parts.join(QStringLiteral(", "));
}

QString RowDetails::summary(const BatchRow& row)
{
    QStringList lines{shownText(row.source()), description(row), windowText("Win_lineFormat", {formatName(row.out)})};
    if (const QString size = outputSize(row); !size.isEmpty()) {
        lines << windowText("Win_lineOutputSize", {size});
    } else if (const QString expected = estimatedSize(row); !expected.isEmpty()) {
        lines << windowText("Win_lineSize", {expected});
    }
    if (const QString name = outputName(row); !name.isEmpty()) {
        lines << windowText("Win_lineName", {name});
    }
    const QString date = row.dico.value(record::recordingDate).toString();
    if (!date.isEmpty()) {
        lines << windowText("Win_lineRecorded",
                            {date, dateSourceWords(row.dico.value(record::recordingDateSource).toString())});
    }
    if (!row.reason.isEmpty()) {
        lines << (row.kept ? shownText(row.reason) : windowText("Win_lineFailed", {row.reason}));
    }
    if (!row.warning.isEmpty()) {
        lines << windowText("Win_lineWarning", {row.warning});
    }
    return lines.join(QLatin1Char('\n'));
}

void RowDetails::forget(int first, int last)
{
    for (int i = first; i <= last && i < rows_.count(); ++i) {
        const BatchRow& row = rows_.row(i);
        thumbnails_.remove(row.img);
        names_.remove(row.source());
        sizes_.remove(row.source());
    }
}

} // namespace tavrix
