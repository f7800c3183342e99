// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveComparison.h"

#include "ChildProcess.h"
#include "LiveValues.h"
#include "PrivateBus.h"
#include "VariantConversionTools.h"

#include <QDeadlineTimer>
#include <QMetaEnum>
#include <QMetaType>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

using View = TelvaroViewModel::View;

const char cViews[] = "views";
const char cCurrentView[] = "currentView";
const char cTaskSwitcher[] = "taskSwitcher";
const char cScreen[] = "screen";
const char* const cScreenProperties[] = {"screenSaverActive", "screenSaverEnabled", "screenSaverTimeoutSeconds",
                                         "orientation", "fullScreen"};

QString statusName(TelvaroLiveObject::Status status)
{
    return QLatin1String(QMetaEnum::fromType<TelvaroLiveObject::Status>().valueToKey(status));
}

bool areEqualAttributes(const QVariantMap& live, const QVariantMap& read)
{
    QStringList keys = read.keys();
    keys.removeDuplicates();
    return live.keys() == keys && std::all_of(keys.begin(), keys.end(), [&live, &read](const QString& key) {
               // D-Bus types become plain ones.
               const QVariant value = live.value(key);
               return value.userType() < QMetaType::User
                   && (read.value(key).userType() >= QMetaType::User || value == read.value(key));
           });
}

bool areEqual(const View& live, const View& read)
{
    return live.uuid == read.uuid && live.appId == read.appId && live.info1 == read.info1 && live.info2 == read.info2
        && live.info3 == read.info3 && live.info4 == read.info4 && live.pid == read.pid
        && live.sortIndex == read.sortIndex && areEqualAttributes(live.attributes, read.attributes);
}

/// The value in that type; invalid if it is not readable as such.
QVariant convert(const QVariant& value, int type)
{
    bool truth = false;
    int number = 0;
    QString text;
    switch (type) {
    case QMetaType::Bool:
        return VariantConversionTools::toBool(value, truth) ? QVariant(truth) : QVariant();
    case QMetaType::Int:
        return VariantConversionTools::toInt(value, number) ? QVariant(number) : QVariant();
    default:
        return VariantConversionTools::toString(value, text) ? QVariant(text) : QVariant();
    }
}

} // namespace

LiveComparison::LiveComparison(const LiveObjects& live, Operations& operations, LogCapture& log)
    : mLive(live)
    , mOperations(operations)
    , mLog(log)
{
}

QStringList LiveComparison::waitForEquality(QStringList& messages)
{
    const QDeadlineTimer deadline(ChildProcess::cDeadline);
    do {
        // The reply comes after everything that the service sent before: nothing is compared that is about to change.
        LiveValues::readCurrentView();
        PrivateBus::deliver();
        compare(messages);
    } while (!mDifferences.isEmpty() && !deadline.hasExpired());
    return mDifferences;
}

QStringList LiveComparison::missing() const
{
    QSet<QString> missing{QLatin1String(cViews), QLatin1String(cCurrentView)};
    for (const char* const name : cScreenProperties) {
        missing.insert(QLatin1String(name));
    }
    for (const char* const object : {cTaskSwitcher, cScreen}) {
        for (const TelvaroLiveObject::Status status : {TelvaroLiveObject::Ready, TelvaroLiveObject::Failed}) {
            missing.insert(QLatin1String(object) + statusName(status));
        }
    }
    return (missing - mMet).values();
}

void LiveComparison::compare(QStringList& messages)
{
    mDifferences.clear();
    compareTaskSwitcher(messages);
    compareScreen();
}

void LiveComparison::compareTaskSwitcher(QStringList& messages)
{
    messages += mLog.takeTexts();
    const QList<View> views = mOperations.taskSwitcher().getViews();
    const QStringList viewsLog = mLog.takeTexts();
    messages += viewsLog;
    mIsReadable = viewsLog.isEmpty();
    const QList<View>& rows = mLive.taskSwitcher.getViews()->getViews();
    if (mIsReadable && !std::equal(rows.begin(), rows.end(), views.begin(), views.end(), areEqual)) {
        fail(QLatin1String(cViews), LiveValues::text(LiveValues::fromViews(rows)),
             LiveValues::text(LiveValues::fromViews(views)));
    }
    if (!views.isEmpty()) {
        mMet.insert(QLatin1String(cViews));
    }
    compareValue(QLatin1String(cCurrentView), mLive.taskSwitcher.getCurrentView(), LiveValues::readCurrentView());
    compareStatus(QLatin1String(cTaskSwitcher), mLive.taskSwitcher);
}

void LiveComparison::compareScreen()
{
    const TelvaroScreen& screen = mLive.screen;
    const QVariant values[] = {screen.isScreenSaverActive(), screen.isScreenSaverEnabled(),
                               screen.getScreenSaverTimeout(), screen.getOrientation(), screen.isFullScreen()};
    mIsReadable = true;
    for (std::size_t index = 0; index < std::size(values); ++index) {
        const QString name = QLatin1String(cScreenProperties[index]);
        compareValue(name, values[index], mOperations.screen().getProperty(name));
    }
    compareStatus(QLatin1String(cScreen), screen);
}

void LiveComparison::compareValue(const QString& name, const QVariant& live, const QVariant& sent)
{
    const QVariant expected = convert(sent, live.userType());
    if (!expected.isValid()) {
        mIsReadable = false;
        return;
    }
    if (live != expected) {
        fail(name, LiveValues::text(live), LiveValues::text(expected));
    }
    if (expected != QVariant(expected.userType(), nullptr)) {
        mMet.insert(name);
    }
}

void LiveComparison::compareStatus(const QString& name, const TelvaroLiveObject& object)
{
    const TelvaroLiveObject::Status expected = mIsReadable ? TelvaroLiveObject::Ready : TelvaroLiveObject::Failed;
    if (object.getStatus() != expected || object.getError().isValid() == mIsReadable) {
        fail(name, statusName(object.getStatus()), statusName(expected));
    }
    mMet.insert(name + statusName(expected));
}

void LiveComparison::fail(const QString& name, const QString& live, const QString& expected)
{
    mDifferences.append(QStringLiteral("%1: %2, not %3").arg(name, live, expected));
}
