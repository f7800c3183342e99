// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TestWindow.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QVBoxLayout>

#include <cstdio>

TestWindow::TestWindow(int number, const QString& title)
    : mNumber(number)
    , mMenu(menuBar()->addMenu(QStringLiteral("&File")))
    , mComboBox(new QComboBox(this))
{
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);

    for (const char* const name : {"New", "Open", "Save"}) {
        QAction* const action = mMenu->addAction(QLatin1String(name));
        connect(action, &QAction::triggered, this, [this, action] {
            print("action", action->text());
        });
    }
    mMenu->addMenu(QStringLiteral("Recent"))->addAction(QStringLiteral("First"));
    connect(mMenu, &QMenu::aboutToShow, this, [this] {
        print("menu");
    });
    connect(mMenu, &QMenu::aboutToHide, this, [this] {
        print("menuclosed");
    });

    mComboBox->addItems({QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("Three")});
    mComboBox->setGeometry(20, 60, 160, 32);
    connect(mComboBox, QOverload<int>::of(&QComboBox::activated), this, [this](int index) {
        print("chosen", mComboBox->itemText(index));
    });
    // The window handles the keys itself.
    mComboBox->setFocusPolicy(Qt::NoFocus);
}

void TestWindow::openMenu()
{
    mMenu->popup(mapToGlobal(QPoint(0, menuBar()->height())));
}

void TestWindow::openComboBox()
{
    mComboBox->showPopup();
}

void TestWindow::addTextField()
{
    auto* const field = new QLineEdit(this);
    field->setGeometry(20, 120, 600, 40);
    field->show();
    connect(field, &QLineEdit::textChanged, this, [this](const QString& text) {
        print("text", text);
    });
    print("field");
}

void TestWindow::openDialog(const QString& title)
{
    auto* const dialog = new QDialog(this);
    dialog->setWindowTitle(title);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    auto* const layout = new QVBoxLayout(dialog);
    layout->addWidget(new QLabel(QStringLiteral("A question of the application")));
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    connect(dialog, &QDialog::finished, this, [this](int result) {
        print("dialog", QString::number(result));
    });
    dialog->open();
}

void TestWindow::print(const char* event, const QString& text) const
{
    std::printf("%s %d%s%s\n", event, mNumber, text.isEmpty() ? "" : " ", qUtf8Printable(text));
    std::fflush(stdout);
}

void TestWindow::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor::fromHsv(mNumber * 67 % 360, 60, 235));
    painter.setPen(Qt::black);
    painter.drawText(rect(), Qt::AlignCenter, windowTitle());
    QMainWindow::paintEvent(event);
    if (!mShown) {
        mShown = true;
        print("shown");
    }
}

void TestWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    print("size", QStringLiteral("%1x%2").arg(width()).arg(height()));
}

void TestWindow::closeEvent(QCloseEvent* event)
{
    QMainWindow::closeEvent(event);
    print("closed");
}

void TestWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange) {
        print(isActiveWindow() ? "activated" : "deactivated");
    }
}

void TestWindow::keyPressEvent(QKeyEvent* event)
{
    print("keypress", event->text());
}

void TestWindow::keyReleaseEvent(QKeyEvent* event)
{
    print("keyrelease", event->text());
}

void TestWindow::mousePressEvent(QMouseEvent* event)
{
    print("press", QStringLiteral("%1,%2").arg(event->x()).arg(event->y()));
}

void TestWindow::mouseReleaseEvent(QMouseEvent* event)
{
    print("release", QStringLiteral("%1,%2").arg(event->x()).arg(event->y()));
}

void TestWindow::wheelEvent(QWheelEvent* event)
{
    print("wheel", QString::number(event->angleDelta().y()));
}
