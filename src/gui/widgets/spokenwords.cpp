// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/spokenwords.h"

#include <QAccessible>
#include <QWidget>

namespace tavrix
{

void announce(QWidget* widget, const QString& text)
{
    if (text.isEmpty()) {
        return;
    }
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent event(widget, text);
#else
    // The part's own text is said with an alert.
    QAccessibleEvent event(widget, QAccessible::Alert);
#endif
    QAccessible::updateAccessibility(&event);
}

} // namespace tavrix
