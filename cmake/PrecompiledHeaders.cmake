# Half of a build's time goes into reading the toolkit's headers. They are compiled beforehand, once for sources without
# windows and once for those with them, and once more of each for tests, which are compiled differently. A source includes
# what it needs all the same: scripts/lint compiles each without them, as -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON does.

set(toolkit_headers <QByteArray> <QCoreApplication> <QDateTime> <QDir> <QFile> <QHash> <QLoggingCategory> <QMap> <QObject>
    <QPointer> <QSettings> <QString> <QStringList> <QTimer> <QVariant> <QVector>)
set(widgets_headers <QApplication> <QComboBox> <QDialog> <QDoubleSpinBox> <QFrame> <QGroupBox> <QImage> <QLabel> <QLineEdit>
    <QListWidget> <QMouseEvent> <QPainter> <QPushButton> <QScreen> <QTabWidget>)
set(test_headers <QHostAddress> <QProcess> <QSet> <QSignalSpy> <QTcpServer> <QTcpSocket> <QTemporaryDir> <QTest>)

# precompiled_headers(NAME LINK... HEADERS...): the compiled headers that targets take over by the name.
function(precompiled_headers name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LINK;HEADERS")
    file(CONFIGURE OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp" CONTENT "// Carries precompiled headers.\n")
    add_library(${name} OBJECT "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp")
    set_target_properties(${name} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
    target_link_libraries(${name} PRIVATE ${arg_LINK})
    target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
endfunction()

# uses_windows(TARGET RESULT): whether a target links windows, however indirectly.
function(uses_windows target result)
    set(${result} NO PARENT_SCOPE)
    set(libraries)
    foreach(property LINK_LIBRARIES INTERFACE_LINK_LIBRARIES)
        get_target_property(linked ${target} ${property})
        if(linked)
            list(APPEND libraries ${linked})
        endif()
    endforeach()
    list(REMOVE_DUPLICATES libraries)
    foreach(library IN LISTS libraries)
        if(library MATCHES "^Qt::(Gui|Widgets|Multimedia)$")
            set(${result} YES PARENT_SCOPE)
            return()
        elseif(library MATCHES "^(sorvanto|loggersim)_" AND TARGET ${library})
            uses_windows(${library} found)
            if(found)
                set(${result} YES PARENT_SCOPE)
                return()
            endif()
        endif()
    endforeach()
endfunction()

# sorvanto_precompile(TARGET [KIND]): has a target, whose libraries are all named, take over the headers that fit it. The
# compiler accepts headers only in a target with the toolkit's modules and the options they were compiled with.
function(sorvanto_precompile target)
    set(headers sorvanto_${ARGV1}headers)
    uses_windows(${target} windows)
    if(windows)
        string(APPEND headers _widgets)
    endif()
    if(TARGET ${headers})
        target_precompile_headers(${target} REUSE_FROM ${headers})
    endif()
endfunction()

# GCC for Windows fails on large ones.
if(SORVANTO_STATION AND NOT WIN32)
    precompiled_headers(sorvanto_headers LINK sorvanto_options Qt::Core HEADERS ${toolkit_headers})
    precompiled_headers(sorvanto_headers_widgets LINK sorvanto_options Qt::Widgets
        HEADERS ${toolkit_headers} ${widgets_headers})
endif()
