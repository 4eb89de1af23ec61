#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <cstdio>

namespace tavrix
{

// One finished row of the summary.
struct RowReport {
    QString source;
    QString output; // nothing for a failed row
    QString reason; // why it failed; nothing for a finished one
    qint64 bytes = 0;
    bool success = false;
    QString warning = {};    // what the output lacks, or what is odd about it; nothing otherwise
    bool kept = false;       // failed only because what stood under its name was to be kept
    bool incomplete = false; // it holds all that could be read of a damaged source
};

// What never became a finished row.
struct NotConverted {
    NotConverted(int leftOutCount = 0, int notBegunCount = 0) : leftOut(leftOutCount), notBegun(notBegunCount) {}

    int leftOut;  // no row
    int notBegun; // rows whose turn has not come
};

// Tells a person or a program what happens. Every call is made on the main thread, in order.
class Reporter
{
public:
    virtual ~Reporter() = default;
    // Sources of one intake, before the first is analysed.
    virtual void queued(int count) = 0;
    // Numbers of sources and rows count from 1; paths are full unless told otherwise.
    virtual void analysing(const QString& path, int number, int total) = 0;
    virtual void accepted(const QString& path, const QVariantMap& infos) = 0;
    virtual void rejected(const QString& path, const QString& reason) = 0;
    // The source is the file's name.
    virtual void rowStarted(int number, int total, const QString& source) = 0;
    // Both in what the tool counts: seconds of the clip or percent.
    virtual void rowProgress(float value, float maximum) = 0;
    virtual void rowFinished(int number, int total, const RowReport& row) = 0;
    // A message that the window would show as an alert; `answer` is what was answered for the user, or nothing.
    virtual void message(const QString& title, const QString& text, const QString& answer) = 0;
    // The last call. The folder is the one of the outputs.
    virtual void summary(const QList<RowReport>& rows, const NotConverted& others, const QString& folder,
                         int exitCode) = 0;
};

} // namespace tavrix
