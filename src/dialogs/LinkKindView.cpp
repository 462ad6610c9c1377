#include "dialogs/LinkKindView.h"

#include "device/LinkKind.h"
#include "dialogs/NetworkSettingDialog.h"
#include "dialogs/SensingOptionTelnetDialog.h"
#include "dialogs/SensingOptionUsbDialog.h"

namespace {

template <typename Dialog, typename Base>
Base *make(ConfiguredDevice *device, QWidget *parent)
{
    return new Dialog(device, parent);
}

} // namespace

const LinkKindView &linkKindView(int number)
{
    static const LinkKindView none{QStringLiteral(":/img/icon_lan.png"), QStringLiteral("MAC : "), nullptr, nullptr};
    static const LinkKindView usb{QStringLiteral(":/img/icon_usb.png"), QStringLiteral("SN : "),
                                  make<SensingOptionUsbDialog, SensingOptionDialog>, nullptr};
    static const LinkKindView network{QStringLiteral(":/img/icon_lan.png"), QStringLiteral("MAC : "),
                                      make<SensingOptionTelnetDialog, SensingOptionDialog>,
                                      make<NetworkSettingDialog, QDialog>};
    switch (number) {
    case UsbInterface:
        return usb;
    case NetworkInterface:
        return network;
    default:
        return none;
    }
}
