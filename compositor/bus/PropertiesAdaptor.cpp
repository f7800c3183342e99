// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/PropertiesAdaptor.h"

#include "bus/BusInterfaces.h"

#include <QDBusContext>
#include <QDBusMetaType>

#include <algorithm>

namespace {

QString signatureOf(int type)
{
    return QString::fromLatin1(QDBusMetaType::typeToSignature(type));
}

} // namespace

PropertiesAdaptor::PropertiesAdaptor(QObject* object)
    : QDBusAbstractAdaptor(object)
{
}

void PropertiesAdaptor::announce(const char* name)
{
    const QList<QDBusAbstractAdaptor*> adaptors = otherAdaptors();
    for (const QDBusAbstractAdaptor* adaptor : adaptors) {
        const QMetaObject* const description = adaptor->metaObject();
        if (description->indexOfProperty(name) >= description->propertyOffset()) {
            Q_EMIT PropertiesChanged(BusInterfaces::nameOf(description),
                                     {{QString::fromLatin1(name), parent()->property(name)}}, {});
        }
    }
}

QDBusVariant PropertiesAdaptor::Get(const QString& interfaceName, const QString& name)
{
    const QMetaProperty property = findProperty(interfaceName, name);
    return property.isValid() ? QDBusVariant(parent()->property(property.name())) : QDBusVariant();
}

QVariantMap PropertiesAdaptor::GetAll(const QString& interfaceName)
{
    QVariantMap values;
    const QObject* const adaptor = adaptorOf(interfaceName);
    if (adaptor == nullptr) {
        refuse(QDBusError::UnknownInterface,
               QStringLiteral("there is no interface \"%1\" with properties here").arg(interfaceName));
        return values;
    }
    const QMetaObject* const description = adaptor->metaObject();
    for (int i = description->propertyOffset(); i < description->propertyCount(); ++i) {
        const char* const name = description->property(i).name();
        values.insert(QString::fromLatin1(name), parent()->property(name));
    }
    return values;
}

void PropertiesAdaptor::Set(const QString& interfaceName, const QString& name, const QDBusVariant& value)
{
    const QMetaProperty property = findProperty(interfaceName, name);
    if (!property.isValid()) {
        return;
    }
    if (!property.isWritable()) {
        refuse(QDBusError::PropertyReadOnly, QStringLiteral("the property \"%1\" can only be read").arg(name));
        return;
    }
    const QVariant content = value.variant();
    if (content.userType() != property.userType()) {
        refuse(QDBusError::InvalidArgs,
               QStringLiteral("the property \"%1\" is of type \"%2\", not \"%3\"")
                   .arg(name, signatureOf(property.userType()),
                        content.userType() == qMetaTypeId<QDBusArgument>()
                            ? content.value<QDBusArgument>().currentSignature()
                            : signatureOf(content.userType())));
        return;
    }
    parent()->setProperty(property.name(), content);
}

QList<QDBusAbstractAdaptor*> PropertiesAdaptor::otherAdaptors() const
{
    auto adaptors = parent()->findChildren<QDBusAbstractAdaptor*>(QString(), Qt::FindDirectChildrenOnly);
    adaptors.removeOne(const_cast<PropertiesAdaptor*>(this));
    return adaptors;
}

const QDBusAbstractAdaptor* PropertiesAdaptor::adaptorOf(const QString& interfaceName) const
{
    const QList<QDBusAbstractAdaptor*> adaptors = otherAdaptors();
    const auto found = std::find_if(adaptors.cbegin(), adaptors.cend(), [&](const QDBusAbstractAdaptor* adaptor) {
        return BusInterfaces::nameOf(adaptor->metaObject()) == interfaceName;
    });
    return found == adaptors.cend() ? nullptr : *found;
}

QMetaProperty PropertiesAdaptor::findProperty(const QString& interfaceName, const QString& name) const
{
    const QObject* const adaptor = adaptorOf(interfaceName);
    if (adaptor == nullptr) {
        refuse(QDBusError::UnknownInterface,
               QStringLiteral("there is no interface \"%1\" with properties here").arg(interfaceName));
        return {};
    }
    const QMetaObject* const description = adaptor->metaObject();
    const int index = description->indexOfProperty(name.toLatin1().constData());
    if (index < description->propertyOffset()) {
        refuse(QDBusError::UnknownProperty,
               QStringLiteral("the interface \"%1\" has no property \"%2\"").arg(interfaceName, name));
        return {};
    }
    return description->property(index);
}

void PropertiesAdaptor::refuse(QDBusError::ErrorType type, const QString& text) const
{
    const auto* const context = static_cast<const QDBusContext*>(parent()->qt_metacast("QDBusContext"));
    context->sendErrorReply(type, text);
}
