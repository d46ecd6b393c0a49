# What every target of this project shares: language level, warnings, sanitizers, folders.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
# One target for all that Qt's generators make. It waits for no library: none makes what they read,
# and clang-tidy needs nothing compiled.
set(CMAKE_GLOBAL_AUTOGEN_TARGET ON)
set(CMAKE_AUTOGEN_ORIGIN_DEPENDS OFF)
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
  # The standard library's own checks of indexes and iterators.
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()

# Links a development build in a fraction of the time; what is installed keeps the compiler's own
# linker, which can optimise across files.
find_program(KV_LLD ld.lld)
if(KV_LLD AND NOT KV_OPTIMISE)
  add_link_options(-fuse-ld=lld)
endif()

# What was compiled before, in any checkout of the project, is not compiled again where ccache is
# there: paths below the checkout count as relative ones, and precompiled headers as their contents.
find_program(KV_CCACHE ccache)
if(KV_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env
    "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" CCACHE_NOHASHDIR=1
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    "${KV_CCACHE}")
endif()

# A test need not be fast itself, and compiles in half the time, under the sanitizers too.
function(kv_optimise_no_test target)
  target_compile_options(${target} PRIVATE
    $<$<OR:$<CONFIG:RelWithDebInfo>,$<BOOL:${KV_SANITIZE}>>:-O0>)
endfunction()

# kv_precompile(TARGET KIND): compiles the target after the headers of a kind: `test` GoogleTest's,
# `qt` Qt's widgets, `qt_test` both. Each kind is precompiled once for all targets, whose further
# definitions these headers do not read.
# Only builds with KV_PRECOMPILE do it: the others, the engine alone, clang-tidy's and the packages',
# see a missing include. clang's do it for tests with Qt alone, and so see one everywhere else.
set(KV_PRECOMPILED_test <gmock/gmock.h> <gtest/gtest.h> <chrono> <filesystem> <fstream> <functional>
  <map> <optional> <random> <string> <vector>)
set(KV_PRECOMPILED_qt <QApplication> <QComboBox> <QDialog> <QHash> <QHeaderView> <QLineEdit> <QMenu>
  <QPainter> <QSettings> <QTableView> <QTreeView> <QVBoxLayout> <functional> <map> <memory>
  <optional> <string> <vector>)
set(KV_PRECOMPILED_qt_test ${KV_PRECOMPILED_qt} ${KV_PRECOMPILED_test})
function(kv_precompile target kind)
  if(NOT KV_PRECOMPILE OR (CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND NOT kind STREQUAL "qt_test"))
    return()
  endif()
  set(owner kv_precompiled_${kind})
  if(NOT TARGET ${owner})
    file(WRITE "${CMAKE_BINARY_DIR}/${owner}.cpp" "")
    add_library(${owner} STATIC "${CMAKE_BINARY_DIR}/${owner}.cpp")
    target_link_libraries(${owner} PRIVATE kv_flags)
    if(kind MATCHES "test")
      target_link_libraries(${owner} PRIVATE GTest::gtest GTest::gmock)
      kv_optimise_no_test(${owner})
    endif()
    if(kind MATCHES "qt")
      target_link_libraries(${owner} PRIVATE Qt6::Widgets)
    endif()
    target_precompile_headers(${owner} PRIVATE ${KV_PRECOMPILED_${kind}})
  endif()
  target_precompile_headers(${target} REUSE_FROM ${owner})
  # As the libraries are: CMake gives programs -fPIE, Qt some of them -fPIC, and it must be one.
  target_compile_options(${target} PRIVATE -fPIC)
endfunction()

# kv_library(NAME source...): the static library of one folder, with the alias kv::NAME.
# Headers are included as "NAME/Header.h"; what lies in detail/ is for the folder itself and its
# tests. The target `libraries` builds them all.
add_custom_target(libraries)
function(kv_library name)
  add_library(kv_${name} STATIC ${ARGN})
  add_library(kv::${name} ALIAS kv_${name})
  target_include_directories(kv_${name} PUBLIC "${CMAKE_SOURCE_DIR}/src")
  target_link_libraries(kv_${name} PRIVATE kv_flags)
  add_dependencies(libraries kv_${name})
  if(KV_SANITIZE AND name MATCHES "^(paths|jet|ado|project)$")
    # What computes. The rest waits for the user, and compiles in half the time without.
    target_compile_options(kv_${name} PRIVATE -O1)
  endif()
endfunction()

# kv_test(NAME LIBS lib... SOURCES source...): one GoogleTest program, registered with CTest as NAME.
# Its label is the name of its folder; programs with Qt bear the label `qt` too and run on the
# offscreen platform. A definition that names the build's folder belongs to the file that uses it
# (COMPILE_DEFINITIONS of the source), so that no checkout compiles the others anew.
function(kv_test name)
  cmake_parse_arguments(T "" "" "LIBS;SOURCES" ${ARGN})
  if(T_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "kv_test(${name}): what is ${T_UNPARSED_ARGUMENTS}?")
  endif()
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE kv_flags GTest::gtest GTest::gmock ${T_LIBS})
  target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  kv_optimise_no_test(${name})
  # From the checkout's top, where CTest starts it: what is compiled is the same in every checkout.
  target_compile_definitions(${name} PRIVATE KV_TEST_DATA="tests/data" KV_EXAMPLES="examples")
  get_filename_component(labels "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
  if("${T_LIBS}" MATCHES "GTest::gtest_main")
    kv_precompile(${name} test)
  else()
    target_link_libraries(${name} PRIVATE Qt6::Test)
    kv_precompile(${name} qt_test)
    list(APPEND labels qt)
  endif()
  if(WIN32)
    kv_speak_utf8(${name})
  endif()
  add_test(NAME ${name} COMMAND ${name} WORKING_DIRECTORY "${CMAKE_SOURCE_DIR}")
  set_tests_properties(${name} PROPERTIES LABELS "${labels}" TIMEOUT 900
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8")
endfunction()

# kv_posix_sources(LIST source...): adds the sources to the list, where the system is one that they are
# for; elsewhere says that they are left out.
function(kv_posix_sources list)
  if(WIN32)
    get_filename_component(folder "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
    list(JOIN ARGN ", " names)
    message(NOTICE "Left out of tests/${folder} on this system: ${names}")
  else()
    set(${list} ${${list}} ${ARGN} PARENT_SCOPE)
  endif()
endfunction()

# kv_use_qt(TARGET [CORE]): Qt's generators for a target with Q_OBJECT, .ui or .qrc. CORE: it has no
# widgets.
function(kv_use_qt target)
  set_target_properties(${target} PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
  get_target_property(type ${target} TYPE)
  # Plugins are one file each, for which it does not pay; a test has its headers already.
  get_target_property(reused ${target} PRECOMPILE_HEADERS_REUSE_FROM)
  if(NOT type STREQUAL MODULE_LIBRARY AND NOT reused AND NOT "CORE" IN_LIST ARGN)
    kv_precompile(${target} qt)
  endif()
endfunction()

# kv_optimise_across_files(TARGET): lets the optimiser see all files of a target at once and inline
# more, a third of the time of a table dump. For what is installed or measured (KV_OPTIMISE), since
# each changed line links every program anew.
function(kv_optimise_across_files target)
  if(KV_OPTIMISE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set_target_properties(${target} PROPERTIES INTERPROCEDURAL_OPTIMIZATION ON)
    target_compile_options(${target} PRIVATE -O3)
  endif()
endfunction()
