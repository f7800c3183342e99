// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QByteArray>
#include <QString>

class QImage;

/// A new PNG file in a directory. Never overwrites a file, follows no symbolic link out of the directory, and removes a
/// file that could not be written completely.
class ScreenShotFile
{
public:
    explicit ScreenShotFile(const QString& directory);
    ~ScreenShotFile();
    ScreenShotFile(const ScreenShotFile&) = delete;
    ScreenShotFile& operator=(const ScreenShotFile&) = delete;

    bool isDirectoryOpen() const
    {
        return mDirectoryDescriptor >= 0;
    }
    bool write(const QImage& image);

    /// Absolute.
    QString path() const
    {
        return mPath;
    }
    /// A D-Bus error name.
    QString errorName() const
    {
        return mErrorName;
    }
    QString errorText() const
    {
        return mErrorText;
    }

private:
    int createFile(QByteArray* name);
    void fail(const char* errorName, const QString& text);
    void failWith(int number, const QString& text);

    QString mDirectory;
    int mDirectoryDescriptor = -1;
    QString mPath;
    QString mErrorName;
    QString mErrorText;
};
