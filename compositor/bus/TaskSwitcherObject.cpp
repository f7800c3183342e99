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

constexpr int cSmallestDistanceMilliseconds = 20;

} // namespace

TaskSwitcherObject::TaskSwitcherObject(ViewList& views, CallGate& gate, QObject* parent)
    : QObject(parent)
    , mViews(views)
{
    qDBusRegisterMetaType<ViewRecord>();
    qDBusRegisterMetaType<ViewRecordList>();
    // The property's type goes by this name, which is not the one that the list gets by itself.
    qRegisterMetaType<ViewRecordList>("ViewRecordList");
    new GatedAdaptor<TaskSwitcherObjectAdaptor>(this, gate);
    new GatedAdaptor<PropertiesAdaptor>(this, gate);

    mTimer.setSingleShot(true);
    connect(&mTimer, &QTimer::timeout, this, &TaskSwitcherObject::emitViewsChanged);
    connect(&views, &ViewList::viewsChanged, this, &TaskSwitcherObject::scheduleViewsChanged);
    connect(&views, &ViewList::currentChanged, this, [this] {
        if (mTimer.isActive()) {
            emitViewsChanged();
        }
        Q_EMIT currentViewChanged();
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

void TaskSwitcherObject::scheduleViewsChanged()
{
    if (mTimer.isActive()) {
        return;
    }
    const qint64 elapsed = mSinceSignal.isValid() ? mSinceSignal.elapsed() : cSmallestDistanceMilliseconds;
    mTimer.start(static_cast<int>(qMax<qint64>(0, cSmallestDistanceMilliseconds - elapsed)));
}

void TaskSwitcherObject::emitViewsChanged()
{
    mTimer.stop();
    mSinceSignal.start();
    Q_EMIT viewsChanged();
}
