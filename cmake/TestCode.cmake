# How the code of tests is compiled and linked: quickly, as it is built far more often than it runs. The layers under test
# are those of the station, as they are shipped.

set(test_options -O0 -U_FORTIFY_SOURCE)
if(SORVANTO_QT GREATER_EQUAL 6)
    # Folders that differ from test to test, which no test asks for; headers compiled beforehand serve all tests.
    list(APPEND test_options -UQT_TESTCASE_BUILDDIR -UQT_TESTCASE_SOURCEDIR)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12.1)
    find_program(MOLD mold)
    mark_as_advanced(MOLD)
endif()

# sorvanto_test_code(TARGET): makes a program or a library of tests such a target; its libraries must have been named.
function(sorvanto_test_code target)
    # The headers of the toolkit's test library depend on what else is linked.
    target_link_libraries(${target} PUBLIC Qt::Network Qt::Test)
    uses_windows(${target} windows)
    if(windows)
        target_link_libraries(${target} PUBLIC Qt::Widgets)
    endif()
    target_compile_options(${target} PRIVATE ${test_options})
    if(MOLD)
        target_link_options(${target} PRIVATE -fuse-ld=mold)
    endif()
    sorvanto_precompile(${target} test_)
endfunction()

# sorvanto_test_moc(TARGET): what TARGET.cpp includes as TARGET.moc. AUTOMOC would take five times as long, as it looks
# at every source and asks the compiler for its macros, for each of more than a hundred programs.
function(sorvanto_test_moc target)
    set_target_properties(${target} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
    set(moc "${CMAKE_CURRENT_BINARY_DIR}/${target}.moc")
    qt_generate_moc("${CMAKE_CURRENT_SOURCE_DIR}/${target}.cpp" "${moc}" TARGET ${target})
    target_sources(${target} PRIVATE "${moc}")
    target_include_directories(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}")
endfunction()

if(NOT WIN32)
    foreach(kind "" _widgets)
        set(name sorvanto_test_headers${kind})
        precompiled_headers(${name} LINK sorvanto_options $<$<STREQUAL:${kind},_widgets>:Qt::Widgets> Qt::Network Qt::Test
            HEADERS ${toolkit_headers} ${test_headers})
        target_compile_options(${name} PRIVATE ${test_options})
    endforeach()
    target_precompile_headers(sorvanto_test_headers_widgets PRIVATE ${widgets_headers})
endif()
