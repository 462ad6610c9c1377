#pragma once

#include <QIcon>
#include <QListWidget>

// Which picture the device manager shows where.

inline bool shows(const QListWidgetItem *item, const QString &picture)
{
    return item->icon().pixmap(16, 16).toImage() == QIcon(picture).pixmap(16, 16).toImage();
}

inline const QString usbPicture = QStringLiteral(":/img/icon_usb.png");
inline const QString lanPicture = QStringLiteral(":/img/icon_lan.png");
