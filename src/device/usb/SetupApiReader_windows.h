#pragma once

#include "device/usb/UsbLoggerRules.h"

#include <vector>

/// Asks Windows for its present USB devices and returns the loggers among them in enumeration order; empty when Windows
/// cannot be asked. Knows SetupAPI and no toolkit: what the answers mean is decided by the rules.
std::vector<FoundUsbLogger> readUsbLoggers();
