// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ScreenSettings.h"

#include <TelvaroScreenDBusConnector.h>

#include <QFormLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>

ScreenSettings::ScreenSettings(QWidget* parent)
    : QWidget(parent)
    , mForm(new QWidget)
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
    mOrientation->addItem(tr("Landscape"), TelvaroScreenDBusConnector::getOrientationLandscape());
    mOrientation->addItem(tr("Portrait"), TelvaroScreenDBusConnector::getOrientationPortrait());
    mOrientation->addItem(tr("Portrait, upside down"), TelvaroScreenDBusConnector::getOrientationInversePortrait());
    makeLayout();

    // Each write returns at once. The settings are shown anew when the service has taken it, or has refused.
    connect(mScreenSaverEnabled, &QCheckBox::toggled, &mScreen, &TelvaroScreen::setScreenSaverEnabled);
    connect(mScreenSaverTimeout, QOverload<int>::of(&QSpinBox::valueChanged), &mScreen,
            &TelvaroScreen::setScreenSaverTimeout);
    connect(mOrientation, QOverload<int>::of(&QComboBox::activated), this, [this](int index) {
        mScreen.setOrientation(mOrientation->itemData(index).toString());
    });
    connect(mFullScreen, &QCheckBox::toggled, &mScreen, &TelvaroScreen::setFullScreen);
    connect(&mScreen, &TelvaroScreen::requestFailed, this, [this](const QDBusError& error) {
        showSettings();
        mMessage->setText(tr("The service refused: %1").arg(error.message()));
    });

    connect(&mScreen, &TelvaroScreen::screenSaverActiveChanged, this, &ScreenSettings::showSettings);
    connect(&mScreen, &TelvaroScreen::screenSaverEnabledChanged, this, &ScreenSettings::showSettings);
    connect(&mScreen, &TelvaroScreen::screenSaverTimeoutChanged, this, &ScreenSettings::showSettings);
    connect(&mScreen, &TelvaroScreen::orientationChanged, this, &ScreenSettings::showSettings);
    connect(&mScreen, &TelvaroScreen::fullScreenChanged, this, &ScreenSettings::showSettings);
    connect(&mScreen, &TelvaroScreen::statusChanged, this, &ScreenSettings::showSettings);
    showSettings();
}

void ScreenSettings::makeLayout()
{
    auto* const heading = new QLabel(tr("Screen settings"));
    heading->setObjectName(QStringLiteral("heading"));
    mMessage->setObjectName(QStringLiteral("message"));
    mMessage->setWordWrap(true);

    auto* const form = new QFormLayout(mForm);
    form->setContentsMargins(0, 0, 0, 0);
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
    layout->addWidget(mForm);
    layout->addWidget(mMessage);
    layout->addStretch();
}

void ScreenSettings::showSettings()
{
    const bool isReady = mScreen.getStatus() == TelvaroScreen::Ready;
    mForm->setEnabled(isReady);
    mMessage->setText(isReady ? QString() : tr("The compositor service is not there."));
    // What is shown here was not entered by the user, and must not be written again.
    const QSignalBlocker enabledBlocker(mScreenSaverEnabled);
    const QSignalBlocker timeoutBlocker(mScreenSaverTimeout);
    const QSignalBlocker fullScreenBlocker(mFullScreen);
    mScreenSaverEnabled->setChecked(mScreen.isScreenSaverEnabled());
    mScreenSaverTimeout->setValue(mScreen.getScreenSaverTimeout());
    mScreenSaverState->setText(mScreen.isScreenSaverActive() ? tr("active") : tr("inactive"));
    // None is selected for an orientation that is not in the list.
    mOrientation->setCurrentIndex(mOrientation->findData(mScreen.getOrientation()));
    mFullScreen->setChecked(mScreen.isFullScreen());
}
