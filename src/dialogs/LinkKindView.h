#pragma once

#include <QString>

class ConfiguredDevice;
class QDialog;
class QWidget;
class SensingOptionDialog;

/// What the way in which a device is reached means for windows; see LinkKind for the rest.
struct LinkKindView
{
    QString picture; ///< a resource
    QString keyCaption;
    /// The dialogs belong to @p parent. Null where there is nothing to edit or to show.
    SensingOptionDialog *(*makeOptionDialog)(ConfiguredDevice *device, QWidget *parent) = nullptr;
    QDialog *(*makeAddressDialog)(ConfiguredDevice *device, QWidget *parent) = nullptr;
};

/// That of NoInterface for every number that is none.
const LinkKindView &linkKindView(int number);
