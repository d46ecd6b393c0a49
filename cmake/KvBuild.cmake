# What every target of this project shares: language level, warnings, sanitizers, folders.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
# Add-ins are looked for in the folder `addins` beside the studio's program.
set(KV_ADDIN_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin/addins")
# Where `cmake --install` puts them. The studio looks there too, by the way from its own program:
# `cmake --install --prefix` may choose another prefix than the build knew.
include(GNUInstallDirs)
set(KV_ADDIN_INSTALL_DIRECTORY "${CMAKE_INSTALL_LIBDIR}/korvala/addins")
file(RELATIVE_PATH KV_ADDINS_FROM_PROGRAM "${CMAKE_INSTALL_FULL_BINDIR}"
  "${CMAKE_INSTALL_FULL_LIBDIR}/korvala/addins")

add_library(kv_flags INTERFACE)
target_compile_options(kv_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  -Wnon-virtual-dtor -Woverloaded-virtual)
target_compile_definitions(kv_flags INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
  QT_DISABLE_DEPRECATED_BEFORE=0x060400 KV_VERSION="${PROJECT_VERSION}")
if(KV_WARNINGS_AS_ERRORS)
  target_compile_options(kv_flags INTERFACE -Werror)
endif()
if(KV_SANITIZE)
  # Global, so that every object of every target agrees.
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer
    -fno-sanitize-recover=undefined)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # g++ 12 sees uninitialised variants in what the sanitizers add.
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
  add_link_options(-fsanitize=address,undefined)
endif()

# kv_library(NAME source...): the static library of one folder, with the alias kv::NAME.
# Headers are included as "NAME/Header.h"; what lies in detail/ is for the folder itself and its
# tests.
function(kv_library name)
  add_library(kv_${name} STATIC ${ARGN})
  add_library(kv::${name} ALIAS kv_${name})
  target_include_directories(kv_${name} PUBLIC "${CMAKE_SOURCE_DIR}/src")
  target_link_libraries(kv_${name} PRIVATE kv_flags)
endfunction()

# kv_test(NAME LABEL label LIBS lib... SOURCES source...): one GoogleTest program, registered with
# CTest as NAME. Qt programs run on the offscreen platform.
function(kv_test name)
  cmake_parse_arguments(T "" "LABEL" "LIBS;SOURCES" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE kv_flags GTest::gtest GTest::gmock ${T_LIBS})
  target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_compile_definitions(${name} PRIVATE KV_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data"
    KV_EXAMPLES="${CMAKE_SOURCE_DIR}/examples")
  if(KV_PRECOMPILE)
    target_precompile_headers(${name} PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS "${T_LABEL}" TIMEOUT 300
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8")
endfunction()

# kv_use_qt(TARGET): Qt's generators for a target with Q_OBJECT, .ui or .qrc.
function(kv_use_qt target)
  set_target_properties(${target} PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
  get_target_property(type ${target} TYPE)
  # Plugins are one file each, for which it does not pay.
  if(KV_PRECOMPILE AND NOT type STREQUAL MODULE_LIBRARY)
    target_precompile_headers(${target} PRIVATE <QApplication> <QComboBox> <QLineEdit> <QMenu>
      <QTableView> <QVBoxLayout>)
  endif()
endfunction()

# kv_optimise_across_files(TARGET): lets the optimiser see all files of a target at once and inline
# more. For the code whose speed is measured; a third of the time of a table dump.
function(kv_optimise_across_files target)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT KV_SANITIZE
      AND CMAKE_BUILD_TYPE MATCHES "Rel")
    set_target_properties(${target} PROPERTIES INTERPROCEDURAL_OPTIMIZATION ON)
    target_compile_options(${target} PRIVATE -O3)
  endif()
endfunction()
