// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>

/// Blanks the screen after a time without input, until there is input again.
class ScreenSaver : public QObject
{
    Q_OBJECT

public:
    explicit ScreenSaver(int timeoutSeconds, QObject* parent = nullptr);

    bool isActive() const
    {
        return mActive;
    }

    bool isEnabled() const
    {
        return mEnabled;
    }
    void setEnabled(bool enabled);

    /// 0 is never.
    int timeoutSeconds() const
    {
        return mTimeoutSeconds;
    }
    void setTimeoutSeconds(int seconds);

    /// Whether the timeout blanks the screen, or only activate().
    void setAutomatic(bool isAutomatic)
    {
        mIsAutomatic = isAutomatic;
    }

    /// Blanks the screen at once. Returns false when the screen saver is disabled.
    bool activate();
    /// To be called for every input.
    void noteInput();
    /// Sets a function that is asked when the timeout has passed; while it returns true, the timeout starts again.
    void setInhibitor(const std::function<bool()>& isInhibited)
    {
        mIsInhibited = isInhibited;
    }

Q_SIGNALS:
    void activeChanged();
    void enabledChanged();
    void timeoutChanged();

private:
    bool canStart() const
    {
        return mEnabled && mTimeoutSeconds > 0;
    }
    void setActive(bool active);
    void restart();
    void startOrWait();

    int mTimeoutSeconds;
    bool mEnabled = true;
    bool mActive = false;
    bool mIsAutomatic = true;
    std::function<bool()> mIsInhibited;
    QElapsedTimer mIdle;
    QTimer mTimer;
};
