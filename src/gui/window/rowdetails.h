// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/batchlist.h"

#include <QHash>
#include <QObject>
#include <QPixmap>
#include <QStringList>
#include <QTimer>

namespace tavrix
{

// How far the row being encoded is.
struct RowStep {
    int row = -1; // none
    int pass = 1; // from 1
    int passes = 1;
    double fraction = 0; // of the pass, 0 to 1
};

// What the drawer shows of a row besides the row itself: thumbnails and facts that cost something to find out. Each is
// found out once and kept until the row goes.
class RowDetails : public QObject
{
    Q_OBJECT
public:
    explicit RowDetails(BatchList& rows, QObject* parent = nullptr);

    // The thumbnail fitted into the size at that scale; null when the row has none.
    [[nodiscard]] QPixmap thumbnail(const BatchRow& row, const QSize& size, qreal scale);
    // Name of the output file; nothing as long as the recording date has not been looked up: changed() follows then.
    [[nodiscard]] QString outputName(const BatchRow& row);
    // Expected size of the output ("12.3 MB"); "" when the source cannot be read.
    [[nodiscard]] QString estimatedSize(const BatchRow& row);
    // About how large all outputs together are or become, in bytes.
    [[nodiscard]] qint64 sizeOfAll();
    // Codec, size, rate, duration; says so when nothing is known.
    [[nodiscard]] static QString description(const BatchRow& row);
    // Size of the finished output; "" when there is none.
    [[nodiscard]] QString outputSize(const BatchRow& row);
    // How far a row is that is being encoded, else "".
    [[nodiscard]] QString stepWords(int row) const;
    void setStep(const RowStep& step);
    // One sentence for a screen reader: number, name, state with its reason, format, length.
    [[nodiscard]] QString spokenWords(int row) const;
    // Everything about a row, one fact per line, as plain text.
    [[nodiscard]] QString summary(const BatchRow& row);

    [[nodiscard]] int thumbnailLoads() const { return thumbnailLoads_; }

Q_SIGNALS:
    void changed();

private:
    void lookUpNext();
    void forget(int first, int last);
    [[nodiscard]] qint64 estimatedBytes(const BatchRow& row); // -1: nothing can be said
    [[nodiscard]] qint64 outputBytes(const BatchRow& row);    // -1: there is none

    struct Size {
        double source = 0; // megabytes
        int out = 0;       // format of the estimate
        std::optional<ClipPart> part;
        qint64 bytes = -1; // the estimate; -1: none
    };

    BatchList& rows_;
    QHash<QString, QPixmap> thumbnails_;
    QHash<QString, QString> names_;      // source path to the output's base name
    QHash<QString, Size> sizes_;         // by source path
    QHash<QString, qint64> outputSizes_; // bytes by output path; below 0: it cannot be looked at
    RowStep step_;
    QStringList wanted_; // sources whose date is still to be looked up
    QTimer lookUp_;
    int thumbnailLoads_ = 0;
};

} // namespace tavrix
