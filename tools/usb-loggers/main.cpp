#include "device/usb/SetupApiReader_windows.h"

#include <windows.h>

#include <cstdio>
#include <string>

namespace {

std::string utf8(const std::u16string &text)
{
    const auto *wide = reinterpret_cast<const wchar_t *>(text.data());
    const int length = static_cast<int>(text.size());
    std::string bytes(text.size() * 3, '\0'); // no UTF-16 unit needs more
    const int used =
        WideCharToMultiByte(CP_UTF8, 0, wide, length, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(used));
    return bytes;
}

} // namespace

/// Prints a line for each attached USB logger in enumeration order: serial number, tab, port name.
int main()
{
    SetConsoleOutputCP(CP_UTF8);
    for (const FoundUsbLogger &logger : readUsbLoggers())
        std::printf("%s\t%s\n", utf8(logger.serialNumber).c_str(), utf8(logger.portName).c_str());
    return std::fflush(stdout) == 0 ? 0 : 1;
}
