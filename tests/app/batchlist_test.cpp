// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batchlist.h"
#include "support/qtprinters.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

BatchRow rowOf(const char* source)
{
    BatchRow row;
    row.src = text(source);
    row.dico.insert(record::mainEncSrcPathStr, text(source));
    row.resultat = rowIcon::pending;
    return row;
}

class Rows : public testing::Test
{
protected:
    Rows()
    {
        int order = 0;
        for (const char* source : {"/a", "/b", "/c", "/d"}) {
            BatchRow row = rowOf(source);
            row.order = ++order;
            list.append(row);
        }
        QObject::connect(&list, &BatchList::selectionChanged, &list, [this] { ++selectionChanges; });
        QObject::connect(&list, &BatchList::dataChanged, &list, [this] { ++changes; });
    }

    QString described()
    {
        QStringList parts;
        for (int i = 0; i < list.count(); ++i) {
            parts << QString::number(list.row(i).order) + list.row(i).src;
        }
        return parts.join(u' ');
    }

    BatchList list;
    int selectionChanges = 0;
    int changes = 0;
};

} // namespace

TEST_F(Rows, AreFoundBySource)
{
    EXPECT_EQ(list.indexOfSource(QStringLiteral("/a")), 0);
    EXPECT_EQ(list.indexOfSource(QStringLiteral("/d")), 3);
    EXPECT_EQ(list.indexOfSource(QStringLiteral("/none")), -1);
    EXPECT_EQ(list.indexOfSource(QString()), -1);
}

TEST_F(Rows, FirstOfTwoWithOneSourceIsFound)
{
    list.append(rowOf("/b"));
    EXPECT_EQ(list.indexOfSource(QStringLiteral("/b")), 1);
    list.removeRow(1);
    EXPECT_EQ(list.indexOfSource(QStringLiteral("/b")), 3);
}

TEST_F(Rows, AreRenumberedAfterARemoval)
{
    list.removeRow(1);
    EXPECT_TEXT(described(), QStringLiteral("1/a 2/c 3/d"));
    EXPECT_EQ(list.indexOfSource(QStringLiteral("/b")), -1);
    EXPECT_EQ(list.indexOfSource(QStringLiteral("/c")), 1);
    list.removeRow(0);
    list.removeRow(1);
    EXPECT_TEXT(described(), QStringLiteral("1/c"));
    list.removeRow(0);
    EXPECT_EQ(list.count(), 0);
}

TEST_F(Rows, KeepOnlyOne)
{
    list.keepOnly(2);
    EXPECT_TEXT(described(), QStringLiteral("1/c"));
    EXPECT_EQ(list.indexOfSource(QStringLiteral("/c")), 0);
    EXPECT_EQ(list.indexOfSource(QStringLiteral("/a")), -1);
}

TEST_F(Rows, OutOfRangeChangesNothing)
{
    for (const int index : {-1, 4, 99}) {
        list.removeRow(index);
        list.keepOnly(index);
        list.setResultat(index, rowIcon::failure);
        list.setReason(index, QStringLiteral("x"));
        list.setOutput(index, QStringLiteral("x"));
        list.setOut(index, 1);
    }
    EXPECT_TEXT(described(), QStringLiteral("1/a 2/b 3/c 4/d"));
    EXPECT_EQ(changes, 0);
}

TEST_F(Rows, SelectionStaysInsideTheList)
{
    list.setSelectedRow(3);
    EXPECT_EQ(list.selectedRow(), 3);
    list.removeRow(3);
    EXPECT_EQ(list.selectedRow(), -1);
    list.setSelectedRow(1);
    list.removeRow(1);
    EXPECT_EQ(list.selectedRow(), 1);
    list.setSelectedRow(7);
    EXPECT_EQ(list.selectedRow(), -1);
    list.setSelectedRow(0);
    list.clear();
    EXPECT_EQ(list.selectedRow(), -1);
}

TEST_F(Rows, SelectionIsReportedWhenItChanges)
{
    list.setSelectedRow(1);
    list.setSelectedRow(1);
    EXPECT_EQ(selectionChanges, 1);
    list.setSelectedRow(-5);
    EXPECT_EQ(selectionChanges, 2);
    list.setSelectedRow(-1);
    EXPECT_EQ(selectionChanges, 2);
}

TEST_F(Rows, ManyAreSelected)
{
    list.setSelectedRows({2, 0, 2, 9, -1});
    EXPECT_EQ(list.selectedRows(), QList<int>({2, 0}));
    EXPECT_EQ(list.selectedRow(), 2);
    list.removeRow(1);
    EXPECT_EQ(list.selectedRows(), QList<int>({1, 0}));
    list.removeRange(0, 1);
    EXPECT_EQ(list.selectedRows(), QList<int>({0}));
    EXPECT_TEXT(described(), QStringLiteral("1/d"));
}

TEST_F(Rows, MoveWithTheirSelectionAndNumbers)
{
    list.setSelectedRows({3, 0});
    EXPECT_TRUE(list.moveRows({}, 3, 1, {}, 1));
    EXPECT_TEXT(described(), QStringLiteral("1/a 2/d 3/b 4/c"));
    EXPECT_EQ(list.selectedRows(), QList<int>({1, 0}));
    EXPECT_EQ(list.indexOfSource(QStringLiteral("/d")), 1);
    EXPECT_TRUE(list.moveRows({}, 0, 2, {}, 4));
    EXPECT_TEXT(described(), QStringLiteral("1/b 2/c 3/a 4/d"));
    EXPECT_EQ(list.selectedRows(), QList<int>({3, 2}));
    EXPECT_FALSE(list.moveRows({}, 1, 1, {}, 2)) << "it stands there";
    EXPECT_FALSE(list.moveRows({}, 3, 2, {}, 0));
    EXPECT_FALSE(list.moveRows({}, 0, 1, {}, 5));
    EXPECT_TEXT(described(), QStringLiteral("1/b 2/c 3/a 4/d"));
}

TEST_F(Rows, NothingMovesBeforeTheRunningOne)
{
    EXPECT_EQ(list.firstMovableRow(), 0);
    list.setResultat(1, rowIcon::current);
    EXPECT_EQ(list.firstMovableRow(), 2);
    EXPECT_FALSE(list.moveRows({}, 3, 1, {}, 1));
    EXPECT_FALSE(list.moveRows({}, 0, 1, {}, 4));
    EXPECT_TRUE(list.moveRows({}, 3, 1, {}, 2));
    EXPECT_TEXT(described(), QStringLiteral("1/a 2/b 3/d 4/c"));
}

TEST_F(Rows, RolesShowTheRow)
{
    list.setResultat(1, rowIcon::success);
    list.setReason(1, QStringLiteral("why"));
    list.setOutput(1, QStringLiteral("/out"));
    list.setOut(1, 5);
    EXPECT_EQ(changes, 4);
    const QModelIndex index = list.index(1);
    EXPECT_EQ(list.data(index, BatchList::OrderRole).toInt(), 2);
    EXPECT_TEXT(list.data(index, BatchList::SrcRole).toString(), QStringLiteral("/b"));
    EXPECT_TEXT(list.data(index, Qt::DisplayRole).toString(), QStringLiteral("/b"));
    EXPECT_EQ(list.data(index, BatchList::OutRole).toInt(), 5);
    EXPECT_TEXT(list.data(index, BatchList::ResultatRole).toString(), rowIcon::success);
    EXPECT_TEXT(list.data(index, BatchList::ReasonRole).toString(), QStringLiteral("why"));
    EXPECT_TEXT(list.data(index, BatchList::OutputRole).toString(), QStringLiteral("/out"));
    EXPECT_FALSE(list.data(index, BatchList::ImgRole).isNull());
    EXPECT_FALSE(list.data(index, Qt::DecorationRole).isValid());
    EXPECT_FALSE(list.data(QModelIndex(), BatchList::SrcRole).isValid());
    EXPECT_EQ(list.roleNames().value(BatchList::ResultatRole), QByteArray("resultat"));
}

TEST_F(Rows, ThousandsAreRemovedFromTheFront)
{
    list.clear();
    for (int i = 0; i < 2000; ++i) {
        list.append(rowOf(qPrintable(QString::number(i))));
    }
    while (list.count() > 1) {
        list.removeRow(0);
    }
    EXPECT_TEXT(described(), QStringLiteral("11999"));
}
