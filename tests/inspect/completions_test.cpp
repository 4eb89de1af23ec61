// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/localisation.h"

#include "inspecttest.h"
#include "testpaths.h"

#include <QRegularExpression>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct CompletedProgram {
    const char* name;
    const char* program;
    const char* key;   // of its usage text
    const char* table; // where that text stands
};

class Completions : public InspectTest, public testing::WithParamInterface<CompletedProgram>
{
protected:
    static QString completion(const QString& file)
    {
        return QString::fromUtf8(
            readBytes(QStringLiteral(TAVRIX_SOURCE_DIR "/packaging/completions/") + file).value_or(QByteArray()));
    }
};

// What the help names, the shells know.
TEST_P(Completions, KnowEveryOptionOfTheHelp)
{
    const QString program = text(GetParam().program);
    const QString bash = completion(program + QStringLiteral(".bash"));
    const QString zsh = completion(QLatin1Char('_') + program);
    const QString fish = completion(program + QStringLiteral(".fish"));
    const QString help = localizedString(text(GetParam().key), text(GetParam().table));
    static const QRegularExpression option(QStringLiteral("--([a-z][a-z-]*)"));
    int count = 0;
    for (auto match = option.globalMatch(help); match.hasNext(); ++count) {
        const QString name = match.next().captured(1);
        SCOPED_TRACE(name.toStdString());
        EXPECT_TRUE(bash.contains(QStringLiteral("--") + name));
        EXPECT_TRUE(zsh.contains(QStringLiteral("--") + name));
        EXPECT_TRUE(fish.contains(QStringLiteral(" -l ") + name));
    }
    EXPECT_GE(count, 5);
}

INSTANTIATE_TEST_SUITE_P(Programs, Completions,
                         testing::Values(CompletedProgram{"batch", "tavrix-batch", "Con_usage", "Console"},
                                         CompletedProgram{"inspect", "tavrix-inspect", "Ins_usage", "Inspect"}),
                         rowName<CompletedProgram>);

} // namespace
