// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusPendingCall>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

#include <functional>

/// Window that sends notifications and shows screenshots.
class NotifyAndCapture : public QWidget
{
    Q_OBJECT

public:
    explicit NotifyAndCapture(const QString& pictureDirectory, QWidget* parent = nullptr);

private:
    void makeLayout();
    void send();
    void capture();
    void showPicture(const QString& path);
    /// Calls the function with the reply when it has arrived.
    void onReply(const QDBusPendingCall& request, const std::function<void(const QDBusPendingCall&)>& function);

    QLineEdit* const mSummary;
    QLineEdit* const mBody;
    QPushButton* const mSend;
    QLineEdit* const mDirectory;
    QPushButton* const mCapture;
    QLabel* const mPicture;
    QLabel* const mMessage;
};
