// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QByteArray>
#include <QString>

class QImage;

/// A new PNG file in a directory. Nothing that exists is ever overwritten, no link is followed out of the directory,
/// and a file that could not be written completely is removed again.
class ScreenshotFile
{
public:
    explicit ScreenshotFile(const QString& directory);
    ~ScreenshotFile();
    ScreenshotFile(const ScreenshotFile&) = delete;
    ScreenshotFile& operator=(const ScreenshotFile&) = delete;

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
