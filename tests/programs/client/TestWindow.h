// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QMainWindow>

class QComboBox;

/// An ordinary Qt window, which prints its events. Every line begins with a word for the event and the window's number.
class TestWindow : public QMainWindow
{
    Q_OBJECT

public:
    TestWindow(int number, const QString& title);

    void openMenu();
    void openComboBox();
    /// A text field, 600 wide and 40 high, with its top left corner at 20,120.
    void addTextField();
    void openDialog(const QString& title);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void print(const char* event, const QString& text = QString()) const;

    int mNumber;
    bool mShown = false;
    QMenu* mMenu;
    QComboBox* mComboBox;
};
