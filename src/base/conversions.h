#pragma once

// Conversions between tool output, numbers and the short texts of the batch list. Several keep rounding rules of their
// own; none fails: unreadable text gives 0 or 0.0.

#include <QList>
#include <QString>
#include <QStringList>

namespace tavrix
{

// Lists and texts
[[nodiscard]] QStringList linesToArray(const QString& text); // split at every newline character, empty lines dropped
[[nodiscard]] QString array2Str(const QStringList& list);    // joined with single blanks
[[nodiscard]] QStringList reverseArray(const QStringList& list);
[[nodiscard]] QStringList supprimerDoublons(const QStringList& list); // reverse order of first occurrences
[[nodiscard]] QStringList triAlphabetique(const QStringList& list);   // case-insensitive
QStringList& insertObjectsFromArray(QStringList& target, const QStringList& source, int index);
[[nodiscard]] QString reverseStr(const QString& text); // by UTF-16 units
[[nodiscard]] QString findAndReplace(const QString& text, const QString& find, const QString& replace);
// File name without extension cleaned of backquotes, ":" made "-", cut to maxLength units; folder and extension kept.
[[nodiscard]] QString trimStr(const QString& path, int maxLength);
// Master-copy name of a source: "_MASTER" before the extension, the file name cut when the whole path is long.
[[nodiscard]] QString oldSrcPathStr2DstPathStr(const QString& path);

// Numbers from text
[[nodiscard]] float str2Float(const QString& text);
[[nodiscard]] int str2Int(const QString& text); // truncates str2Float
[[nodiscard]] float timecodeStr2Float(const QString& text);
[[nodiscard]] float secondesCutStr2Float(const QString& text);

// Numbers to text
[[nodiscard]] QString secondesInt2Str(int seconds);
[[nodiscard]] int secondesStr2Int(const QString& text);
[[nodiscard]] int str2SecondesInt(const QString& text);
[[nodiscard]] QString secondesCutFloat2Str(float seconds);
// Unit "K", "M" or "G" in either case divides; any other leaves bytes; 0 or less unchanged.
[[nodiscard]] double octet2unite(qint64 bytes, const QString& unit);

// Rounding and divisibility. Divisors must not be 0.
[[nodiscard]] float nbTrimmed(float x, int decimals);
[[nodiscard]] float nbArrondi(float x, int decimals);
[[nodiscard]] bool nbMultiple(int n, int m);
[[nodiscard]] bool nbsMultiples(int a, int b, int m);
[[nodiscard]] int nbMultipleArrondi(int n, int m);
[[nodiscard]] QList<int> sousMultipleCommuns(int a, int b); // two elements; (0, 0) gives [1, 1]
[[nodiscard]] int nbsSousMultipleCommun(int a, int b, int wanted);

// Double to int, saturating; NaN gives 0.
[[nodiscard]] int truncatedInt(double value);

} // namespace tavrix
