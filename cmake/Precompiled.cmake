# Headers of the system and of Qt that nearly every file includes, compiled once: reading them again
# and again is most of what a build does. None of ours is among them. The builds without them, the
# package's and clang's, tell of a file that does not include what it uses.
option(QUORVANE_PRECOMPILE "Compile common headers once (GCC)" ON)
set(quorvane_core_headers
    <algorithm> <array> <cmath> <functional> <map> <memory> <optional> <utility> <vector>
    <QByteArray> <QDateTime> <QDir> <QFile> <QFileInfo> <QHash> <QList> <QLocale> <QObject>
    <QPointer> <QSet> <QString> <QStringList> <QTimer> <QUrl> <QVariant>)
set(quorvane_widgets_headers ${quorvane_core_headers}
    <QAction> <QApplication> <QComboBox> <QDialog> <QEvent> <QKeyEvent> <QLabel> <QMainWindow>
    <QMenu> <QMimeData> <QPainter> <QPushButton> <QScrollBar> <QTextBlock> <QTextCursor>
    <QTextDocument> <QTextEdit> <QTextList> <QTextTable> <QVBoxLayout>)

# Gives a target the headers of a kind: core or widgets.
function(quorvane_precompile target kind)
    if(NOT QUORVANE_PRECOMPILE OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        return()
    endif()
    set(carrier quorvane_${kind}_headers)
    if(NOT TARGET ${carrier})
        file(WRITE ${CMAKE_BINARY_DIR}/${carrier}.cpp "")
        add_library(${carrier} STATIC ${CMAKE_BINARY_DIR}/${carrier}.cpp)
        set_target_properties(${carrier} PROPERTIES AUTOMOC OFF AUTORCC OFF)
        target_link_libraries(${carrier} PRIVATE quorvane_options Qt6::Core
            $<$<STREQUAL:${kind},widgets>:Qt6::Widgets>)
        target_compile_options(${carrier} PRIVATE -fpch-preprocess) # ccache wants it
        target_precompile_headers(${carrier} PRIVATE ${${carrier}})
    endif()
    target_compile_options(${target} PRIVATE -fpch-preprocess)
    target_precompile_headers(${target} REUSE_FROM ${carrier})
endfunction()

# Of a target that links these: those of widgets, where they are among them.
function(quorvane_precompile_for target)
    if("${ARGN}" MATCHES "quorvane_(editor|shell|app|platform_qt)|Qt6::Widgets")
        quorvane_precompile(${target} widgets)
    else()
        quorvane_precompile(${target} core)
    endif()
endfunction()
