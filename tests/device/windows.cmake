# What is for Windows is compiled with MinGW and run by Wine. Wine's program is not in the path, where only a wrapper for
# two word sizes would be.
find_program(MINGW_CXX x86_64-w64-mingw32-g++-posix)
find_program(WINE wine64 HINTS /usr/lib/wine)
find_program(WINESERVER wineserver64 HINTS /usr/lib/wine)
if(NOT MINGW_CXX OR NOT WINE OR NOT WINESERVER)
    message(WARNING
        "The finding of USB loggers on Windows will not be tested: install the Debian packages "
        "g++-mingw-w64-x86-64-posix and wine64 ('scripts/install-packages test') and configure again.")
    return()
endif()

include(ExternalProject)
ExternalProject_Add(windows_programs
    SOURCE_DIR "${PROJECT_SOURCE_DIR}"
    PREFIX "${PROJECT_BINARY_DIR}/windows"
    BINARY_DIR "${PROJECT_BINARY_DIR}/windows/build"
    CMAKE_ARGS
        "-DCMAKE_TOOLCHAIN_FILE=${PROJECT_SOURCE_DIR}/cmake/mingw-w64.cmake"
        -DCMAKE_BUILD_TYPE=Release
        -DCMAKE_COMPILE_WARNING_AS_ERROR=${CMAKE_COMPILE_WARNING_AS_ERROR}
        -DSORVANTO_STATION=OFF
    BUILD_ALWAYS ON
    INSTALL_COMMAND ""
)

sorvanto_test(tst_UsbLoggersOfWindows SOURCES tst_UsbLoggersOfWindows.cpp UsbLoggerCases.cpp LINK sorvanto_device)
add_dependencies(tst_UsbLoggersOfWindows windows_programs)
target_compile_definitions(tst_UsbLoggersOfWindows PRIVATE
    WINE="${WINE}" WINESERVER="${WINESERVER}"
    USB_LOGGERS_EXE="${PROJECT_BINARY_DIR}/windows/build/bin/usb-loggers.exe"
    PROGRAM_VERSION="${PROJECT_VERSION}")

add_test(NAME windows_package
    COMMAND ${CMAKE_CPACK_COMMAND} -G ZIP -B "${PROJECT_BINARY_DIR}/windows/package"
        --config "${PROJECT_BINARY_DIR}/windows/build/CPackConfig.cmake")

# There is no Qt for MinGW here: the station can only be asked for, and must say what it lacks.
add_test(NAME windows_station_without_qt
    COMMAND ${CMAKE_COMMAND} -S "${PROJECT_SOURCE_DIR}" -B "${PROJECT_BINARY_DIR}/windows/station" -G Ninja
        "-DCMAKE_TOOLCHAIN_FILE=${PROJECT_SOURCE_DIR}/cmake/mingw-w64.cmake")
set_tests_properties(windows_station_without_qt PROPERTIES
    PASS_REGULAR_EXPRESSION "Qt 5 for Windows was not found.*SORVANTO_STATION=OFF")

# The sources that only a station for Windows has. There is no Qt for MinGW here to link them with, but the headers of the
# one at hand are the same.
set(qt_includes "$<TARGET_PROPERTY:Qt::Core,INTERFACE_INCLUDE_DIRECTORIES>")
add_test(NAME windows_sources
    COMMAND ${MINGW_CXX} -std=c++17 -Wall -Wextra -Werror -fsyntax-only "-I${PROJECT_SOURCE_DIR}/src"
        -isystem "$<JOIN:${qt_includes},;-isystem;>"
        "${PROJECT_SOURCE_DIR}/src/device/UsbLoggers_windows.cpp"
        "${PROJECT_SOURCE_DIR}/src/project/SettingsStore_windows.cpp"
        "${PROJECT_SOURCE_DIR}/src/app/TerminationSignals_windows.cpp"
    COMMAND_EXPAND_LISTS)
