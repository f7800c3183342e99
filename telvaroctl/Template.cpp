// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Template.h"

#include "Command.h"
#include "Console.h"
#include "Json.h"
#include "Suggestion.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

namespace {

const QString cFormat = QStringLiteral("format");

QString unescaped(const QString& text)
{
    QString result;
    for (int index = 0; index < text.size(); ++index) {
        const QChar next = index + 1 < text.size() ? text.at(index + 1) : QChar();
        const int escape = text.at(index) == QLatin1Char('\\') ? QStringLiteral("nt\\").indexOf(next) : -1;
        if (escape < 0) {
            result += text.at(index);
        } else {
            result += QLatin1Char("\n\t\\"[escape]);
            ++index;
        }
    }
    return result;
}

bool isKnown(const QString& field, const QStringList& names)
{
    return std::any_of(names.begin(), names.end(), [&field](const QString& name) {
        return name.endsWith(QLatin1Char('.')) ? field.startsWith(name) && field.size() > name.size() : field == name;
    });
}

/// Returns the names as a person writes them.
QStringList shown(QStringList names)
{
    names.replaceInStrings(QRegularExpression(QStringLiteral("\\.$")), QStringLiteral(".NAME"));
    return names;
}

QString toText(const QVariant& value)
{
    const QJsonValue json = toJson(value);
    if (json.isArray()) {
        return QString::fromUtf8(QJsonDocument(json.toArray()).toJson(QJsonDocument::Compact));
    }
    return json.isObject() ? QString::fromUtf8(QJsonDocument(json.toObject()).toJson(QJsonDocument::Compact))
                           : value.toString();
}

} // namespace

Result<Template> Template::parse(const QString& text, const QStringList& names)
{
    Template result;
    int position = 0;
    while (true) {
        const int begin = text.indexOf(QLatin1String("{{"), position);
        if (begin < 0) {
            result.mPieces.append({unescaped(text.mid(position)), QString()});
            return result;
        }
        const int end = text.indexOf(QLatin1String("}}"), begin);
        if (end < 0) {
            return Error{QStringLiteral("'%1' has no end '}}'").arg(text.mid(begin))};
        }
        const QString field = text.mid(begin + 2, end - begin - 2).trimmed();
        if (!isKnown(field, names)) {
            return Error{
                QStringLiteral("there is no field '%1' among %2%3")
                    .arg(field, shown(names).join(QStringLiteral(", ")), Suggestion::question(field, shown(names)))};
        }
        result.mPieces.append({unescaped(text.mid(position, begin - position)), field});
        position = end + 2;
    }
}

QString Template::render(const QVariantMap& values) const
{
    QString result;
    for (const Piece& piece : mPieces) {
        const QString name = piece.field.section(QLatin1Char('.'), 0, 0);
        const QString member = piece.field.mid(name.size() + 1);
        const QVariant value = values.value(name);
        result += piece.text + printable(toText(member.isEmpty() ? value : value.toMap().value(member)));
    }
    return result;
}

QList<QCommandLineOption> Template::options(const QStringList& names)
{
    return jsonOption()
        + QList<QCommandLineOption>{
            {cFormat,
             QStringLiteral("Prints a line of this form instead, with fields in double braces: %1.")
                 .arg(shown(names).join(QStringLiteral(", "))),
             QStringLiteral("TEMPLATE")}};
}

Result<std::optional<Template>> Template::fromOption(const QCommandLineParser& parser, const QStringList& names)
{
    if (!parser.isSet(cFormat)) {
        return std::optional<Template>();
    }
    if (isJsonWanted(parser)) {
        return Error{QStringLiteral("--json and --format exclude each other")};
    }
    Result<Template> result = parse(parser.value(cFormat), names);
    if (const Error* const error = std::get_if<Error>(&result)) {
        return Error{QStringLiteral("--format: %1").arg(error->text)};
    }
    return std::optional<Template>(std::get<Template>(result));
}
