// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/TaskSwitcherObject.h"

#include "TaskSwitcherObjectAdaptor.h"
#include "bus/GatedAdaptor.h"
#include "bus/PropertiesAdaptor.h"
#include "state/ViewList.h"

#include <QDBusError>
#include <QDBusMetaType>

namespace {

/// Between two signals for the list of views: clients can change their titles at any rate.
constexpr int cSmallestDistanceMilliseconds = 20;

} // namespace

TaskSwitcherObject::TaskSwitcherObject(ViewList& views, CallGate& gate, QObject* parent)
    : QObject(parent)
    , mViews(views)
{
    qDBusRegisterMetaType<ViewRecord>();
    qDBusRegisterMetaType<ViewRecordList>();
    // The adaptor's property has its type by this name; Qt would register the list as QList<ViewRecord> only.
    qRegisterMetaType<ViewRecordList>("ViewRecordList");
    new GatedAdaptor<TaskSwitcherObjectAdaptor>(this, gate);
    mProperties = new GatedAdaptor<PropertiesAdaptor>(this, gate);

    mTimer.setSingleShot(true);
    connect(&mTimer, &QTimer::timeout, this, &TaskSwitcherObject::announceViews);
    connect(&views, &ViewList::viewsChanged, this, &TaskSwitcherObject::announceViewsSoon);
    connect(&views, &ViewList::currentChanged, this, [this] {
        if (mTimer.isActive()) {
            announceViews();
        }
        mProperties->announce("currentView");
    });
}

ViewRecordList TaskSwitcherObject::views() const
{
    return viewRecordsOf(mViews);
}

QString TaskSwitcherObject::currentView() const
{
    return mViews.current();
}

void TaskSwitcherObject::setCurrentView(const QString& uuid)
{
    if (!mViews.setCurrent(uuid)) {
        sendErrorReply(QDBusError::InvalidArgs,
                       QStringLiteral("there is no view \"%1\"; the uuid of one of the views is expected").arg(uuid));
    }
}

void TaskSwitcherObject::announceViewsSoon()
{
    if (mTimer.isActive()) {
        return;
    }
    const qint64 elapsed = mSinceSignal.isValid() ? mSinceSignal.elapsed() : cSmallestDistanceMilliseconds;
    mTimer.start(static_cast<int>(qMax<qint64>(0, cSmallestDistanceMilliseconds - elapsed)));
}

void TaskSwitcherObject::announceViews()
{
    mTimer.stop();
    mSinceSignal.start();
    mProperties->announce("views");
}
