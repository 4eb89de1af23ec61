// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/desktop/buscontrol.h"

#include "app/appdelegate.h"
#include "base/text/log.h"

#include <QDBusMessage>
#include <QUrl>

namespace tavrix
{

namespace
{

// Absolute paths of this machine; no value when one of the words is none.
std::optional<QStringList> localPaths(const QStringList& files)
{
    QStringList paths;
    for (const QString& file : files) {
        const QUrl address(file);
        const QString path = address.isLocalFile() ? address.toLocalFile() : file;
        if (!path.startsWith(QLatin1Char('/'))) {
            return std::nullopt;
        }
        paths << path;
    }
    return paths;
}

} // namespace

BusControl::BusControl(appDelegate& controller, const QDBusConnection& bus, QObject* parent)
    : QObject(parent), controller_(controller), commands_(controller), bus_(bus)
{
    follow();
    const auto exported = QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportAllProperties;
    if (!bus_.registerObject(busPath, this, exported) || !bus_.registerService(busService)) {
        logLine(QStringLiteral("message bus         :-( %@"), {bus_.lastError().message()});
    }
}

BusControl::~BusControl()
{
    bus_.unregisterObject(busPath);
    bus_.unregisterService(busService);
}

void BusControl::follow()
{
    const auto relay = [this] {
        announce();
    };
    connect(&controller_, &appDelegate::intakeBegan, this, relay);
    connect(&controller_, &appDelegate::analysisStarted, this, relay);
    connect(&controller_, &appDelegate::analysisEnded, this, relay, Qt::QueuedConnection);
    connect(&controller_, &appDelegate::analysisStalled, this, relay, Qt::QueuedConnection);
    connect(&controller_, &appDelegate::nothingToAnalyse, this, relay);
    connect(&controller_.model().encStopBt, &Control::changed, this, relay);
    connect(&controller_, &appDelegate::rowStarted, this, [this](int row) {
        batchRuns_ = true;
        showProgress(row, 0, 1);
    });
    connect(&controller_, &appDelegate::rowProgress, this, &BusControl::showProgress);
    connect(&controller_, &appDelegate::batchEnded, this, [this] {
        batchRuns_ = false;
        clip_ = 0;
        progress_ = 0;
        announce();
    });
}

QString BusControl::state() const
{
    if (controller_.isAnalysing()) {
        return QStringLiteral("analysing");
    }
    if (!batchRuns_) {
        return QStringLiteral("idle");
    }
    return commands_.isPaused() ? QStringLiteral("paused") : QStringLiteral("encoding");
}

int BusControl::clips() const
{
    return controller_.model().encBatchArrayController.count();
}

void BusControl::showProgress(int row, float value, float maximum)
{
    constexpr double smallestStep = 0.005;
    const double part = maximum > 0 ? qBound(0.0, static_cast<double>(value / maximum), 1.0) : 0;
    const double progress = clips() > 0 ? qBound(0.0, (row + part) / clips(), 1.0) : 0;
    const bool moved = qAbs(progress - progress_) >= smallestStep || clip_ != row + 1;
    clip_ = row + 1;
    if (moved) {
        progress_ = progress;
        announce();
    }
}

void BusControl::announce()
{
    QVariantMap changed;
    for (const char* name : {"State", "Progress", "Clip", "Clips"}) {
        const QVariant value = property(name);
        QVariant& told = told_[QLatin1String(name)];
        if (told != value) {
            told = value;
            changed.insert(QLatin1String(name), value);
        }
    }
    if (changed.isEmpty()) {
        return;
    }
    QDBusMessage signal = QDBusMessage::createSignal(busPath, QStringLiteral("org.freedesktop.DBus.Properties"),
                                                     QStringLiteral("PropertiesChanged"));
    signal << busService << changed << QStringList();
    bus_.send(signal);
}

void BusControl::AddFiles(const QStringList& files)
{
    const std::optional<QStringList> paths = localPaths(files);
    if (!paths || paths->isEmpty()) {
        if (calledFromDBus()) {
            sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("absolute paths of this machine are needed"));
        }
        return;
    }
    controller_.applicationOpenFiles(*paths);
}

} // namespace tavrix
