# What only a build for Windows needs: icon and version of the programs, and a plain word when there is no Qt for it.
if(WIN32)
    enable_language(RC)
endif()

# sorvanto_windows_resource(TARGET DESCRIPTION): gives a program its icon and the version that Windows shows of it.
function(sorvanto_windows_resource target description)
    if(NOT WIN32)
        return()
    endif()
    set(file_name ${target}.exe)
    set(icon "${PROJECT_SOURCE_DIR}/resources/windows/sorvanto-lite.ico")
    set(resource "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
    configure_file("${PROJECT_SOURCE_DIR}/resources/windows/program.rc.in" "${resource}" @ONLY)
    target_sources(${target} PRIVATE "${resource}")
    set_source_files_properties("${resource}" PROPERTIES OBJECT_DEPENDS "${icon}")
endfunction()

function(sorvanto_require_windows_qt)
    find_package(Qt${SORVANTO_QT} 5.15 QUIET COMPONENTS Core)
    if(NOT Qt${SORVANTO_QT}_FOUND)
        message(FATAL_ERROR
            "Qt ${SORVANTO_QT} for Windows was not found. Name the folder of a Qt that was built for this compiler with "
            "-D CMAKE_PREFIX_PATH=FOLDER, or build only the list of USB loggers, which needs no Qt, with "
            "-D SORVANTO_STATION=OFF.")
    endif()
endfunction()
