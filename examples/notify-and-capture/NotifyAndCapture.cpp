// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "NotifyAndCapture.h"

#include "ScreenShotWorker.h"

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
    startWorker();
    connect(mSend, &QPushButton::clicked, this, &NotifyAndCapture::send);
    connect(mCapture, &QPushButton::clicked, this, &NotifyAndCapture::capture);
}

NotifyAndCapture::~NotifyAndCapture()
{
    // Blocks while a screenshot is being taken: a call to the service cannot be cancelled.
    mWorkerThread.quit();
    mWorkerThread.wait();
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

void NotifyAndCapture::startWorker()
{
    auto* const worker = new ScreenShotWorker;
    worker->moveToThread(&mWorkerThread);
    connect(&mWorkerThread, &QThread::finished, worker, &QObject::deleteLater);
    // Signals between objects in different threads are queued, so neither thread blocks the other.
    connect(this, &NotifyAndCapture::captureRequested, worker, &ScreenShotWorker::capture);
    connect(worker, &ScreenShotWorker::captured, this, &NotifyAndCapture::showPicture);
    connect(worker, &ScreenShotWorker::failed, this, &NotifyAndCapture::showFailure);
    mWorkerThread.start();
}

void NotifyAndCapture::send()
{
    if (!mNotification.isInterfaceValid()) {
        mMessage->setText(tr("The compositor service is not there."));
        return;
    }
    // Pairs of identifier and label; the server uses the identifier as the name of the action's icon.
    const QStringList actions{QStringLiteral("dialog-ok"), tr("Thanks")};
    mNotification.notify(QStringLiteral("dialog-information"), mSummary->text(), mBody->text(), actions);
    // notify() does not report whether the service accepted it.
    mMessage->setText(tr("Sent."));
}

void NotifyAndCapture::capture()
{
    // One screenshot at a time.
    mCapture->setEnabled(false);
    mMessage->setText(tr("Taking a screenshot..."));
    // Absolute, because the service has another current directory.
    Q_EMIT captureRequested(QDir(mDirectory->text()).absolutePath());
}

void NotifyAndCapture::showPicture(const QString& path)
{
    mCapture->setEnabled(true);
    mMessage->setText(path);
    const QPixmap picture(path);
    if (!picture.isNull()) {
        mPicture->setPixmap(
            picture.scaled(mPicture->contentsRect().size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
    }
}

void NotifyAndCapture::showFailure()
{
    mCapture->setEnabled(true);
    mMessage->setText(tr("No screenshot was taken. Does the directory exist?"));
}
