// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/treelocaliser.h"

#include "base/dialogue/localisation.h"
#include "gui/widgets/segmentedview.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTabWidget>
#include <QTableWidget>
#include <QToolButton>

namespace tavrix
{

namespace
{

bool isMarked(const QString& text)
{
    return text.startsWith(QLatin1String("@@"));
}

// Calls the setter only for a marked text: setting resets selections and sizes of some widgets.
template <class Setter> bool replaceMarked(const QString& text, Setter set)
{
    if (!isMarked(text)) {
        return false;
    }
    set(localizedMarkedText(text));
    return true;
}

bool isLaidOut(const QWidget* view)
{
    const QWidget* parent = view->parentWidget();
    return parent == nullptr || parent->layout() != nullptr;
}

void localiseButton(QAbstractButton* button)
{
    if (!replaceMarked(button->text(), [button](const QString& text) { button->setText(text); })) {
        return;
    }
    if (isLaidOut(button)) {
        button->updateGeometry();
        return;
    }
    const int growth = button->sizeHint().width() - button->width();
    button->resize(button->sizeHint().width(), button->height());
    _moveTheOtherViewsLeft(button, growth);
}

void localiseTable(QTableWidget* table)
{
    for (int row = 0; row < table->rowCount(); ++row) {
        for (int column = 0; column < table->columnCount(); ++column) {
            if (QTableWidgetItem* cell = table->item(row, column)) {
                replaceMarked(cell->text(), [cell](const QString& text) { cell->setText(text); });
            }
        }
    }
}

void localiseHeader(QHeaderView* header)
{
    QAbstractItemModel* model = header->model();
    for (int i = 0; model != nullptr && i < header->count(); ++i) {
        const QString title = model->headerData(i, header->orientation()).toString();
        if (replaceMarked(title, [&](const QString& text) { model->setHeaderData(i, header->orientation(), text); })) {
            header->viewport()->update();
        }
    }
}

void localiseField(QLineEdit* field)
{
    replaceMarked(field->text(), [field](const QString& text) { field->setText(text); });
    replaceMarked(field->placeholderText(), [field](const QString& text) { field->setPlaceholderText(text); });
}

void localiseTabs(QTabBar* tabs)
{
    for (int i = 0; i < tabs->count(); ++i) {
        replaceMarked(tabs->tabText(i), [tabs, i](const QString& text) { tabs->setTabText(i, text); });
    }
}

void localiseChoices(QComboBox* choices)
{
    for (int i = 0; i < choices->count(); ++i) {
        replaceMarked(choices->itemText(i), [choices, i](const QString& text) { choices->setItemText(i, text); });
    }
    replaceMarked(choices->placeholderText(), [choices](const QString& text) { choices->setPlaceholderText(text); });
}

void localiseSegments(SegmentedView* segments)
{
    for (int i = 0; i < segments->segmentCount(); ++i) {
        replaceMarked(segments->label(i), [segments, i](const QString& text) { segments->setLabel(i, text); });
    }
}

void localiseByKind(QWidget* view)
{
    if (auto* button = qobject_cast<QAbstractButton*>(view)) {
        localiseButton(button);
    } else if (auto* label = qobject_cast<QLabel*>(view)) {
        replaceMarked(label->text(), [label](const QString& text) { label->setText(text); });
    } else if (auto* field = qobject_cast<QLineEdit*>(view)) {
        localiseField(field);
    } else if (auto* table = qobject_cast<QTableWidget*>(view)) {
        localiseTable(table);
    } else if (auto* header = qobject_cast<QHeaderView*>(view)) {
        localiseHeader(header);
    } else if (auto* tabs = qobject_cast<QTabBar*>(view)) {
        localiseTabs(tabs);
    } else if (auto* choices = qobject_cast<QComboBox*>(view)) {
        localiseChoices(choices);
    } else if (auto* segments = qobject_cast<SegmentedView*>(view)) {
        localiseSegments(segments);
    }
}

} // namespace

void FVAutoLocalizeWindow(QWidget* window)
{
    if (window == nullptr) {
        return;
    }
    replaceMarked(window->windowTitle(), [window](const QString& text) { window->setWindowTitle(text); });
    FVAutoLocalizeView(window);
}

void FVAutoLocalizeView(QWidget* view)
{
    if (view == nullptr) {
        return;
    }
    localiseByKind(view);
    replaceMarked(view->accessibleName(), [view](const QString& text) { view->setAccessibleName(text); });
    replaceMarked(view->toolTip(), [view](const QString& text) { view->setToolTip(text); });
    for (QObject* child : QObjectList(view->children())) {
        auto* subview = qobject_cast<QWidget*>(child);
        if (subview == nullptr) {
            continue;
        }
        subview->isWindow() ? FVAutoLocalizeWindow(subview) : FVAutoLocalizeView(subview);
    }
}

void FVAutoLocalizeMenu(QMenu* menu)
{
    if (menu == nullptr) {
        return;
    }
    replaceMarked(menu->title(), [menu](const QString& text) { menu->setTitle(text); });
    for (QAction* action : menu->actions()) {
        replaceMarked(action->text(), [action](const QString& text) { action->setText(text); });
        if (action->menu() != nullptr) {
            FVAutoLocalizeMenu(action->menu());
        }
    }
}

void FVAutoLocalizeMenu(QMenuBar* bar)
{
    for (QAction* action : bar->actions()) {
        replaceMarked(action->text(), [action](const QString& text) { action->setText(text); });
        FVAutoLocalizeMenu(action->menu());
    }
}

void _moveTheOtherViewsLeft(QWidget* view, int growth)
{
    QWidget* parent = view->parentWidget();
    if (parent == nullptr || growth == 0) {
        return;
    }
    const bool heldRight = (view->property("autoresizingMask").toInt() & viewMinXMargin) != 0;
    const QRect after = view->geometry();
    const QRect before(after.topLeft(), QSize(after.width() - growth, after.height()));
    for (QObject* child : parent->children()) {
        auto* other = qobject_cast<QWidget*>(child);
        if (other == nullptr || other == view || other->isWindow() || other->property("tag") != view->property("tag")) {
            continue;
        }
        const QRect place = other->geometry();
        const bool sameRow = place.top() <= before.bottom() && place.bottom() >= before.top();
        const bool concerned = heldRight ? place.right() < before.left() : place.left() > before.right();
        if (sameRow && concerned) {
            other->move(place.left() + (heldRight ? -growth : growth), place.top());
        }
    }
    if (heldRight) {
        view->move(after.left() - growth, after.top());
    }
}

} // namespace tavrix
