// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ScreenSettings.h"

#include <TelvaroDeviceDistinction.h>

#include <QApplication>
#include <QTextStream>

#include <cstdlib>

namespace {

const char* const cStyleSheet = R"(
ScreenSettings { background: #f5f6f8; }
ScreenSettings, QLabel, QCheckBox, QComboBox, QSpinBox { color: #1f2a37; font-size: 17px; }
QLabel#heading { font-size: 26px; font-weight: 600; }
QLabel#message { color: #a8423a; }
QComboBox, QSpinBox { min-width: 220px; min-height: 34px; }
QCheckBox { spacing: 12px; }
)";

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    // The appId of this program's view.
    QGuiApplication::setDesktopFileName(QStringLiteral("screen-settings"));
    application.setStyleSheet(QString::fromLatin1(cStyleSheet));

    // On any other device the library silently does nothing.
    if (!TelvaroDeviceDistinction::isCompositorDevice()) {
        QTextStream(stderr) << "screen-settings: this is not a device with the compositor service\n";
        return EXIT_FAILURE;
    }
    ScreenSettings settings;
    settings.show();
    return QApplication::exec();
}
