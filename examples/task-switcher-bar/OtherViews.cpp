// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "OtherViews.h"

#include <TelvaroViewModel.h>

#include <QCoreApplication>
#include <QPainter>
#include <QPixmap>

namespace {

constexpr int cIconSize = 44;

/// The application's first letter on a colour of its own.
QPixmap makeIcon(const QString& appId)
{
    QPixmap picture(cIconSize, cIconSize);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromHsv(static_cast<int>(qHash(appId) % 360), 110, 170));
    painter.drawRoundedRect(picture.rect(), 10, 10);
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setPixelSize(cIconSize / 2);
    painter.setFont(font);
    painter.drawText(picture.rect(), Qt::AlignCenter, appId.left(1).toUpper());
    return picture;
}

} // namespace

QVariant OtherViews::data(const QModelIndex& index, int role) const
{
    const auto value = [this, &index](int viewRole) {
        return QSortFilterProxyModel::data(index, viewRole);
    };
    const QString appId = value(TelvaroViewModel::AppIdRole).toString();
    switch (role) {
    case Qt::DecorationRole:
        return makeIcon(appId);
    case Qt::DisplayRole:
        return QStringLiteral("%1\n%2, %3")
            .arg(value(TelvaroViewModel::TitleRole).toString(), appId,
                 tr("process %1").arg(value(TelvaroViewModel::PidRole).toUInt()));
    default:
        return value(role);
    }
}

bool OtherViews::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    const QModelIndex view = sourceModel()->index(sourceRow, 0, sourceParent);
    return view.data(TelvaroViewModel::PidRole).toLongLong() != QCoreApplication::applicationPid();
}
