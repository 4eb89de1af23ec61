// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/preview/trimpanel.h"

#include "base/dialogue/shownvalues.h"
#include "gui/widgets/windowtext.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace tavrix
{

TrimPanel::TrimPanel(QWidget* parent) : QWidget(parent)
{
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    auto* marks = new QHBoxLayout;
    lines->addLayout(marks);
    in_ = addButton("trimInBt", "Win_markIn", "Win_tip_markIn");
    connect(in_, &QPushButton::clicked, this, &TrimPanel::fromWished);
    marks->addWidget(in_);
    out_ = addButton("trimOutBt", "Win_markOut", "Win_tip_markOut");
    connect(out_, &QPushButton::clicked, this, &TrimPanel::toWished);
    marks->addWidget(out_);
    clear_ = addButton("trimClearBt", "Win_markClear", "Win_tip_markClear");
    connect(clear_, &QPushButton::clicked, this, &TrimPanel::clear);
    marks->addWidget(clear_);
    words_ = new QLabel(this);
    words_->setObjectName(QStringLiteral("trimPartStr"));
    words_->setTextFormat(Qt::PlainText);
    words_->setProperty("role", QStringLiteral("caption"));
    words_->setWordWrap(true);
    marks->addWidget(words_, 1);
    auto* uses = new QHBoxLayout;
    lines->addLayout(uses);
    convert_ = new QCheckBox(windowText("Win_convertPart"), this);
    convert_->setObjectName(QStringLiteral("trimConvertBt"));
    convert_->setToolTip(wrappedTip(windowText("Win_tip_convertPart")));
    connect(convert_, &QCheckBox::toggled, this, &TrimPanel::convertWished);
    uses->addWidget(convert_);
    uses->addStretch(1);
    save_ = addButton("trimSaveBt", "Win_savePart", "Win_tip_savePart");
    connect(save_, &QPushButton::clicked, this, &TrimPanel::saveWished);
    uses->addWidget(save_);
    refresh();
}

QPushButton* TrimPanel::addButton(const char* name, const char* text, const char* tip)
{
    auto* button = new QPushButton(windowText(text), this);
    button->setObjectName(QLatin1String(name));
    button->setToolTip(wrappedTip(windowText(tip)));
    return button;
}

void TrimPanel::setClip(bool opened, double duration, const std::optional<ClipPart>& part)
{
    opened_ = opened;
    duration_ = duration;
    from_ = part ? std::optional(part->from) : std::nullopt;
    to_ = part ? part->to : std::nullopt;
    refresh();
    Q_EMIT marksChanged();
}

void TrimPanel::setRow(bool isRow, bool changeable, bool convertsPart)
{
    changeable_ = isRow && changeable;
    convert_->setVisible(isRow);
    const QSignalBlocker quiet(convert_);
    convert_->setChecked(convertsPart);
    refresh();
}

void TrimPanel::setFrom(double seconds)
{
    from_ = seconds;
    if (to_ && *to_ <= seconds) {
        to_.reset();
    }
    refresh();
    Q_EMIT marksChanged();
}

void TrimPanel::setTo(double seconds)
{
    to_ = seconds;
    if (from_ && *from_ >= seconds) {
        from_.reset();
    }
    refresh();
    Q_EMIT marksChanged();
}

void TrimPanel::clear()
{
    from_.reset();
    to_.reset();
    refresh();
    Q_EMIT marksChanged();
}

std::optional<ClipPart> TrimPanel::part() const
{
    if (!from_ && !to_) {
        return std::nullopt;
    }
    return ClipPart{from_.value_or(0), to_};
}

void TrimPanel::refresh()
{
    const std::optional<ClipPart> marked = part();
    in_->setEnabled(opened_);
    out_->setEnabled(opened_);
    clear_->setEnabled(marked.has_value());
    save_->setEnabled(opened_);
    save_->setText(windowText(marked ? "Win_savePart" : "Win_saveClip"));
    convert_->setEnabled(changeable_ && marked);
    if (!marked) {
        words_->setText(opened_ ? windowText("Win_noPart") : QString());
        return;
    }
    const double end = marked->to.value_or(duration_);
    words_->setText(windowText("Win_partShown",
                               {shownClipTime(marked->from), shownClipTime(end), shownClipTime(end - marked->from)}));
}

} // namespace tavrix
