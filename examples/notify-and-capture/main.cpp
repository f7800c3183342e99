// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "NotifyAndCapture.h"

#include <TelvaroDeviceDistinction.h>

#include <QApplication>
#include <QStandardPaths>
#include <QTextStream>

#include <cstdlib>

namespace {

const char* const cStyleSheet = R"(
NotifyAndCapture { background: #f5f6f8; }
QLabel, QLineEdit, QPushButton { color: #1f2a37; font-size: 17px; }
QLabel#heading { font-size: 26px; font-weight: 600; }
QLabel#message { color: #6b7785; }
QLabel#picture { background: #e9edf1; border-radius: 10px; padding: 10px; }
QLineEdit { background: white; border: 1px solid #cfd6de; border-radius: 6px; padding: 7px; }
QLineEdit:focus { border-color: #3d7ab5; }
QPushButton { background: #3d7ab5; color: white; border: none; border-radius: 6px; padding: 9px 18px; }
QPushButton:focus { background: #2f6599; }
QPushButton:disabled { background: #b3c3d3; }
)";

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    // The appId of this program's view.
    QGuiApplication::setDesktopFileName(QStringLiteral("notify-and-capture"));
    application.setStyleSheet(QString::fromLatin1(cStyleSheet));

    // On any other device the library silently does nothing, and so would every button.
    if (!TelvaroDeviceDistinction::isCompositorDevice()) {
        QTextStream(stderr) << "notify-and-capture: this is not a device with the compositor service\n";
        return EXIT_FAILURE;
    }
    const QStringList arguments = QApplication::arguments();
    NotifyAndCapture window(arguments.value(1, QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)));
    window.show();
    return QApplication::exec();
}
