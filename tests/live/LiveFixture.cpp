// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveFixture.h"

#include "PrivateBus.h"

QList<TaskSwitcherEntry> LiveFixture::makeViews(int count)
{
    QList<TaskSwitcherEntry> views;
    for (int index = 0; index < count; ++index) {
        views.append(makeView(QString(QChar('a' + index)), QStringLiteral("x"), static_cast<quint32>(index)));
    }
    return views;
}

QStringList LiveFixture::currentRows(const TelvaroViewModel& views)
{
    QStringList uuids;
    for (int row = 0; row < views.rowCount(); ++row) {
        if (views.index(row).data(TelvaroViewModel::CurrentRole).toBool()) {
            uuids.append(views.index(row).data(TelvaroViewModel::UuidRole).toString());
        }
    }
    return uuids;
}

QStringList LiveFixture::taskSwitcherReads()
{
    return {getViewsCall(), getCurrentViewCall()};
}

QStringList LiveFixture::screenReads()
{
    QStringList reads;
    for (const char* const name :
         {"screenSaverActive", "screenSaverEnabled", "screenSaverTimeoutSeconds", "orientation", "fullScreen"}) {
        reads.append(QStringLiteral("/screen org.freedesktop.DBus.Properties.Get ss('de.Telvaro.screen', '%1')")
                         .arg(QLatin1String(name)));
    }
    return reads;
}

void LiveFixture::emitScreenChanged(const QString& changed, const QStringList& invalidated)
{
    mService.emitSignal(ServiceSignal::propertiesChanged(QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"),
                                                         changed, invalidated));
    PrivateBus::deliver();
}

StatusRecorder::StatusRecorder(const TelvaroLiveObject& object)
{
    connect(&object, &TelvaroLiveObject::statusChanged, this, [this, &object] {
        mStatuses.append(object.getStatus());
    });
}

const QList<TelvaroLiveObject::Status>& StatusRecorder::getStatuses() const
{
    return mStatuses;
}

void StatusRecorder::clear()
{
    mStatuses.clear();
}
