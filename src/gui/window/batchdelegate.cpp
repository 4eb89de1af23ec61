// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/window/batchdelegate.h"

#include "app/windowmodel.h"
#include "base/text/shownname.h"
#include "gui/widgets/images.h"
#include "gui/widgets/theme.h"
#include "gui/widgets/windowtext.h"
#include "gui/window/rowdetails.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace tavrix
{

namespace
{

constexpr int thumbnailWidth = 96;
constexpr int thumbnailHeight = 54;
constexpr int margin = 7;
constexpr int iconSide = 22;

} // namespace

BatchDelegate::BatchDelegate(const WindowModel& model, RowDetails& details, QObject* parent)
    : QStyledItemDelegate(parent), model_(model), rows_(model.encBatchArrayController), details_(details)
{
}

bool BatchDelegate::isPaused(const BatchRow& row) const
{
    return row.isCurrent() && model_.encStopBt.imageName(encStopSegmentPause) == controlImage::play;
}

QString BatchDelegate::mark(const BatchRow& row) const
{
    return isPaused(row) ? QStringLiteral("pucePaused") : stateImage(row);
}

// At the right end of a row: how far it is, else what has become of it.
QString BatchDelegate::state(int row) const
{
    const BatchRow& shown = rows_.row(row);
    if (isPaused(shown)) {
        return windowText("Win_paused");
    }
    if (const QString step = details_.stepWords(row); !step.isEmpty()) {
        return step;
    }
    const QString size = details_.outputSize(shown);
    return size.isEmpty() ? stateWords(shown) : windowText("Win_stateAndSize", {stateWords(shown), size});
}

QSize BatchDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& /*index*/) const
{
    const int words = 3 * option.fontMetrics.lineSpacing() + 2 * margin;
    return {300, qMax(thumbnailHeight + 2 * margin, words)};
}

void BatchDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    if (index.row() >= rows_.count()) {
        return;
    }
    const BatchRow& row = rows_.row(index.row());
    const Theme& theme = currentTheme();
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRect frame = option.rect.adjusted(2, 2, -2, -2);
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    painter->setPen(selected ? QPen(theme.accent, 2) : QPen(Qt::NoPen));
    painter->setBrush(selected || index.row() % 2 == 1 ? theme.field : theme.panel);
    painter->drawRoundedRect(frame, 6, 6);

    const QRect inside = frame.adjusted(margin, 0, -margin, 0);
    const QRect thumbnail(inside.left(), frame.center().y() - thumbnailHeight / 2, thumbnailWidth, thumbnailHeight);
    paintThumbnail(painter, thumbnail, row);
    const QRect icon(inside.right() - iconSide, frame.center().y() - iconSide / 2, iconSide, iconSide);
    painter->drawPixmap(icon.topLeft(), imagePixmap(mark(row), iconSide, painter->device()->devicePixelRatioF()));
    painter->setFont(option.font);
    paintWords(painter, QRect(QPoint(thumbnail.right() + 12, frame.top()), QPoint(icon.left() - 10, frame.bottom())),
               index.row());
    painter->restore();
}

void BatchDelegate::paintThumbnail(QPainter* painter, const QRect& place, const BatchRow& row) const
{
    const qreal scale = painter->device()->devicePixelRatioF();
    const QPixmap picture = details_.thumbnail(row, place.size(), scale);
    painter->fillRect(place, Qt::black);
    if (picture.isNull()) {
        painter->drawPixmap(place.center() - QPoint(16, 16), imagePixmap(QStringLiteral("dndOff"), 32, scale));
        return;
    }
    const QSizeF size = picture.deviceIndependentSize();
    painter->drawPixmap(QRectF(place).center() - QPointF(size.width() / 2, size.height() / 2), picture);
}

QString BatchDelegate::thirdLine(const BatchRow& row) const
{
    QStringList parts{formatName(row.out)};
    if (const QString size = details_.estimatedSize(row); !size.isEmpty() && row.output.isEmpty()) {
        parts << windowText("Win_about", {size});
    }
    if (const QString name = details_.outputName(row); !name.isEmpty()) {
        parts << QStringLiteral("→ ") + shownText(name);
    }
    return parts.join(QStringLiteral("  ·  "));
}

void BatchDelegate::paintWords(QPainter* painter, const QRect& place, int index) const
{
    const BatchRow& row = rows_.row(index);
    const Theme& theme = currentTheme();
    const QFont plain = painter->font();
    QFont bold = plain;
    bold.setBold(true);
    const int height = QFontMetrics(plain).lineSpacing();
    QRect line(place.left(), place.center().y() - height * 3 / 2, place.width(), height);
    const auto write = [painter, &line, height](const QFont& font, const QColor& color, const QString& text,
                                                Qt::TextElideMode elide, int room) {
        painter->setFont(font);
        painter->setPen(color);
        const QString shown = QFontMetrics(font).elidedText(text, elide, room);
        painter->drawText(line, static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter) | Qt::TextSingleLine, shown);
        line.translate(0, height);
    };
    const QString end = state(index);
    painter->setPen(row.hasFailed() ? theme.warning : theme.text);
    painter->drawText(line, static_cast<int>(Qt::AlignRight | Qt::AlignVCenter) | Qt::TextSingleLine, end);
    const int nameRoom = line.width() - QFontMetrics(plain).horizontalAdvance(end) - 2 * margin;
    write(bold, theme.text, formatText(QStringLiteral("%d  %@"), {row.order, shownText(row.src)}), Qt::ElideMiddle,
          nameRoom);
    write(plain, theme.secondaryText, RowDetails::description(row), Qt::ElideRight, line.width());
    const QString words = shownText(row.reason.isEmpty() ? row.warning : row.reason);
    if (words.isEmpty()) {
        write(plain, theme.secondaryText, thirdLine(row), Qt::ElideMiddle, line.width());
    } else {
        // The words that matter may stand behind a long path.
        write(plain, theme.warning, words, Qt::ElideMiddle, line.width());
    }
}

bool BatchDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& /*option*/,
                              const QModelIndex& index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid() || index.row() >= rows_.count()) {
        return false;
    }
    const BatchRow& row = rows_.row(index.row());
    const QString state = isPaused(row) ? windowText("Win_paused") : stateWords(row);
    QToolTip::showText(event->globalPos(), wrappedTip(state + QLatin1Char('\n') + details_.summary(row)), view);
    return true;
}

} // namespace tavrix
