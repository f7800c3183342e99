// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroScreenDBusConnector.h>

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

protected:
    bool event(QEvent* event) override;

private:
    void makeLayout();
    void showSettings();

    TelvaroScreenDBusConnector mScreen;
    QCheckBox* const mScreenSaverEnabled;
    QSpinBox* const mScreenSaverTimeout;
    QLabel* const mScreenSaverState;
    QComboBox* const mOrientation;
    QCheckBox* const mFullScreen;
    QLabel* const mMessage;
};
