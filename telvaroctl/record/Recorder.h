// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "CallLog.h"
#include "Result.h"
#include "ServiceState.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QVariantMap>

#include <memory>

class BusMessage;
class BusStream;
class ScriptWriter;

/// Records what the service does, as a script. Everything is taken from one stream of messages, so that it is in the
/// order of the bus: that of a monitor, or where the bus grants none, that of an ordinary connection.
class Recorder : public QObject
{
    Q_OBJECT

public:
    Recorder(std::unique_ptr<ScriptWriter> writer, std::unique_ptr<BusStream> stream, std::unique_ptr<BusStream> sender,
             bool isAnonymous);
    ~Recorder() override;

    /// Begins to record.
    MaybeError start();
    /// Writes what is not written yet, and returns the number of steps, or why not all could be written.
    Result<int> finish();

Q_SIGNALS:
    /// The state of the service at the start is written.
    void started();
    /// Nothing can be recorded any more.
    void ended();

private:
    void noteMessage(const BusMessage& message);
    void noteOwner(const QString& owner);
    void noteProperty(const QString& interface, const QString& name, const QVariant& value);
    void noteViews(const QVariantList& records);
    std::optional<QJsonObject> toView(const QVariant& record);
    QJsonObject toAttributes(const QVariantMap& attributes);

    void readAll();
    /// `property` is the interface and the name.
    void read(const QString& path, const QStringList& property);
    void noteReadReply(const BusMessage& message);

    /// Begins a moment, if there is none: changes that follow each other closely become one.
    void beginMoment();
    void endMoment();

    QString mask(const QString& text);
    /// Prints a warning once.
    void warn(const QString& text);

    std::unique_ptr<ScriptWriter> mWriter;
    std::unique_ptr<BusStream> mStream;
    /// Sends the reads of a monitor, which cannot send itself.
    std::unique_ptr<BusStream> mSender;
    const QString mName;
    const bool mIsAnonymous;

    CallLog mCalls;
    QVector<QJsonObject> mFaults;
    ServiceState mWritten;
    ServiceState mState;
    QString mOwner;
    /// The properties whose values are waited for, by the serials of the calls.
    QHash<quint32, QStringList> mReads;

    QElapsedTimer mClock;
    QTimer mTimer;
    qint64 mMoment = 0;
    bool mHasStarted = false;
    QHash<QString, QString> mMaskedTexts;
    QSet<QString> mWarnings;
};
