# cmake -D LAYER=name -D FOLDER=its sources -D LINKS=a,b -D MAY_USE=c,d -P check_layer.cmake: fails when the layer links
# another than those it may use, or includes a header of one. Headers alone would pass every linker.

cmake_minimum_required(VERSION 3.22)
string(REPLACE "," ";" links "${LINKS}")
string(REPLACE "," ";" may_use "${MAY_USE}")
set(faults "")

foreach(link IN LISTS links)
    if(link MATCHES "^sorvanto_(.+)$")
        set(other "${CMAKE_MATCH_1}")
        # Options, pictures and what belongs to the layer itself are no layers.
        if(IS_DIRECTORY "${FOLDER}/../${other}" AND NOT other IN_LIST may_use)
            string(APPEND faults "\n  links ${link}")
        endif()
    endif()
endforeach()

file(GLOB_RECURSE sources "${FOLDER}/*.h" "${FOLDER}/*.cpp" "${FOLDER}/*.ui")
if(NOT sources)
    message(FATAL_ERROR "No sources in ${FOLDER}")
endif()
foreach(source IN LISTS sources)
    file(STRINGS "${source}" lines REGEX "(#include \"|<header>)[a-z]+/")
    foreach(line IN LISTS lines)
        string(REGEX MATCH "(#include \"|<header>)([a-z]+)/" ignored "${line}")
        set(other "${CMAKE_MATCH_2}")
        if(NOT other STREQUAL LAYER AND NOT other IN_LIST may_use)
            string(APPEND faults "\n  ${source}: ${line}")
        endif()
    endforeach()
endforeach()

if(faults)
    message(FATAL_ERROR "The layer ${LAYER} may not:${faults}")
endif()
