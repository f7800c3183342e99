// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroScreen.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QSpinBox>
#include <QWidget>

/// Shows and changes the settings of the screen.
class ScreenSettings : public QWidget
{
    Q_OBJECT

public:
    explicit ScreenSettings(QWidget* parent = nullptr);

private:
    void makeLayout();
    void showSettings();

    TelvaroScreen mScreen;
    QWidget* const mForm;
    QCheckBox* const mScreenSaverEnabled;
    QSpinBox* const mScreenSaverTimeout;
    QLabel* const mScreenSaverState;
    QComboBox* const mOrientation;
    QCheckBox* const mFullScreen;
    QLabel* const mMessage;
};
