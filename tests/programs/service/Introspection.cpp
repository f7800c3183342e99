// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Introspection.h"

#include "GObjectPointer.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QStringList>

#include <stdexcept>
#include <string>

namespace {

const char cStandardInterfaces[] = R"(
  <interface name="org.freedesktop.DBus.Properties">
    <method name="Get">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="property_name" type="s" direction="in"/>
      <arg name="value" type="v" direction="out"/>
    </method>
    <method name="Set">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="property_name" type="s" direction="in"/>
      <arg name="value" type="v" direction="in"/>
    </method>
    <method name="GetAll">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="values" type="a{sv}" direction="out"/>
    </method>
    <signal name="PropertiesChanged">
      <arg name="interface_name" type="s"/>
      <arg name="changed_properties" type="a{sv}"/>
      <arg name="invalidated_properties" type="as"/>
    </signal>
  </interface>
  <interface name="org.freedesktop.DBus.Introspectable">
    <method name="Introspect">
      <arg name="xml_data" type="s" direction="out"/>
    </method>
  </interface>
  <interface name="org.freedesktop.DBus.Peer">
    <method name="Ping"/>
    <method name="GetMachineId">
      <arg name="machine_uuid" type="s" direction="out"/>
    </method>
  </interface>
)";

} // namespace

Introspection::Introspection(const QString& directory)
{
    const QDir files(directory, QStringLiteral("*.xml"));
    for (const QString& name : files.entryList()) {
        QFile file(files.filePath(name));
        if (!file.open(QIODevice::ReadOnly)) {
            throw std::runtime_error("cannot read " + file.fileName().toStdString());
        }
        GError* error = nullptr;
        GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(file.readAll().constData(), &error);
        if (node == nullptr) {
            const std::string reason = error->message;
            g_error_free(error);
            throw std::runtime_error(file.fileName().toStdString() + ": " + reason);
        }
        QString& interfaces = mInterfacesByPath[QString::fromUtf8(node->path)];
        for (GDBusInterfaceInfo** interface = node->interfaces; *interface != nullptr; ++interface) {
            GString* const text = g_string_new(nullptr);
            g_dbus_interface_info_generate_xml(*interface, 2, text);
            interfaces += QString::fromUtf8(text->str);
            g_string_free(text, TRUE);
        }
        g_dbus_node_info_unref(node);
    }
}

QString Introspection::xml(const QString& path) const
{
    const auto interfaces = mInterfacesByPath.constFind(path);
    QString text = QStringLiteral("<node>\n");
    if (interfaces != mInterfacesByPath.constEnd()) {
        text += *interfaces + QString::fromUtf8(cStandardInterfaces);
    }
    const QString parent = path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
    QStringList children;
    for (const QString& known : mInterfacesByPath.keys()) {
        if (known.startsWith(parent) && known != parent) {
            children.append(known.mid(parent.size()).section(QLatin1Char('/'), 0, 0));
        }
    }
    children.removeDuplicates();
    for (const QString& child : qAsConst(children)) {
        text += QStringLiteral("  <node name=\"%1\"/>\n").arg(child);
    }
    return text + QStringLiteral("</node>\n");
}
