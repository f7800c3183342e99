// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TaskSwitcherBar.h"

#include <TelvaroDeviceDistinction.h>

#include <QApplication>
#include <QTextStream>

#include <cstdlib>

namespace {

const char* const cStyleSheet = R"(
QWidget { background: #f5f6f8; color: #1f2a37; font-size: 16px; }
QLabel#heading { font-size: 26px; font-weight: 600; }
QLabel#message { color: #6b7785; }
QListView { border: none; outline: none; }
QListView::item { background: white; border: 1px solid #e3e7ec; border-radius: 10px; padding: 10px; }
QListView::item:hover { border-color: #9db4cc; }
QListView::item:selected { background: #e4eef8; border-color: #3d7ab5; color: #1f2a37; }
)";

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    // The application id of this program's own view.
    QGuiApplication::setDesktopFileName(QStringLiteral("task-switcher-bar"));
    application.setStyleSheet(QString::fromLatin1(cStyleSheet));

    // On any other device the library is silent, and the list would stay empty without a reason.
    if (!TelvaroDeviceDistinction::isCompositorDevice()) {
        QTextStream(stderr) << "task-switcher-bar: this is not a device with the compositor service\n";
        return EXIT_FAILURE;
    }
    TaskSwitcherBar bar;
    bar.show();
    return QApplication::exec();
}
