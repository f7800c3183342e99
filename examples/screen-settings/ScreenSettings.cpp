// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ScreenSettings.h"

#include <QEvent>
#include <QFormLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>

using Connector = TelvaroScreenDBusConnector;

ScreenSettings::ScreenSettings(QWidget* parent)
    : QWidget(parent)
    , mScreenSaverEnabled(new QCheckBox(tr("Allow the &screen saver")))
    , mScreenSaverTimeout(new QSpinBox)
    , mScreenSaverState(new QLabel)
    , mOrientation(new QComboBox)
    , mFullScreen(new QCheckBox(tr("&Full screen, without the status bar")))
    , mMessage(new QLabel)
{
    setWindowTitle(tr("Screen settings"));
    mScreenSaverTimeout->setRange(0, 24 * 60 * 60);
    mScreenSaverTimeout->setSpecialValueText(tr("never"));
    mScreenSaverTimeout->setSuffix(tr(" seconds"));
    // One write when the number is complete, not one for every digit.
    mScreenSaverTimeout->setKeyboardTracking(false);
    mOrientation->addItem(tr("Landscape"), Connector::getOrientationLandscape());
    mOrientation->addItem(tr("Portrait"), Connector::getOrientationPortrait());
    mOrientation->addItem(tr("Portrait, upside down"), Connector::getOrientationInversePortrait());
    makeLayout();

    // A write returns nothing. Whether the service took it is seen by reading it back.
    connect(mScreenSaverEnabled, &QCheckBox::toggled, this, [this](bool enabled) {
        if (enabled) {
            mScreen.enableScreenSaver();
        } else {
            mScreen.disableScreenSaver();
        }
        showSettings();
    });
    connect(mScreenSaverTimeout, QOverload<int>::of(&QSpinBox::valueChanged), this, [this](int seconds) {
        mScreen.setScreenSaverTimeout(seconds);
        showSettings();
    });
    connect(mOrientation, QOverload<int>::of(&QComboBox::activated), this, [this](int index) {
        mScreen.setOrientation(mOrientation->itemData(index).toString());
        showSettings();
    });
    connect(mFullScreen, &QCheckBox::toggled, this, [this](bool fullScreen) {
        mScreen.setFullScreen(fullScreen);
        showSettings();
    });

    connect(&mScreen, &Connector::screenSaverActiveChanged, this, &ScreenSettings::showSettings);
    connect(&mScreen, &Connector::screenOrientationChanged, this, &ScreenSettings::showSettings);
    connect(&mScreen, &Connector::fullScreenChanged, this, &ScreenSettings::showSettings);
    showSettings();
}

// The connector signals three of the five settings. Changes of the others by other programs are seen here at the
// latest when the user comes back.
bool ScreenSettings::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate) {
        showSettings();
    }
    return QWidget::event(event);
}

void ScreenSettings::makeLayout()
{
    auto* const heading = new QLabel(tr("Screen settings"));
    heading->setObjectName(QStringLiteral("heading"));
    mMessage->setObjectName(QStringLiteral("message"));
    mMessage->setWordWrap(true);

    auto* const form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    form->setHorizontalSpacing(24);
    form->setVerticalSpacing(16);
    form->addRow(mScreenSaverEnabled);
    form->addRow(tr("Screen saver &after"), mScreenSaverTimeout);
    form->addRow(tr("Screen saver now"), mScreenSaverState);
    form->addRow(tr("&Orientation"), mOrientation);
    form->addRow(mFullScreen);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 24, 32, 24);
    layout->setSpacing(24);
    layout->addWidget(heading);
    layout->addLayout(form);
    layout->addWidget(mMessage);
    layout->addStretch();
}

void ScreenSettings::showSettings()
{
    if (!mScreen.isInterfaceValid()) {
        mMessage->setText(tr("The compositor service is not there."));
        return;
    }
    mMessage->clear();
    // What is shown here was not entered by the user, and must not be written again.
    const QSignalBlocker enabledBlocker(mScreenSaverEnabled);
    const QSignalBlocker timeoutBlocker(mScreenSaverTimeout);
    const QSignalBlocker fullScreenBlocker(mFullScreen);
    mScreenSaverEnabled->setChecked(mScreen.getProperty(Connector::cScreenSaverEnabledProperty).toBool());
    mScreenSaverTimeout->setValue(mScreen.getProperty(Connector::cScreenSaverTimoutProperty).toInt());
    mScreenSaverState->setText(mScreen.isScreenSaverActive() ? tr("active") : tr("inactive"));
    // None is selected for an orientation that is not in the list.
    mOrientation->setCurrentIndex(mOrientation->findData(mScreen.getOrientation()));
    mFullScreen->setChecked(mScreen.getFullScreen());
}
