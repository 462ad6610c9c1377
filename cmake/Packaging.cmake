# What an installation on Linux consists of, and the Debian package that carries it.

include(GNUInstallDirs)
find_program(GZIP gzip REQUIRED)

set(packaging "${PROJECT_SOURCE_DIR}/packaging/linux")
set(icons "${PROJECT_SOURCE_DIR}/resources")
set(doc_folder "${CMAKE_INSTALL_DATAROOTDIR}/doc/sorvanto-lite")
set(icon_folder "${CMAKE_INSTALL_DATAROOTDIR}/icons/hicolor")

set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

install(TARGETS sorvanto-lite RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(FILES "${packaging}/sorvanto-lite.desktop" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/applications")
install(FILES "${packaging}/sorvanto-lite.mime.xml" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/mime/packages"
    RENAME sorvanto-lite.xml)
install(FILES "${packaging}/com.sorvanto.lite.metainfo.xml" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/metainfo")
# Not the library folder of the architecture: udev reads "lib" only, below /usr/local too.
install(FILES "${packaging}/60-sorvanto-lite.rules" DESTINATION lib/udev/rules.d)
install(FILES "${packaging}/copyright" "${PROJECT_SOURCE_DIR}/docs/manual.md" DESTINATION "${doc_folder}")
install(FILES "${packaging}/lintian-overrides" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides"
    RENAME sorvanto-lite)
# The pictures of the manual.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/images" DESTINATION "${doc_folder}")

foreach(size 16 22 24 32 48 64 128 256 512)
    install(FILES "${icons}/icons/sorvanto-lite-${size}.png"
        DESTINATION "${icon_folder}/${size}x${size}/apps" RENAME sorvanto-lite.png)
    install(FILES "${icons}/icons/application-x-sorvanto-lite-project-${size}.png"
        DESTINATION "${icon_folder}/${size}x${size}/mimetypes" RENAME application-x-sorvanto-lite-project.png)
endforeach()
install(FILES "${icons}/svg/I_2.svg" DESTINATION "${icon_folder}/scalable/apps" RENAME sorvanto-lite.svg)
install(FILES "${icons}/svg/project_file.svg"
    DESTINATION "${icon_folder}/scalable/mimetypes" RENAME application-x-sorvanto-lite-project.svg)

# install_compressed(FILE DESTINATION): pages of the system's manual and changelogs are kept compressed.
set(compressed_folder "${PROJECT_BINARY_DIR}/packaging/compressed")
file(MAKE_DIRECTORY "${compressed_folder}")
set(compressed_files)
function(install_compressed file destination)
    get_filename_component(name "${file}" NAME)
    set(output "${compressed_folder}/${name}.gz")
    add_custom_command(OUTPUT "${output}" COMMAND "${GZIP}" -9nc "${file}" > "${output}" DEPENDS "${file}" VERBATIM)
    install(FILES "${output}" DESTINATION "${destination}")
    set(compressed_files ${compressed_files} "${output}" PARENT_SCOPE)
endfunction()

configure_file("${packaging}/sorvanto-lite.1.in" "${PROJECT_BINARY_DIR}/packaging/sorvanto-lite.1" @ONLY)
install_compressed("${PROJECT_BINARY_DIR}/packaging/sorvanto-lite.1" "${CMAKE_INSTALL_MANDIR}/man1")
install_compressed("${packaging}/changelog" "${doc_folder}")
# Whoever has built the program has built all that is installed.
add_custom_target(sorvanto_compressed_files DEPENDS ${compressed_files})
add_dependencies(sorvanto-lite sorvanto_compressed_files)

# What the program loads at run time only, which its list of libraries does not tell.
set(plugins_qt5 "libqt5sql5-sqlite, libqt5multimedia5-plugins")
set(plugins_qt6 "libqt6sql6-sqlite, qt6-qpa-plugins")

set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
set(CPACK_PACKAGE_NAME sorvanto-lite)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "Sorvanto Lite developers <maintainers@sorvanto.invalid>")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "${plugins_qt${SORVANTO_QT}}")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-open-sans, fonts-liberation")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "data-recording station for temperature and humidity loggers")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Sorvanto Lite asks up to 64 two-channel loggers on USB and in the network for
their readings, once per data interval of 1 second to 10 minutes. It shows the
newest values on up to four dashboards and a live chart of every logger,
sounds an alarm when a channel leaves its range, and keeps every reading in a
SQLite file beside the project.")
include(CPack)
