// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/dialogs/alertdialog.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "base/text/shownname.h"
#include "gui/widgets/images.h"
#include "gui/widgets/windowtext.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavrix
{

namespace
{

constexpr int ticksPerSecond = 10;
constexpr int criticalStyle = 2;
constexpr int textWidth = 340;
constexpr int iconSide = 48;

// What will be done when nobody answers, by the key of the default button's title.
const char* countdownKey(const QString& defaultButton)
{
    if (defaultButton == localizedString(QStringLiteral("D_replace"))) {
        return "Win_countdownReplace";
    }
    if (defaultButton == localizedString(QStringLiteral("D_Annuler"))) {
        return "Win_countdownStay";
    }
    return "Win_countdown";
}

constexpr int longestWord = 28;
constexpr int pieceOfWord = 14;

// Labels break lines between words only: places to break are put into long file names.
QString breakable(const QString& text)
{
    QStringList words = text.split(QLatin1Char(' '));
    for (QString& word : words) {
        for (qsizetype end = word.size() > longestWord ? word.size() - pieceOfWord : 0; end > 0; end -= pieceOfWord) {
            const qsizetype place = word.at(end).isLowSurrogate() ? end - 1 : end;
            word.insert(place, QChar(0x200B));
        }
    }
    return words.join(QLatin1Char(' '));
}

QLabel* plainLabel(const QString& text, const char* name, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    const QString plain = shownLines(text);
    const QString shown = breakable(plain);
    label->setText(shown);
    label->setAccessibleName(plain);
    label->setObjectName(QLatin1String(name));
    label->setWordWrap(true);
    if (shown == plain) {
        // A copied name must not hold the invisible breaks.
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    label->setMinimumWidth(textWidth);
    return label;
}

} // namespace

AlertDialog::AlertDialog(const AlertRequest& request, int tickMilliseconds, QWidget* parent)
    : QDialog(parent), request_(request)
{
    setObjectName(QStringLiteral("alertDialog"));
    setWindowTitle(bundleName());
    setAccessibleName(request.title);
    auto* outer = new QHBoxLayout(this);
    outer->setContentsMargins(20, 18, 20, 16);
    outer->setSpacing(16);
    auto* icon = new QLabel(this);
    const QString image = request.style == criticalStyle ? QStringLiteral("alertCritical") : QStringLiteral("tavrix");
    icon->setObjectName(QStringLiteral("alertIcon"));
    icon->setProperty("imageName", image);
    icon->setPixmap(imagePixmap(image, iconSide, devicePixelRatioF()));
    outer->addWidget(icon, 0, Qt::AlignTop);
    column_ = new QVBoxLayout;
    column_->setSpacing(10);
    outer->addLayout(column_, 1);
    buildWords(column_);
    buildButtons(column_);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    // A negative time is over at the first tick.
    if (request.seconds != 0) {
        startCountdown(tickMilliseconds);
    }
}

void AlertDialog::buildWords(QVBoxLayout* column)
{
    QLabel* title = plainLabel(request_.title, "alertTitle", this);
    title->setProperty("role", QStringLiteral("title"));
    column->addWidget(title);
    if (!request_.text.isEmpty()) {
        column->addWidget(plainLabel(request_.text, "alertText", this));
    }
    if (request_.hasCheckBox) {
        const QString words = request_.checkBoxTitle.isEmpty() ? windowText("Win_dontAsk") : request_.checkBoxTitle;
        checkBox_ = new QCheckBox(QString(words).replace(QLatin1Char('&'), QStringLiteral("&&")), this);
        checkBox_->setObjectName(QStringLiteral("alertCheckBox"));
        column->addWidget(checkBox_);
    }
}

void AlertDialog::buildButtons(QVBoxLayout* column)
{
    auto* line = new QHBoxLayout;
    countdown_ = new QLabel(this);
    countdown_->setObjectName(QStringLiteral("alertCountdown"));
    countdown_->setProperty("role", QStringLiteral("caption"));
    countdown_->setTextFormat(Qt::PlainText);
    countdown_->setVisible(request_.seconds != 0);
    line->addWidget(countdown_);
    line->addStretch(1);
    for (int i = 0; i < request_.buttons.size(); ++i) {
        // An ampersand would become a mnemonic.
        auto* button =
            new QPushButton(QString(request_.buttons.at(i)).replace(QLatin1Char('&'), QStringLiteral("&&")), this);
        button->setObjectName(formatText(QStringLiteral("alertButton%d"), {i}));
        button->setAutoDefault(true);
        button->setMinimumWidth(86);
        connect(button, &QPushButton::clicked, this, [this, i] { answer(i); });
        buttons_ << button;
    }
    for (auto button = buttons_.crbegin(); button != buttons_.crend(); ++button) {
        line->addWidget(*button);
    }
    if (!buttons_.isEmpty()) {
        buttons_.first()->setDefault(true);
        buttons_.first()->setProperty("role", QStringLiteral("primary"));
        buttons_.first()->setFocus();
    }
    column->addSpacing(4);
    column->addLayout(line);
}

void AlertDialog::addTextField(const QString& value)
{
    field_ = new QLineEdit(value, this);
    field_->setObjectName(QStringLiteral("alertTextField"));
    field_->setPlaceholderText(value);
    field_->setAccessibleName(request_.title);
    field_->setFixedWidth(textWidth);
    column_->insertWidget(column_->count() - 2, field_);
    field_->selectAll();
    field_->setFocus();
}

QString AlertDialog::typedText() const
{
    return field_ != nullptr ? field_->text() : QString();
}

AlertOutcome AlertDialog::outcome() const
{
    return {button_, checkBox_ != nullptr && checkBox_->isChecked()};
}

void AlertDialog::startCountdown(int tickMilliseconds)
{
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.setInterval(tickMilliseconds);
    connect(&timer_, &QTimer::timeout, this, &AlertDialog::tick);
    showRemaining();
    timer_.start();
}

void AlertDialog::tick()
{
    ++ticks_;
    if (ticks_ < request_.seconds * ticksPerSecond) {
        showRemaining();
        return;
    }
    timer_.stop();
    button_ = -1;
    done(Rejected);
}

void AlertDialog::showRemaining()
{
    const int seconds = qMax(0, request_.seconds - ticks_ / ticksPerSecond);
    countdown_->setText(windowText(countdownKey(request_.buttons.value(0)), {seconds}));
}

void AlertDialog::answer(int button)
{
    timer_.stop();
    button_ = button;
    done(Accepted);
}

// Escape and the window's close control.
void AlertDialog::reject()
{
    const int button = request_.harmlessButton();
    if (button >= 0) {
        answer(button);
    }
}

void AlertDialog::dismiss()
{
    timer_.stop();
    button_ = request_.harmlessButton();
    done(Rejected);
}

} // namespace tavrix
