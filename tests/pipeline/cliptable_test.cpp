// SPDX-License-Identifier: GPL-3.0-or-later
// Damaged and harmless sources through both tools, as a row of the program runs them: formats 1, 2, 4 and 5. What the
// plain formats make of them is the table of the judge's own tests.
#include "app/rowverdict.h"
#include "pipeline/convert.h"
#include "support/clipmaker.h"
#include "support/temphome.h"
#include "support_clips/damage.h"
#include "support_clips/sources.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace tavrix::test
{
namespace
{

using judge::Outcome;

const char* nameOf(Outcome outcome)
{
    return outcome == Outcome::Whole ? "whole" : outcome == Outcome::Incomplete ? "incomplete" : "failed";
}

// A second pass decodes what the first one has copied unseen. The container of format 2 has no place for the copied
// pictures of two clips; the program leaves such clips out before it comes to that.
Outcome expectedOf(const SourceRow& row, int format)
{
    switch (format) {
    case 1:
        return row.encoded;
    case 2:
        return row.base == "programme" || row.base == "hevc" ? Outcome::Failed : row.copied;
    default:
        return std::max(row.encoded, row.copied);
    }
}

Outcome outcomeOf(const Converted& converted)
{
    RowVerdict verdict;
    verdict.begin();
    verdict.read(converted.transcript + QLatin1Char('\n'));
    if (!converted.ok || !verdict.verdict()) {
        return Outcome::Failed;
    }
    return verdict.verdict()->outcome;
}

class ClipTable : public testing::Test
{
protected:
    // All rows by scripts/clip-table; a few of them here, since a row takes a second.
    static std::size_t step() { return std::getenv("TAVRIX_WHOLE_TABLE") != nullptr ? 1 : 48; }

    [[nodiscard]] std::string sourceOf(const SourceRow& row) const
    {
        const std::string folder = folder_.path().toStdString();
        std::string base = baseClip(folder, row.base);
        if (base.empty() || !row.change) {
            return base;
        }
        std::string source = folder + "/source" + base.substr(base.rfind('.'));
        putBytes(source, row.change(bytesOf(base)));
        return source;
    }

    [[nodiscard]] int misjudged(const std::vector<SourceRow>& rows) const
    {
        int wrong = 0;
        int count = 0;
        for (std::size_t i = 0; i < rows.size(); i += step()) {
            const QString source = QString::fromStdString(sourceOf(rows[i]));
            for (const int format : {1, 2, 4, 5}) {
                const TempFolder outputs;
                const Converted converted = convertClip(source, outputs.path(), format);
                const Outcome outcome = outcomeOf(converted);
                const Outcome expected = expectedOf(rows[i], format);
                ++count;
                if (outcome != expected) {
                    ++wrong;
                    std::cout << rows[i].name << ", format " << format << ": " << nameOf(expected) << " expected, "
                              << nameOf(outcome) << ":\n"
                              << converted.transcript.right(600).toStdString() << std::endl;
                }
            }
        }
        std::cout << count << " conversions, misjudged: " << wrong << std::endl;
        return wrong;
    }

private:
    TempFolder folder_;
};

TEST_F(ClipTable, DamagedSourcesThroughTheTools)
{
    EXPECT_EQ(misjudged(damagedSources()), 0);
}

TEST_F(ClipTable, HarmlessSourcesThroughTheTools)
{
    EXPECT_EQ(misjudged(harmlessSources()), 0);
}

} // namespace
} // namespace tavrix::test
