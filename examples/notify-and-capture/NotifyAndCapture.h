// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroNotificationDBusConnector.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QThread>
#include <QWidget>

/// Window that sends notifications and shows screenshots.
class NotifyAndCapture : public QWidget
{
    Q_OBJECT

public:
    explicit NotifyAndCapture(const QString& pictureDirectory, QWidget* parent = nullptr);
    ~NotifyAndCapture() override;

Q_SIGNALS:
    /// Emitted for the worker.
    void captureRequested(const QString& directory);

private:
    void makeLayout();
    void startWorker();
    void send();
    void capture();
    void showPicture(const QString& path);
    void showFailure();

    TelvaroNotificationDBusConnector mNotification;
    QThread mWorkerThread;
    QLineEdit* const mSummary;
    QLineEdit* const mBody;
    QPushButton* const mSend;
    QLineEdit* const mDirectory;
    QPushButton* const mCapture;
    QLabel* const mPicture;
    QLabel* const mMessage;
};
