// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ValueText.h"

QString ValueText::string(const QString& value)
{
    QString quoted;
    for (const QChar character : value) {
        if (character.unicode() < 0x20) {
            quoted += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
            continue;
        }
        if (character == QLatin1Char('\'') || character == QLatin1Char('\\')) {
            quoted += QLatin1Char('\\');
        }
        quoted += character;
    }
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

QString ValueText::strings(const QStringList& values)
{
    QStringList quoted;
    for (const QString& value : values) {
        quoted.append(string(value));
    }
    return QStringLiteral("@as [") + quoted.join(QStringLiteral(", ")) + QLatin1Char(']');
}

QString ValueText::variant(const QString& value)
{
    return QLatin1Char('<') + value + QLatin1Char('>');
}

QString ValueText::view(const TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry& entry)
{
    QStringList attributes;
    for (auto attribute = entry.attributes.cbegin(); attribute != entry.attributes.cend(); ++attribute) {
        attributes.append(string(attribute.key()) + QStringLiteral(": ")
                          + variant(string(attribute.value().toString())));
    }
    const QStringList members{string(entry.uuid),
                              string(entry.appId),
                              string(entry.info1),
                              string(entry.info2),
                              string(entry.info3),
                              string(entry.info4),
                              QStringLiteral("uint32 %1").arg(entry.pid),
                              QStringLiteral("uint32 %1").arg(entry.sortIndex),
                              QStringLiteral("@a{sv} {") + attributes.join(QStringLiteral(", ")) + QLatin1Char('}')};
    return QLatin1Char('(') + members.join(QStringLiteral(", ")) + QLatin1Char(')');
}

QString ValueText::views(const QList<TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry>& entries)
{
    QStringList structures;
    for (const TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry& entry : entries) {
        structures.append(view(entry));
    }
    return QStringLiteral("@a(ssssssuua{sv}) [") + structures.join(QStringLiteral(", ")) + QLatin1Char(']');
}
