#!/bin/sh
# Makes img/*.png from svg/*.svg, at single and double density, and icons/*.png for the desktop. Run by hand after a
# drawing has changed; the pictures are kept in the repository, so that a build needs neither the renderer nor the font.
# Needs rsvg-convert (librsvg2-bin), convert (imagemagick) and the font "Open Sans" (fonts-open-sans).
set -eu
cd "$(dirname "$0")"

case "$(fc-match -f '%{family}' 'Open Sans')" in
*"Open Sans"*) ;;
*) echo "make-pngs.sh: the font \"Open Sans\" is missing" >&2; exit 1 ;;
esac

# make NAME WIDTH HEIGHT: the size in pixels at single density.
make() {
    rsvg-convert -w "$2" -h "$3" -o "img/$1.png" "svg/$1.svg"
    rsvg-convert -w "$(($2 * 2))" -h "$(($3 * 2))" -o "img/$1@2x.png" "svg/$1.svg"
}

# quicken NAME: the same picture with one filter for all its lines, which takes a third of the time to decode. For the
# splash, which every start waits for.
quicken() {
    for picture in "img/$1.png" "img/$1@2x.png"; do
        convert "$picture" -strip -define png:compression-filter=2 -define png:compression-level=9 "PNG24:$picture"
    done
}

# make_icons NAME DRAWING: the sizes that desktops ask for.
make_icons() {
    for size in 16 22 24 32 48 64 128 256 512; do
        rsvg-convert -w "$size" -h "$size" -o "icons/$1-$size.png" "svg/$2.svg"
    done
}

mkdir -p img icons
make LoadingLite 480 280
quicken LoadingLite
make SorvantoLogoLite 135 30
make OstrivaneLogo 100 18
make OstrivaneSymbol2 24 24
make I_2 64 64
make StateReady 84 16
make StateRecording 84 16
make RecordButton 50 50
make RecordStopButton 50 50
make DeviceConnectedSymbol 16 16
make DeviceConnectingSymbol 16 16
make DeviceDisconnectedSymbol 16 16
make DashboardText 99 16
make DeviceCh1 46 52
make DeviceCh2 46 52
make DeviceImg 16 16
make SettingButton 18 18
make btn_addDevice 32 32
make btn_createProject 32 32
make btn_interval 32 32
make btn_removeDevice 32 32
make icon_lan 16 16
make icon_usb 16 16
make sorvanto_lite 720 326

make_icons sorvanto-lite I_2
make_icons application-x-sorvanto-lite-project project_file
