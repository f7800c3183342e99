// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

class Digest;

/// What an application does with the compositor service, as it is done with one D-Bus binding. Every client sends the
/// same messages for the same operation, and reads the same things out of the answers; what it reads is kept until the
/// next operation, so that it can be compared outside the measured time.
class Client
{
public:
    virtual ~Client() = default;

    virtual void readViews() = 0;
    virtual void readCurrentView() = 0;
    virtual void setCurrentView() = 0;
    virtual void stepToNextView() = 0;
    virtual void readOrientation() = 0;
    virtual void writeFullScreen() = 0;
    virtual void showOverlay() = 0;
    virtual void notify() = 0;
    virtual void captureScreenShot() = 0;

    /// Has the service notify a change and returns once the application has been told of the new current view.
    virtual void awaitChange() = 0;

    /// Fetches the answer that decodeViews() decodes, again and again, without the bus.
    virtual void fetchViews() = 0;
    virtual void decodeViews() = 0;

    /// Makes and drops one more handle on the task switcher; only where a binding has handles that do what the
    /// library's connector does.
    virtual void construct();

    /// All the names and the device test; the library only.
    virtual void askNames();

    /// What the last operation has read.
    virtual void addResult(Digest& digest) const = 0;
};
