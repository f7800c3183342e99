// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "NoteWindow.h"

#include <QApplication>
#include <QStringList>
#include <QTextStream>

#include <memory>
#include <vector>

namespace {

const char* const cStyleSheet = R"(
NoteWindow { background: #fbf6e6; }
QLabel#heading { color: #3a3324; font-size: 30px; font-weight: 600; }
QPlainTextEdit { background: transparent; color: #3a3324; font-size: 19px; }
QPushButton {
    background: #e9dfc2; color: #3a3324; border: none; border-radius: 8px; padding: 10px 18px; font-size: 17px;
}
QPushButton:pressed { background: #d9cca6; }
)";

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    // The application id of all windows.
    QGuiApplication::setDesktopFileName(QStringLiteral("org.example.notes"));
    application.setStyleSheet(QString::fromLatin1(cStyleSheet));

    QStringList titles = QApplication::arguments().mid(1);
    if (titles.isEmpty()) {
        titles.append(QObject::tr("Note"));
    }
    TelvaroTaskSwitcher taskSwitcher;
    QObject::connect(&taskSwitcher, &TelvaroTaskSwitcher::requestFailed, [](const QDBusError& error) {
        QTextStream(stderr) << "notes: no next note: " << error.message() << '\n';
    });
    std::vector<std::unique_ptr<NoteWindow>> notes;
    for (const QString& title : qAsConst(titles)) {
        notes.push_back(std::make_unique<NoteWindow>(title, taskSwitcher));
        notes.back()->show();
    }
    return QApplication::exec();
}
