// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusContext>
#include <QObject>

class CallGate;
class Scene;

/// Screenshots on the bus. The slot is named as the method of the interface: the generated adaptor calls it by this
/// name.
class ScreenShotObject : public QObject, protected QDBusContext
{
    Q_OBJECT

public:
    ScreenShotObject(Scene& scene, CallGate& gate, QObject* parent = nullptr);

public Q_SLOTS:
    /// Returns the path of the new file, or sends an error reply that says what is wrong with the directory.
    QString ScreenShot(const QString& directory);

private:
    Scene& mScene;
};
