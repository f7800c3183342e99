// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "NotifyAndCapture.h"

#include <TelvaroRequests.h>

#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDir>
#include <QFormLayout>
#include <QPixmap>
#include <QVBoxLayout>

NotifyAndCapture::NotifyAndCapture(const QString& pictureDirectory, QWidget* parent)
    : QWidget(parent)
    , mSummary(new QLineEdit(tr("Good morning")))
    , mBody(new QLineEdit(tr("The coffee is ready.")))
    , mSend(new QPushButton(tr("Send &notification")))
    , mDirectory(new QLineEdit(pictureDirectory))
    , mCapture(new QPushButton(tr("Take &screenshot")))
    , mPicture(new QLabel)
    , mMessage(new QLabel)
{
    setWindowTitle(tr("Notify and capture"));
    makeLayout();
    connect(mSend, &QPushButton::clicked, this, &NotifyAndCapture::send);
    connect(mCapture, &QPushButton::clicked, this, &NotifyAndCapture::capture);
}

void NotifyAndCapture::makeLayout()
{
    auto* const heading = new QLabel(tr("Notify and capture"));
    heading->setObjectName(QStringLiteral("heading"));
    mPicture->setObjectName(QStringLiteral("picture"));
    mPicture->setAlignment(Qt::AlignCenter);
    mPicture->setMinimumSize(240, 160);
    mMessage->setObjectName(QStringLiteral("message"));
    mMessage->setWordWrap(true);

    auto* const form = new QFormLayout;
    form->setRowWrapPolicy(QFormLayout::WrapAllRows);
    form->setVerticalSpacing(8);
    form->addRow(tr("Summary"), mSummary);
    form->addRow(tr("Body"), mBody);
    form->addRow(mSend);
    form->addRow(tr("&Directory of pictures"), mDirectory);
    form->addRow(mCapture);

    auto* const columns = new QHBoxLayout;
    columns->setSpacing(32);
    columns->addLayout(form, 2);
    columns->addWidget(mPicture, 3);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 24, 32, 24);
    layout->setSpacing(18);
    layout->addWidget(heading);
    layout->addLayout(columns, 1);
    layout->addWidget(mMessage);
}

void NotifyAndCapture::send()
{
    // Pairs of identifier and label; the server uses the identifier as the name of the action's icon.
    const QStringList actions{QStringLiteral("dialog-ok"), tr("Thanks")};
    mMessage->setText(tr("Sending..."));
    onReply(TelvaroRequests::notify(QStringLiteral("dialog-information"), mSummary->text(), mBody->text(), actions),
            [this](const QDBusPendingReply<uint>& reply) {
                mMessage->setText(reply.isError() ? tr("Not sent: %1").arg(reply.error().message())
                                                  : tr("Sent, as number %1.").arg(reply.value()));
            });
}

void NotifyAndCapture::capture()
{
    // One screenshot at a time.
    mCapture->setEnabled(false);
    mMessage->setText(tr("Taking a screenshot..."));
    // Absolute, because the service has another current directory.
    onReply(TelvaroRequests::captureScreenShot(QDir(mDirectory->text()).absolutePath()),
            [this](const QDBusPendingReply<QString>& reply) {
                mCapture->setEnabled(true);
                if (reply.isError()) {
                    mMessage->setText(tr("No screenshot was taken: %1").arg(reply.error().message()));
                } else {
                    showPicture(reply.value());
                }
            });
}

void NotifyAndCapture::showPicture(const QString& path)
{
    mMessage->setText(path);
    const QPixmap picture(path);
    if (!picture.isNull()) {
        mPicture->setPixmap(
            picture.scaled(mPicture->contentsRect().size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
    }
}

void NotifyAndCapture::onReply(const QDBusPendingCall& request,
                               const std::function<void(const QDBusPendingCall&)>& function)
{
    auto* const watcher = new QDBusPendingCallWatcher(request, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, function] {
        watcher->deleteLater();
        function(*watcher);
    });
}
