// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "sys/secondpass.h"

#include <QString>
#include <QStringList>

// Names of the working state that both step machines keep in the preferences store.
namespace tavrix
{

namespace pref
{
inline const QString prefCheckMatrix = QStringLiteral("prefCheckMatrix");
inline const QString prefColor = QStringLiteral("prefColor");
inline const QString prefDefautDstPathStr = QStringLiteral("prefDefautDstPathStr");
inline const QString analysisSrcPathesDico = QStringLiteral("analysisSrcPathesDico");
inline const QString analysisSrcPathStr = QStringLiteral("analysisSrcPathStr");
inline const QString analysisDeb = QStringLiteral("analysisDeb");
inline const QString analysisFfmpeg = QStringLiteral("analysisFfmpeg");
inline const QString analysisFfmpegParse = QStringLiteral("analysisFfmpegParse");
inline const QString analysisFin = QStringLiteral("analysisFin");
inline const QString analysisIStr = QStringLiteral("analysisIStr");
inline const QString imgPathStr = QStringLiteral("imgPathStr");
inline const QString encCurrentProcessingFile = QString::fromLatin1(secondpass::clip);
inline const QString processEncDico = QString::fromLatin1(secondpass::record);
inline const QString encDeb = QStringLiteral("encDeb");
inline const QString encPart = QStringLiteral("encPart");
inline const QString encQtEnc = QStringLiteral("encQtEnc");
inline const QString encFin = QStringLiteral("encFin");
// The user's settings: seconds after which a tool that neither says nor does anything is ended.
inline const QString silenceAnalysis = QStringLiteral("silenceAnalysis");
inline const QString silenceEncode = QStringLiteral("silenceEncode");
// What the list holds and has not converted: see BatchMemory.
inline const QString batchMemory = QStringLiteral("batchMemory");
inline const QString replaceFilesCheck = QStringLiteral("replaceFilesCheck");
} // namespace pref

// Step names passed as arguments; they are no stored flags.
inline const QString stepBatch = QStringLiteral("encBatch");
inline const QString stepProcesses = QStringLiteral("encProcesses");

// What a stop writes in the place of the current source.
inline const QString cancelMark = QStringLiteral("cancel");

// Milliseconds of silence that the setting allows.
[[nodiscard]] qint64 silenceLimit(const QString& setting);

// The steps of one source and of one row, in order. A stop deletes all but the first and the last.
[[nodiscard]] QStringList analysisFlags();
[[nodiscard]] QStringList encodeFlags();

// Flags are numbers of the preferences store: 1 is set, anything else is not.
[[nodiscard]] bool isFlagSet(const QString& name);
void setFlag(const QString& name);
// Clears the flag; true when it was set.
bool takeFlag(const QString& name);

} // namespace tavrix
