// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/store/preferences.h"

#include "base/bundle/bundle.h"
#include "base/bundle/propertylist.h"
#include "base/files/atomicfile.h"
#include "base/files/fileops.h"
#include "base/files/posixfile.h"
#include "base/text/format.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "sys/secondpass.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>

#include <cstdio>

namespace tavrix
{
namespace
{

constexpr int saveDelayMilliseconds = 500;
constexpr std::uint64_t largestFile = std::uint64_t{256} << 20; // bytes

// The whole store in memory. A queue of thousands of sources changes a dozen keys per source: saving each change would
// write gigabytes.
class PreferenceStore
{
public:
    static PreferenceStore& instance()
    {
        static PreferenceStore store;
        return store;
    }

    QVariantMap& values()
    {
        if (!loaded_) {
            load();
        }
        return values_;
    }

    void changed()
    {
        dirty_ = true;
        scheduleSave();
    }

    // True after a save that failed: the file lacks changes that reads already show.
    [[nodiscard]] bool hasUnappliedChanges() const { return saveFailed_; }

    bool save();

    void forget()
    {
        values_.clear();
        loaded_ = false;
        dirty_ = false;
        setAside_ = false;
        saveFailed_ = false;
        if (timer_) {
            timer_->stop();
        }
    }

private:
    void load();
    bool putDamagedFileAside();
    bool writeFile();
    void scheduleSave();

    QVariantMap values_;
    QString path_; // of the file that was loaded, also when HOME changes later
    bool loaded_ = false;
    bool dirty_ = false;
    bool setAside_ = false; // a damaged file still stands in the way
    bool saveFailed_ = false;
    QPointer<QTimer> timer_;
};

void PreferenceStore::load()
{
    loaded_ = true;
    path_ = preferencesPath();
    const QByteArray bytes = systemPath(path_);
    if (!linkStatus(bytes)) {
        return;
    }
    const Result<QByteArray> contents = readFile<QByteArray>(bytes, largestFile);
    const std::optional<QVariant> list = contents ? propertyListFromBytes(*contents) : std::nullopt;
    if (list && list->typeId() == QMetaType::QVariantMap) {
        values_ = list->toMap();
        return;
    }
    logLine(QStringLiteral("preferences         :-( damaged: %@"), {path_});
    setAside_ = true;
    putDamagedFileAside();
}

bool PreferenceStore::putDamagedFileAside()
{
    if (!setAside_) {
        return true;
    }
    const QByteArray bytes = systemPath(path_);
    if (linkStatus(bytes) && ::rename(bytes.constData(), (bytes + ".damaged").constData()) != 0) {
        logLine(QStringLiteral("preferences         :-( %@ : %@"), {path_, systemErrorText()});
        return false;
    }
    setAside_ = false;
    return true;
}

void PreferenceStore::scheduleSave()
{
    QCoreApplication* application = QCoreApplication::instance();
    if (!application) {
        return;
    }
    if (!timer_) {
        timer_ = new QTimer(application);
        timer_->setSingleShot(true);
        QObject::connect(timer_, &QTimer::timeout, timer_, [] { prefSynchronize(); });
    }
    // Not restarted by later changes: a steady stream of them must not put the saving off.
    if (!timer_->isActive()) {
        timer_->start(saveDelayMilliseconds);
    }
}

bool PreferenceStore::save()
{
    if (dirty_) {
        saveFailed_ = !writeFile();
    }
    dirty_ = saveFailed_;
    return !saveFailed_;
}

bool PreferenceStore::writeFile()
{
    if (!putDamagedFileAside()) {
        return false;
    }
    const Result<QByteArray, QString> xml = propertyListToXml(values_);
    mkdirCocoa(stringByDeletingLastPathComponent(path_)); // where that fails, so does the writing
    const Result<void, QString> written = xml ? replaceFileAtomically(path_, *xml) : Failure{xml.reason()};
    if (!written) {
        logLine(QStringLiteral("preferences         :-( %@ : %@"), {path_, written.reason()});
    }
    return written.hasValue();
}

QVariantMap& allValues()
{
    return PreferenceStore::instance().values();
}

// The stored dictionary itself, so that adding a child costs no copy; null when there is none.
QVariantMap* storedDictionary(const QString& key)
{
    QVariantMap& values = allValues();
    const auto entry = values.find(key);
    if (entry == values.end() || entry->typeId() != QMetaType::QVariantMap) {
        return nullptr;
    }
    return static_cast<QVariantMap*>(entry->data());
}

} // namespace

QString prefRead(const QString& key)
{
    const QVariantMap& values = allValues();
    const auto entry = values.constFind(key);
    return key.isNull() || entry == values.cend() ? QStringLiteral("") : textOf(*entry);
}

bool prefWrite(const QString& key, const QVariant& value)
{
    if (key.isNull() || !hasPropertyListForm(value)) {
        return false;
    }
    allValues().insert(key, value);
    PreferenceStore::instance().changed();
    return true;
}

bool prefDelete(const QString& key)
{
    if (!key.isNull() && allValues().remove(key) > 0) {
        PreferenceStore::instance().changed();
    }
    if (PreferenceStore::instance().hasUnappliedChanges()) {
        logLine(QStringLiteral("hasUnappliedChanges :-("));
    }
    return true;
}

std::optional<QVariantMap> prefReadDico(const QString& key)
{
    const QVariantMap* dictionary = key.isNull() ? nullptr : storedDictionary(key);
    return dictionary ? std::optional<QVariantMap>(*dictionary) : std::nullopt;
}

bool prefWriteDico(const QString& key, const std::optional<QVariantMap>& dictionary)
{
    return dictionary && prefWrite(key, *dictionary);
}

QString prefReadChildDico(const QString& key, const QString& childKey)
{
    const QVariantMap* dictionary = key.isNull() || childKey.isNull() ? nullptr : storedDictionary(key);
    if (!dictionary) {
        return QStringLiteral("");
    }
    const QVariant child = dictionary->value(childKey);
    const bool missing = !child.isValid() || (child.typeId() == QMetaType::QString && child.toString().isNull());
    return missing ? QStringLiteral("") : textOf(child);
}

bool prefWriteChildDico(const QString& key, const QString& childKey, const QVariant& value)
{
    if (key.isNull() || childKey.isNull() || !hasPropertyListForm(value)) {
        return false;
    }
    if (QVariantMap* dictionary = storedDictionary(key)) {
        dictionary->insert(childKey, value);
    } else {
        allValues().insert(key, QVariantMap{{childKey, value}});
    }
    PreferenceStore::instance().changed();
    return true;
}

bool prefDeleteChildDico(const QString& key, const QString& childKey)
{
    QVariantMap* dictionary = key.isNull() || childKey.isNull() ? nullptr : storedDictionary(key);
    if (dictionary && dictionary->remove(childKey) > 0) {
        PreferenceStore::instance().changed();
    }
    return true;
}

QStringList prefAllKeys()
{
    return allValues().keys();
}

QString preferencesPath()
{
    return QString::fromStdString(secondpass::storePath(homeFolder().toStdString(), bundleIdentifier().toStdString(),
                                                        bundleName().toStdString()));
}

bool prefSynchronize()
{
    return PreferenceStore::instance().save();
}

void prefReload()
{
    PreferenceStore::instance().forget();
}

} // namespace tavrix
