# What every target of this project has in common: toolkit, language, warnings, sanitizers.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTOUIC ON)
# Slots are connected by the code; forms would look for some by their names, in each of 128 tiles.
set(CMAKE_AUTOUIC_OPTIONS --no-autoconnection)
set(CMAKE_AUTORCC ON)

if(SORVANTO_STATION)
    if(WIN32)
        sorvanto_require_windows_qt()
    endif()
    find_package(Qt${SORVANTO_QT} 5.15 REQUIRED COMPONENTS Core Gui Widgets Network Sql SerialPort Multimedia)
    if(SORVANTO_TESTS)
        find_package(Qt${SORVANTO_QT} REQUIRED COMPONENTS Test)
    endif()
    if(NOT WIN32)
        find_package(PkgConfig REQUIRED)
        pkg_check_modules(UDEV REQUIRED IMPORTED_TARGET libudev)
    endif()
endif()

add_library(sorvanto_options INTERFACE)
target_include_directories(sorvanto_options INTERFACE "${PROJECT_SOURCE_DIR}/src")
target_compile_definitions(sorvanto_options INTERFACE
    QT_NO_CAST_TO_ASCII
    QT_NO_FOREACH
    QT_NO_URL_CAST_FROM_STRING
    QT_DEPRECATED_WARNINGS
)
target_compile_options(sorvanto_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wnull-dereference
)
include(Hardening)
if(SORVANTO_SANITIZE)
    target_compile_options(sorvanto_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(sorvanto_options INTERFACE -fsanitize=address,undefined)
    # The sanitizers' own instrumentation makes the compiler see null where there is none.
    target_compile_options(sorvanto_options INTERFACE -Wno-null-dereference)
endif()
if(SORVANTO_FUZZ)
    target_compile_options(sorvanto_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# sorvanto_layer(NAME SOURCES... LINK...): one layer of the station as a static library, reachable from the layers above only.
function(sorvanto_layer name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    if(NOT arg_SOURCES)
        add_library(sorvanto_${name} INTERFACE)
        target_link_libraries(sorvanto_${name} INTERFACE sorvanto_options ${arg_LINK})
        return()
    endif()
    add_library(sorvanto_${name} STATIC ${arg_SOURCES})
    target_link_libraries(sorvanto_${name} PUBLIC sorvanto_options ${arg_LINK})
    sorvanto_precompile(sorvanto_${name})
endfunction()
