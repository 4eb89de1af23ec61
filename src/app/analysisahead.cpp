// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/analysisahead.h"

#include "app/oldtools.h"
#include "base/bundle/bundle.h"
#include "base/files/filedelete.h"
#include "base/store/settings.h"
#include "encode/analysisarguments.h"
#include "sys/keepfolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QStorageInfo>
#include <QThread>

#include <algorithm>
#include <fcntl.h>

namespace tavrix
{

namespace
{

constexpr int mostAtATime = 4;
// Where the temporary folder has less, all of it is left to the clip whose turn it is.
constexpr qint64 spareBytes = qint64{256} << 20U;

ChildSetup setupFor(const QString& source, int silent)
{
    // Nothing is written there; a tool that does all the same is in nobody's way.
    const QString unused = getTMPFOLDER() + QString::fromLatin1(aheadPrefix) + QStringLiteral("unused.yuv");
    QStringList arguments = decodeArguments(toolPath(QStringLiteral("ffmpeg")), source, unused);
    ChildSetup setup;
    setup.program = arguments.takeFirst();
    setup.arguments = arguments;
    setup.environment = {{QString::fromLatin1(keepVariable), getTMPFOLDER()},
                         {QString::fromLatin1(aheadVariable), QStringLiteral("1")},
                         {QString::fromLatin1(ownerVariable), QString::number(QCoreApplication::applicationPid())}};
    setup.toolLocale = true;
    setup.output = silent;
    setup.error = silent;
    return setup;
}

} // namespace

AnalysisAhead::~AnalysisAhead()
{
    killAndReap(running_);
}

int AnalysisAhead::width(int processors)
{
    return processors < 2 ? 0 : std::min(processors, mostAtATime);
}

int AnalysisAhead::reach()
{
    const int atATime = width(QThread::idealThreadCount());
    return atATime == 0 ? 0 : atATime + 1;
}

void AnalysisAhead::lookAt(const QStringList& sources)
{
    dropEnded();
    looked_.removeIf([&](const QString& source) { return !sources.contains(source); });
    if (sources.isEmpty() || QStorageInfo(getTMPFOLDER()).bytesAvailable() < spareBytes) {
        return;
    }
    const Descriptor silent = openFile("/dev/null", O_WRONLY);
    const auto most = static_cast<std::size_t>(width(QThread::idealThreadCount()));
    for (const QString& source : sources) {
        if (!silent.isOpen() || running_.size() >= most) {
            return;
        }
        if (looked_.contains(source)) {
            continue;
        }
        looked_ << source;
        if (auto child = ChildProcess::start(setupFor(source, silent.get()))) {
            running_.push_back(std::move(*child));
        }
    }
}

void AnalysisAhead::end()
{
    killAndReap(running_);
    looked_.clear();
    const QString folder = getTMPFOLDER();
    const QStringList left =
        QDir(folder).entryList({QString::fromLatin1(aheadPrefix) + u'*'}, QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& name : left) {
        removeOwnFile(QDir(folder).filePath(name), folder);
    }
}

void AnalysisAhead::dropEnded()
{
    std::erase_if(running_, [](ChildProcess& child) { return child.reapIfEnded(); });
}

} // namespace tavrix
