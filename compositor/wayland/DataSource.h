// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QByteArray>
#include <QObject>
#include <QVector>

#include <cstdint>

struct wl_client;
struct wl_resource;

/// A wl_data_source: what a client offers for the clipboard or in a drag and drop. Lives as long as its resource.
class DataSource : public QObject
{
    Q_OBJECT

public:
    static void create(wl_client* client, int version, quint32 id);
    /// Returns null for a null resource.
    static DataSource* of(wl_resource* resource);

    const QVector<QByteArray>& types() const
    {
        return mTypes;
    }
    /// A mask of wl_data_device_manager.dnd_action; copy, unless the client has set another.
    quint32 actions() const
    {
        return mActions;
    }
    /// Claims the source for the clipboard or a drag. Returns false when it has been used before.
    bool claim();

    void sendTarget(const char* type);
    void sendAction(quint32 action);
    /// Hands the write end of a pipe to the client, and closes it here.
    void sendRequest(const char* type, int descriptor);
    void sendCancelled();
    void sendDropPerformed();
    void sendFinished();

private:
    explicit DataSource(wl_resource* resource);

    static void offer(wl_client* client, wl_resource* resource, const char* type);
    static void setActions(wl_client* client, wl_resource* resource, uint32_t actions);

    wl_resource* mResource;
    QVector<QByteArray> mTypes;
    int mTypeBytes = 0;
    quint32 mActions;
    bool mHasActions = false;
    bool mIsUsed = false;
};
