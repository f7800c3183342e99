// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QCommandLineOption>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

class QCommandLineParser;

/// A text with fields in double braces, "{{title}} of {{appId}}", and the escape sequences \n, \t and \\.
class Template
{
public:
    /// Returns an error for a field that is neither among the names nor below one of those that end with a dot.
    static Result<Template> parse(const QString& text, const QStringList& names);

    /// Returns the text with the values of the fields. A member of a map is named by a dot; a missing one is empty.
    QString render(const QVariantMap& values) const;

    /// `--format`, and `--json`, which excludes it.
    static QList<QCommandLineOption> options(const QStringList& names);
    /// Returns the parsed option, nothing if it is not there, or an error.
    static Result<std::optional<Template>> fromOption(const QCommandLineParser& parser, const QStringList& names);

private:
    /// Fixed texts and the fields that follow them; the last field is empty.
    struct Piece
    {
        QString text;
        QString field;
    };

    QList<Piece> mPieces;
};
