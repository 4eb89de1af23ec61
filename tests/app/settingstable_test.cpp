// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/settingstable.h"
#include "app/stepflags.h"
#include "base/store/preferences.h"
#include "support/qtprinters.h"

#include <QSet>

using namespace tavrix;

TEST(SettingsTable, HoldsEachKeyOnce)
{
    QSet<QString> keys;
    for (const StoredRow& row : storedRows()) {
        EXPECT_FALSE(keys.contains(row.key)) << row.key.toStdString();
        keys.insert(row.key);
    }
    EXPECT_EQ(keys.size(), qsizetype(storedRows().size()));
}

TEST(SettingsTable, KeepsSettingsAndQueueAtAStart)
{
    for (const char* kept :
         {"prefCheckMatrix", "prefColor", "prefDefautDstPathStr", "analysisSrcPathesDico", "analysisSrcPathStr",
          "batchMemory", "silenceAnalysis", "silenceEncode", "NSNavLastRootDirectory"}) {
        EXPECT_TRUE(isKeptAtStart(QString::fromLatin1(kept))) << kept;
    }
    for (const char* dropped : {"analysisFfmpeg", "analysisIStr", "processEncDico", "encCurrentProcessingFile",
                                "encQtEnc", "replaceFilesCheck", "unheardOf", ""}) {
        EXPECT_FALSE(isKeptAtStart(QString::fromLatin1(dropped))) << dropped;
    }
}

namespace
{

struct NumberRow {
    const char* name;
    QString key;
    QVariant stored; // invalid: the key is missing
    int number;
};

class StoredNumber : public testing::TestWithParam<NumberRow>
{
};

const NumberRow numberRows[] = {
    {"MissingFormat", pref::prefCheckMatrix, {}, 3},
    {"Format", pref::prefCheckMatrix, 0, 0},
    {"TextOfAFormat", pref::prefCheckMatrix, QStringLiteral("5"), 5},
    {"EmptyFormat", pref::prefCheckMatrix, QStringLiteral(""), 3},
    {"MissingSeconds", pref::silenceEncode, {}, 600},
    {"Seconds", pref::silenceEncode, 5, 5},
    {"NoSeconds", pref::silenceAnalysis, 0, 60},
    {"NegativeSeconds", pref::silenceAnalysis, -3, 60},
    {"WordForSeconds", pref::silenceAnalysis, QStringLiteral("long"), 60},
    {"NoRow", QStringLiteral("unheardOf"), 7, 0},
};

} // namespace

TEST_P(StoredNumber, IsTheOneStoredOrTheDefault)
{
    const NumberRow& row = GetParam();
    prefDelete(row.key);
    if (row.stored.isValid()) {
        prefWrite(row.key, row.stored);
    }
    EXPECT_EQ(storedNumber(row.key), row.number);
    prefDelete(row.key);
}

INSTANTIATE_TEST_SUITE_P(Preferences, StoredNumber, testing::ValuesIn(numberRows),
                         [](const auto& row) { return std::string(row.param.name); });
