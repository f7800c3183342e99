// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/ScreenShotObject.h"

#include "ScreenShotObjectAdaptor.h"
#include "bus/GatedAdaptor.h"
#include "bus/ScreenShotFile.h"
#include "shell/Scene.h"

ScreenShotObject::ScreenShotObject(Scene& scene, CallGate& gate, QObject* parent)
    : QObject(parent)
    , mScene(scene)
{
    new GatedAdaptor<ScreenShotObjectAdaptor>(this, gate);
}

QString ScreenShotObject::ScreenShot(const QString& directory)
{
    ScreenShotFile file(directory);
    if (!file.isDirectoryOpen() || !file.write(mScene.toImage())) {
        sendErrorReply(file.errorName(), file.errorText());
        return {};
    }
    return file.path();
}
