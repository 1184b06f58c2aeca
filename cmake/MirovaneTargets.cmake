# What every target of the project shares: warnings, sanitizers, the compiler cache and the shape of a layer.

find_program(MIROVANE_CCACHE ccache)
if(MIROVANE_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${MIROVANE_CCACHE})
endif()

# Half of a compilation goes into the same few headers. The compiler cache saves more than that, and cannot keep what
# was compiled with them; so they are for builds without it, such as a first one on a fresh machine.
if(MIROVANE_CCACHE)
  set(pch_default OFF)
else()
  set(pch_default ON)
endif()
option(MIROVANE_PCH "Precompile the headers that most files include" ${pch_default})

# The standard headers and those given, once for the target.
function(mirovane_precompile name)
  if(NOT MIROVANE_PCH OR MIROVANE_FUZZ)
    return()
  endif()
  target_precompile_headers(${name} PRIVATE
    <algorithm> <array> <atomic> <chrono> <condition_variable> <deque> <fstream> <functional> <map>
    <memory> <mutex> <optional> <set> <span> <sstream> <stop_token> <string> <string_view> <thread> <unordered_map>
    <unordered_set> <utility> <variant> <vector> ${ARGN})
  # What GCC 12 keeps silent about within its own string header it reports when that header was precompiled.
  target_compile_options(${name} PRIVATE
    "$<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread>")
endfunction()

set(mirovane_widget_headers
  <QAbstractItemModel> <QAction> <QApplication> <QBoxLayout> <QDialog> <QFile> <QLabel> <QLineEdit> <QMainWindow>
  <QMenu> <QPainter> <QPushButton> <QString> <QTableView> <QTimer> <QWidget>)
set(mirovane_json_headers <QCoreApplication> <QJsonArray> <QJsonDocument> <QJsonObject> <QString> <QTimer>)

add_library(mirovane_warnings INTERFACE)
target_compile_options(mirovane_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wold-style-cast -Woverloaded-virtual
  # GCC 12 sees overlapping copies in std::string's own operator+ at -O3; GCC 13 does not.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
  # In a unity build each file sees the names that another one keeps to itself.
  $<$<NOT:$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>>:-Wshadow>
  $<$<BOOL:${MIROVANE_WERROR}>:-Werror>)

if(MIROVANE_SANITIZE)
  add_compile_options(-fsanitize=${MIROVANE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${MIROVANE_SANITIZE})
endif()

# The library of a folder under src/: "ui/floor" becomes mirovane_ui_floor.
function(mirovane_target_of folder variable)
  string(REPLACE "/" "_" stem ${folder})
  set(${variable} mirovane_${stem} PARENT_SCOPE)
endfunction()

# A layer: one static library per folder under src/, made of every .cpp file in that folder but main.cpp. What it links
# is other folders of src/, by their names, or targets of other projects.
function(mirovane_layer folder)
  mirovane_target_of(${folder} name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp ${CMAKE_SOURCE_DIR}/src/${folder}/*.h)
  list(REMOVE_ITEM sources ${CMAKE_SOURCE_DIR}/src/${folder}/main.cpp)
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(${name} PRIVATE mirovane_warnings)
  foreach(dependency ${ARGN})
    if(dependency MATCHES "::")
      target_link_libraries(${name} PUBLIC ${dependency})
    else()
      mirovane_target_of(${dependency} library)
      target_link_libraries(${name} PUBLIC ${library})
    endif()
  endforeach()
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  mirovane_precompile(${name})
endfunction()

# Macros that keep Qt code explicit: no implicit conversion between bytes and text, no connect without a context.
function(mirovane_qt_guards name)
  target_compile_definitions(${name} PRIVATE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_CONTEXTLESS_CONNECT
    QT_NO_FOREACH QT_NO_KEYWORDS QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
endfunction()

# A layer of the desktop program.
function(mirovane_ui_layer folder)
  mirovane_layer(${folder} ${ARGN})
  mirovane_target_of(${folder} name)
  target_link_libraries(${name} PUBLIC Qt6::Widgets)
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  mirovane_qt_guards(${name})
  mirovane_precompile(${name} ${mirovane_widget_headers})
endfunction()

# A layer of the command line, which uses Qt Core.
function(mirovane_cli_layer folder)
  mirovane_layer(${folder} ${ARGN})
  mirovane_target_of(${folder} name)
  target_link_libraries(${name} PUBLIC Qt6::Core)
  mirovane_qt_guards(${name})
  mirovane_precompile(${name} ${mirovane_json_headers})
endfunction()
