// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/av/codecinventory.h"

#include "fakemedialibrary.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <vector>

namespace tavrix::test
{

namespace
{

struct FakeComponent {
    ComponentDescription description;
    QByteArray name;
    int error = 0;
};

class FakeRegistry final : public ComponentRegistry
{
public:
    FakeRegistry() { setComponentRegistry(this); }
    ~FakeRegistry() override { setComponentRegistry(nullptr); }

    void add(quint32 type, quint32 subType, quint32 manufacturer, const QByteArray& name, quint32 flags = 0)
    {
        components.push_back({{type, subType, manufacturer, flags, 0}, name, 0});
    }
    ComponentHandle findNextComponent(ComponentHandle after, const ComponentDescription& search) override
    {
        bool reached = after == nullptr;
        for (const FakeComponent& component : components) {
            if (reached && (component.description.componentFlags & search.componentFlagsMask) == 0) {
                return &component;
            }
            reached = reached || &component == after;
        }
        return nullptr;
    }
    int countComponents(const ComponentDescription& search) override
    {
        masks.append(search.componentFlagsMask);
        return static_cast<int>(components.size());
    }
    int componentInfo(ComponentHandle handle, ComponentDescription& description, QByteArray& name) override
    {
        const auto* component = static_cast<const FakeComponent*>(handle);
        description = component->description;
        name = component->name;
        return component->error;
    }

    std::vector<FakeComponent> components;
    QList<quint32> masks;
};

} // namespace

TEST(OSTypeToNSStringTest, writesPrintableBytesAsTheyAreAndOthersInHexadecimal)
{
    EXPECT_TEXT(OSTypeToNSString(fourCharCode("WMV ")), QStringLiteral("WMV "));
    EXPECT_TEXT(OSTypeToNSString(1), QStringLiteral("$00$00$00$01"));
    EXPECT_TEXT(OSTypeToNSString(0), QStringLiteral(""));
    EXPECT_TEXT(OSTypeToNSString(0x6D737FABU), QStringLiteral("ms$7f$ab"));
    EXPECT_TEXT(OSTypeToNSString(0x207E1F7FU), QStringLiteral(" ~$1f$7f"));
}

TEST(PStringToNSStringTest, readsUpToTheFirstZeroWhateverTheLengthSays)
{
    const unsigned char text[] = {2, 'a', 'b', 'c', 0, 'd', 0};
    EXPECT_TEXT(PStringToNSString(text), QStringLiteral("abc"));
    const unsigned char none[] = {0, 'a', 0};
    EXPECT_TEXT(PStringToNSString(none), QStringLiteral("**NO NAME**"));
}

TEST(ComponentsCollecteTest, leavesOutMissingComponentsAndKeepsTheOrder)
{
    FakeRegistry registry;
    registry.add(fourCharCode("imco"), fourCharCode("aaaa"), 1, "first", 0x10000000);
    registry.add(fourCharCode("imco"), fourCharCode("bbbb"), 1, "gone", 0x20000000);
    registry.add(fourCharCode("imdc"), fourCharCode("cccc"), 0, "");
    const QList<QTCompDesc> components = componentsCollecte();
    ASSERT_EQ(components.size(), 2);
    EXPECT_EQ(registry.masks, QList<quint32>{0x20000000});
    EXPECT_TEXT(components[0].name(), QStringLiteral("first"));
    EXPECT_TEXT(components[0].threadsafe(), QStringLiteral("Yes"));
    EXPECT_TEXT(components[0].manufacturer(), QStringLiteral("$00$00$00$01"));
    EXPECT_TEXT(components[1].name(), QStringLiteral("**NO NAME**"));
    EXPECT_TEXT(components[1].type(), QStringLiteral("imdc"));
    EXPECT_TEXT(components[1].manufacturer(), QStringLiteral(""));
    EXPECT_TEXT(components[1].threadsafe(), QStringLiteral("No"));
    EXPECT_EQ(components[1].component(), static_cast<ComponentHandle>(&registry.components[2]));
}

TEST(QTCompDescTest, anErrorLeavesOnlyTheComponent)
{
    FakeRegistry registry;
    registry.add(fourCharCode("imco"), fourCharCode("aaaa"), 1, "first");
    registry.components[0].error = -3000;
    const LogCapture log;
    const QTCompDesc component = QTCompDesc::withComponent(&registry.components[0]);
    EXPECT_TRUE(component.name().isNull());
    EXPECT_TRUE(component.type().isNull());
    EXPECT_TRUE(component.threadsafe().isNull());
    EXPECT_EQ(component.component(), static_cast<ComponentHandle>(&registry.components[0]));
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines().first().startsWith(QStringLiteral("GetComponentInfo() returned error -3000")));
}

TEST(QTCompDescTest, settersReplaceTheTexts)
{
    QTCompDesc component;
    component.setName(QStringLiteral("n"));
    component.setType(QStringLiteral("t"));
    component.setSubType(QStringLiteral("s"));
    component.setManufacturer(QStringLiteral("m"));
    component.setFlags(7);
    component.setThreadSafe(QStringLiteral("Yes"));
    EXPECT_TEXTS(QStringList({component.name(), component.type(), component.subType(), component.manufacturer(),
                              component.threadsafe()}),
                 QStringList({QStringLiteral("n"), QStringLiteral("t"), QStringLiteral("s"), QStringLiteral("m"),
                              QStringLiteral("Yes")}));
    EXPECT_EQ(component.flags(), 7U);
}

TEST(CodecsCheckTest, comparesUpperCasedSubtypesWithTheCodeAsGiven)
{
    FakeRegistry registry;
    registry.add(fourCharCode("imco"), fourCharCode("wmv3"), 0, "Windows Media");
    registry.add(fourCharCode("imco"), fourCharCode("icod"), fourCharCode("appl"), "Intermediate");
    registry.add(fourCharCode("imco"), 1, 0, "odd");
    const auto check = [](const char* code) {
        return codecsCheck({QString::fromLatin1(code)});
    };
    EXPECT_EQ(check("WMV"), QList<int>{1});
    EXPECT_EQ(check("WMV "), QList<int>{0});
    EXPECT_EQ(check("wmv3"), QList<int>{0});
    EXPECT_EQ(check("ICOD"), QList<int>{1});
    EXPECT_EQ(check(""), QList<int>{0});
    EXPECT_EQ(check("$00$"), QList<int>{1}) << "the subtype text is cut to its first four characters";
    EXPECT_EQ(check("$01"), QList<int>{0});
    EXPECT_EQ(codecsCheck({}), QList<int>{});
    EXPECT_EQ(codecsCheck({QStringLiteral("DIV6"), QStringLiteral("ICOD"), QStringLiteral("WMV3")}),
              QList<int>({0, 1, 1}));
}

TEST(CodecsCheckTest, logsWhatIsPresent)
{
    FakeRegistry registry;
    registry.add(fourCharCode("imco"), fourCharCode("icod"), 0, "x");
    const DebugLogging debug;
    const LogCapture log;
    EXPECT_EQ(codecsCheck({QStringLiteral("ICOD")}), QList<int>{1});
    EXPECT_TRUE(log.contains(QStringLiteral("ICOD                :-)")));
}

TEST(CodecsProresCheckTest, listsTheFirstOfEachKindInTheOrderOfTheSearch)
{
    FakeRegistry registry;
    registry.add(fourCharCode("imco"), fourCharCode("apcs"), fourCharCode("appl"), "LT");
    registry.add(fourCharCode("imco"), fourCharCode("apch"), fourCharCode("appl"), "HQ one");
    registry.add(fourCharCode("imco"), fourCharCode("apch"), fourCharCode("appl"), "HQ two");
    registry.add(fourCharCode("imdc"), fourCharCode("ap4h"), fourCharCode("appl"), "a decoder");
    registry.add(fourCharCode("imco"), fourCharCode("apcn"), fourCharCode("appl"), "not searched");
    EXPECT_TEXTS(codecsProresCheck(),
                 QStringList({QStringLiteral("HQ one   (imco:apch:appl)"), QStringLiteral("LT   (imco:apcs:appl)")}));
    registry.components.clear();
    EXPECT_TEXTS(codecsProresCheck(), QStringList());
}

TEST(InstalledCodecsTest, areEncodersOnlyWithTheProgramsOwn)
{
    EXPECT_EQ(codecsCheck({QStringLiteral("WMV "), QStringLiteral("ICOD")}), QList<int>({0, 1}));
    EXPECT_EQ(codecsProresCheck().size(), 4);
    int own = 0;
    const QList<QTCompDesc> components = componentsCollecte();
    for (const QTCompDesc& component : components) {
        EXPECT_TEXT(component.type(), QStringLiteral("imco"));
        if (component.subType() == QStringLiteral("icod")) {
            ++own;
            EXPECT_TEXT(component.manufacturer(), QStringLiteral("appl"));
        }
    }
    EXPECT_EQ(own, 1);
}

} // namespace tavrix::test
