// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusContext>
#include <QObject>

class CallGate;
class Scene;

/// Screenshots on the bus. The slot bears the name of the interface's method.
class ScreenShotObject : public QObject, protected QDBusContext
{
    Q_OBJECT

public:
    ScreenShotObject(Scene& scene, CallGate& gate, QObject* parent = nullptr);

public Q_SLOTS:
    /// Answers the path of the new file, or an error that says what is wrong with the directory.
    QString ScreenShot(const QString& directory);

private:
    Scene& mScene;
};
