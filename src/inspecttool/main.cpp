// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/bundle.h"
#include "base/files/fileinfo.h"
#include "base/files/filelisting.h"
#include "base/files/standardstreams.h"
#include "base/text/paths.h"
#include "base/text/shownname.h"
#include "base/text/utf8locale.h"
#include "inspect/describe.h"
#include "inspect/inspectjson.h"
#include "inspect/inspector.h"
#include "inspect/partexport.h"
#include "inspect/problemreport.h"
#include "inspect/words.h"
#include "inspecttool/options.h"
#include "judge/verdictline.h"
#include "probe/intakelist.h"
#include "process/capturedrun.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>

#include <clocale>
#include <cstdio>
#include <memory>

using namespace tavrix;

namespace
{

constexpr int exitDone = 0;
constexpr int exitSomeFailed = 1;
constexpr int exitWrongUsage = 2;

void print(std::FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
}

void complain(std::FILE* stream, const QString& text)
{
    print(stream, QStringLiteral("tavrix-inspect: ") + text + QLatin1Char('\n'));
}

// What is to be described: files, and why something of a folder is not.
struct Subject {
    QString path;
    QString problem; // nothing for a file to look at
};

QList<Subject> subjects(const QStringList& words)
{
    QList<Subject> all;
    for (const QString& word : words) {
        const QString path = QDir::cleanPath(word);
        if (!isFolder(path)) {
            all << Subject{path, QString()};
            continue;
        }
        const IntakeList intake = intakeList({path});
        for (const QString& file : intake.accepted) {
            all << Subject{file, QString()};
        }
        for (const SkippedSource& skipped : intake.skipped) {
            all << Subject{skipped.path, skipped.reason};
        }
        if (intake.accepted.isEmpty() && intake.skipped.isEmpty()) {
            all << Subject{path, inspectText("Ins_emptyFolder")};
        }
    }
    return all;
}

class Describer
{
public:
    explicit Describer(const InspectOptions& options) : options_(options), subjects_(subjects(options.files)) {}

    int run()
    {
        for (qsizetype i = 0; i < subjects_.size(); ++i) {
            const std::unique_ptr<Inspector> current = next_ != nullptr ? std::move(next_) : begun(i);
            // The tool of the next file runs while this one is put into words.
            next_ = i + 1 < subjects_.size() ? begun(i + 1) : nullptr;
            tell(current != nullptr ? current->finish() : refused(subjects_.at(i)));
        }
        return failed_ ? exitSomeFailed : exitDone;
    }

private:
    [[nodiscard]] std::unique_ptr<Inspector> begun(qsizetype i) const
    {
        const Subject& subject = subjects_.at(i);
        return subject.problem.isNull() ? std::make_unique<Inspector>(subject.path, InspectionWish{options_.thorough})
                                        : nullptr;
    }

    static Inspection refused(const Subject& subject)
    {
        Inspection inspection;
        inspection.path = subject.path;
        inspection.problem = subject.problem;
        return inspection;
    }

    void tell(const Inspection& inspection)
    {
        failed_ = failed_ || !inspection.described();
        if (options_.json) {
            const QJsonDocument document(inspectionObject(inspection));
            const QByteArray line = shownJson(document.toJson(QJsonDocument::Compact)) + '\n';
            std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
        } else {
            print(stdout, (told_ ? QStringLiteral("\n") : QString()) + describedText(describedLines(inspection)));
        }
        std::fflush(stdout);
        told_ = true;
    }

    const InspectOptions& options_;
    QList<Subject> subjects_;
    std::unique_ptr<Inspector> next_;
    bool told_ = false;
    bool failed_ = false;
};

// The name of an export that is not given one.
QString usualName(const QString& source, PartForm form)
{
    return stringByDeletingPathExtension(lastPathComponent(source)) +
           (form == PartForm::Wave ? QStringLiteral(".wav") : QStringLiteral(".mov"));
}

int exportClip(const InspectOptions& options, std::FILE* errors)
{
    PartRequest request;
    request.source = QDir::cleanPath(QDir::current().absoluteFilePath(options.files.first()));
    const QString name = options.output.isNull() ? usualName(request.source, options.form) : options.output;
    request.destination = QDir::cleanPath(QDir::current().absoluteFilePath(name));
    request.part = options.part;
    request.form = options.form;
    request.size = options.size;
    request.replaces = options.replaces;
    request.tells = options.forPrograms ? errors : nullptr;
    const Result<ExportedPart, QString> part = exportPart(request);
    if (!part) {
        complain(errors, inspectText("Ins_exportFailed", {shownText(options.files.first()), shownText(part.reason())}));
        return exitSomeFailed;
    }
    if (options.forPrograms) {
        print(errors, QString::fromStdString(judge::verdictLine(part->verdict)) + QLatin1Char('\n'));
    } else if (part->verdict.outcome != judge::Outcome::Whole) {
        complain(errors, shownText(QString::fromStdString(judge::englishText(part->verdict))));
    }
    print(stdout,
          inspectText("Ins_exported", {shownText(name), lengthWords(part->to - part->from), sizeWords(part->bytes)}) +
              QLatin1Char('\n'));
    return exitDone;
}

int run(const InspectOptions& options)
{
    std::FILE* const errors = keptStream(stderr);
    // The diagnostics of the program's parts belong in no description.
    if (errors == nullptr || !dropStream(stderr)) {
        std::perror("tavrix-inspect");
        return exitSomeFailed;
    }
    int status = exitDone;
    if (options.mode == InspectOptions::Mode::System) {
        ReportWish wish;
        wish.fullPaths = options.fullPaths;
        print(stdout, problemReport(wish));
    } else {
        status = options.mode == InspectOptions::Mode::Export ? exportClip(options, errors) : Describer(options).run();
    }
    std::fclose(errors);
    return std::ferror(stdout) != 0 || std::fflush(stdout) != 0 ? exitSomeFailed : status;
}

} // namespace

int main(int argc, char** argv)
{
    if (!fillStandardStreams()) {
        return exitSomeFailed;
    }
    useUtf8Locale();
    QCoreApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    constexpr qint64 longestSilence = 60000; // milliseconds, as in an analysis
    setCapturedSilence(longestSilence);
    const InspectOptions options = parseInspectOptions(QCoreApplication::arguments().mid(1));
    switch (options.mode) {
    case InspectOptions::Mode::Help:
        print(stdout, inspectText("Ins_usage"));
        return exitDone;
    case InspectOptions::Mode::Version:
        print(stdout, QStringLiteral("tavrix-inspect ") + bundleVersion() + QLatin1Char('\n'));
        return exitDone;
    case InspectOptions::Mode::Wrong:
        complain(stderr, shownText(options.error));
        print(stderr, inspectText("Ins_tryHelp") + QLatin1Char('\n'));
        return exitWrongUsage;
    case InspectOptions::Mode::Describe:
    case InspectOptions::Mode::Export:
    case InspectOptions::Mode::System:
        break;
    }
    return run(options);
}
