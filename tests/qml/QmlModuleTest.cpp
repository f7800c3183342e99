// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PrivateBus.h"
#include "ServiceScript.h"
#include "TestMain.h"

#include <QGuiApplication>
#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

/// Gives every engine that Qt Quick Test makes the service in the hands of its tests.
class QmlModuleTest : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine* engine)
    {
        engine->addImportPath(QStringLiteral(TELVARO_QML_IMPORT_PATH));
        engine->rootContext()->setContextProperty(QStringLiteral("service"), &mService);
    }

private:
    ServiceScript mService;
};

int main(int argc, char** argv)
{
    prepareTestEnvironment();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    const QGuiApplication application(argc, argv);
    const PrivateBus bus;
    QmlModuleTest test;
    return quick_test_main_with_setup(argc, argv, "QmlModuleTest", TELVARO_QML_TEST_DIRECTORY, &test);
}

#include "QmlModuleTest.moc"
