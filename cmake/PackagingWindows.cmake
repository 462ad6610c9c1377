# What goes into a package for Windows, and its two forms: an installer (NSIS) and a folder to unpack (ZIP).
# All files lie in one folder, where a program for Windows looks for its libraries.

install(TARGETS usb-loggers RUNTIME DESTINATION .)
install(FILES "${PROJECT_SOURCE_DIR}/README.md" DESTINATION .)

if(SORVANTO_STATION)
    install(TARGETS sorvanto-lite RUNTIME DESTINATION .)
    # Qt's own program collects the libraries and plugins that the station needs, the SQLite driver among them.
    find_program(WINDEPLOYQT windeployqt REQUIRED HINTS "${Qt${SORVANTO_QT}_DIR}/../../../bin")
    install(CODE "
        execute_process(
            COMMAND \"${WINDEPLOYQT}\" --release --compiler-runtime --no-translations \"\${CMAKE_INSTALL_PREFIX}/sorvanto-lite.exe\"
            COMMAND_ERROR_IS_FATAL ANY)
    ")
    set(CPACK_PACKAGE_EXECUTABLES sorvanto-lite "Sorvanto Lite")
    set(CPACK_NSIS_INSTALLED_ICON_NAME sorvanto-lite.exe)
    # A project file opens with a double click.
    set(CPACK_NSIS_EXTRA_INSTALL_COMMANDS [[
        WriteRegStr SHCTX "Software\Classes\.tpc" "" "SorvantoLite.Project"
        WriteRegStr SHCTX "Software\Classes\SorvantoLite.Project" "" "Sorvanto Lite project"
        WriteRegStr SHCTX "Software\Classes\SorvantoLite.Project\DefaultIcon" "" "$INSTDIR\sorvanto-lite.exe,0"
        WriteRegStr SHCTX "Software\Classes\SorvantoLite.Project\shell\open\command" "" '"$INSTDIR\sorvanto-lite.exe" "%1"'
    ]])
    set(CPACK_NSIS_EXTRA_UNINSTALL_COMMANDS [[
        DeleteRegKey SHCTX "Software\Classes\SorvantoLite.Project"
        DeleteRegValue SHCTX "Software\Classes\.tpc" ""
    ]])
endif()

set(CPACK_GENERATOR NSIS ZIP)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME "Sorvanto Lite")
set(CPACK_PACKAGE_VENDOR "Sorvanto Lite")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_FILE_NAME "sorvanto-lite-${PROJECT_VERSION}-win64")
set(CPACK_PACKAGE_INSTALL_DIRECTORY "Sorvanto Lite")
set(CPACK_NSIS_DISPLAY_NAME "Sorvanto Lite")
set(CPACK_NSIS_MUI_ICON "${PROJECT_SOURCE_DIR}/resources/windows/sorvanto-lite.ico")
set(CPACK_NSIS_MUI_UNIICON "${CPACK_NSIS_MUI_ICON}")
set(CPACK_NSIS_ENABLE_UNINSTALL_BEFORE_INSTALL ON)
set(CPACK_NSIS_MANIFEST_DPI_AWARE ON)
include(CPack)
