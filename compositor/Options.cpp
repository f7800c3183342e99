// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Options.h"

#include "CompositorOptions.h"
#include "script/ScriptFile.h"
#include "state/Limits.h"

#include <QCommandLineParser>
#include <QHash>
#include <QRegularExpression>

namespace {

constexpr int cSmallestEdge = 64;

const QString cSocket = QStringLiteral("socket");
const QString cFullScreenWindow = QStringLiteral("fullscreen-window");

Result<QSize> readSize(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("^([0-9]{1,5})x([0-9]{1,5})\\z"));
    const QRegularExpressionMatch match = pattern.match(text);
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    if (!match.hasMatch() || size.boundedTo({Limits::cLargestEdge, Limits::cLargestEdge}) != size
        || size.expandedTo({cSmallestEdge, cSmallestEdge}) != size) {
        return Error{QStringLiteral("\"%1\" is not a size: WIDTHxHEIGHT is expected, each from %2 to %3")
                         .arg(text)
                         .arg(cSmallestEdge)
                         .arg(Limits::cLargestEdge)};
    }
    return size;
}

Result<QByteArray> readSocketName(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("\\A(?!\\.)[^/\\p{Cc}]+\\z"));
    if (!pattern.match(text).hasMatch()) {
        return Error{QStringLiteral("\"%1\" is not a socket name: a plain file name is expected").arg(text)};
    }
    return text.toLocal8Bit();
}

Result<int> readSeconds(const QString& text)
{
    bool isNumber = false;
    const int seconds = text.toInt(&isNumber);
    if (!isNumber || seconds < 0) {
        return Error{QStringLiteral("\"%1\" is not a number of seconds from 0").arg(text)};
    }
    return seconds;
}

Result<Options::Panel> readPanel(const QString& text)
{
    static const QHash<QString, Qt::Edge> edges{{QString(), Qt::BottomEdge},
                                                {QStringLiteral("bottom"), Qt::BottomEdge},
                                                {QStringLiteral("top"), Qt::TopEdge},
                                                {QStringLiteral("left"), Qt::LeftEdge},
                                                {QStringLiteral("right"), Qt::RightEdge}};
    static const QRegularExpression pattern(
        QStringLiteral("^([^:]+)(?::(bottom|top|left|right)(?::([1-9][0-9]{0,3}))?)?\\z"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch()) {
        return Error{QStringLiteral("\"%1\" is not a panel: APPID[:EDGE[:SIZE]] is expected, with an edge of bottom, "
                                    "top, left and right and a size from 1 to 9999")
                         .arg(text)};
    }
    return Options::Panel{match.captured(1), edges.value(match.captured(2)), match.captured(3).toInt()};
}

/// Stores the option's value, converted by `read`, in `target` if the option is given.
template <typename Value, typename Read>
MaybeError assign(const QCommandLineParser& parser, const QString& option, const Read& read, Value* target)
{
    if (!parser.isSet(option)) {
        return {};
    }
    Result<Value> result = read(parser.value(option));
    if (const auto* const error = std::get_if<Error>(&result)) {
        return *error;
    }
    *target = std::get<Value>(std::move(result));
    return {};
}

} // namespace

QList<QCommandLineOption> Options::declarations()
{
    return QList<QCommandLineOption>{
               {cSocket,
                QStringLiteral(
                    "Name of the Wayland socket; by default the first free one of wayland-1, wayland-2, ..."),
                QStringLiteral("NAME")},
               {cFullScreenWindow, QStringLiteral("Fills the desktop's screen, whatever its size.")},
               {CompositorOptions::cRemoteControl,
                QStringLiteral("Lets programs on the bus tap, type and take other steps of scripts.")}}
    + CompositorOptions::declarations();
}

Result<Options> Options::read(const QCommandLineParser& parser)
{
    Options options;
    options.isFullScreenWindow = parser.isSet(cFullScreenWindow);
    options.isWindowTurning = parser.isSet(CompositorOptions::cTurnWindow);
    options.isRemoteControlled = parser.isSet(CompositorOptions::cRemoteControl);
    options.isMouseFinger = parser.isSet(CompositorOptions::cTouch);
    if (options.isFullScreenWindow && options.isWindowTurning) {
        return Error{
            QStringLiteral("--%1 and --%2 exclude each other").arg(cFullScreenWindow, CompositorOptions::cTurnWindow)};
    }
    const auto readScript = [&options](const QString& fileName) {
        return ScriptFile::read(fileName, Keymap(options.keyboardLayout));
    };
    for (const MaybeError& error :
         {assign(parser, CompositorOptions::cSize, readSize, &options.size),
          assign(parser, cSocket, readSocketName, &options.socketName),
          assign(parser, CompositorOptions::cScreenSaverTimeout, readSeconds, &options.screenSaverTimeoutSeconds),
          assign(parser, CompositorOptions::cPanel, readPanel, &options.panel),
          assign(parser, CompositorOptions::cKeyboardLayout, Keymap::readLayout, &options.keyboardLayout),
          assign(parser, CompositorOptions::cScript, readScript, &options.script)}) {
        if (error) {
            return *error;
        }
    }
    return options;
}
