# What every target of the program has in common, and the one function that makes a room of src/ a library.

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Network DBus Qml Quick QuickControls2 Svg Test)
find_package(QCoro6 0.8 REQUIRED COMPONENTS Core Network DBus)
find_package(Boost 1.81 REQUIRED)
find_package(simdjson REQUIRED)
find_package(SQLiteCpp REQUIRED)
find_package(date REQUIRED)
find_package(fmt REQUIRED)
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(QPDF REQUIRED IMPORTED_TARGET libqpdf)
qt_standard_project_setup()

# One shared cache for every checkout: paths are hashed relative to the checkout's root.
find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" CCACHE_NOHASHDIR=1 ${CCACHE})
endif()

add_library(thalvorn_flags INTERFACE)
target_include_directories(thalvorn_flags INTERFACE "${CMAKE_SOURCE_DIR}/src")
target_compile_options(thalvorn_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
  -Wextra-semi -Wimplicit-fallthrough -Wno-missing-designated-field-initializers -Werror)
target_compile_definitions(thalvorn_flags INTERFACE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_URL_CAST_FROM_STRING
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_DISABLE_DEPRECATED_BEFORE=0x060400 THALVORN_VERSION="${PROJECT_VERSION}")
target_link_options(thalvorn_flags INTERFACE -fuse-ld=lld)
if(THALVORN_SANITIZE)
  target_compile_options(thalvorn_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  target_link_options(thalvorn_flags INTERFACE -fsanitize=address,undefined)
endif()

# thalvorn_room(<name> [DIRECTORY dir] USES <targets…>): the sources of a folder as the library Thalvorn::<name>.
# A folder without .cpp files is a header-only room.
function(thalvorn_room name)
  cmake_parse_arguments(ROOM "" "DIRECTORY" "USES" ${ARGN})
  if(NOT ROOM_DIRECTORY)
    set(ROOM_DIRECTORY "${CMAKE_SOURCE_DIR}/src/${name}")
  endif()
  file(GLOB sources CONFIGURE_DEPENDS "${ROOM_DIRECTORY}/*.cpp" "${ROOM_DIRECTORY}/*.h")
  file(GLOB units CONFIGURE_DEPENDS "${ROOM_DIRECTORY}/*.cpp")
  set(target "thalvorn_${name}")
  if(units)
    add_library(${target} STATIC ${sources})
    target_link_libraries(${target} PUBLIC thalvorn_flags ${ROOM_USES})
  else()
    add_library(${target} INTERFACE)
    target_link_libraries(${target} INTERFACE thalvorn_flags ${ROOM_USES})
  endif()
  add_library(Thalvorn::${name} ALIAS ${target})
endfunction()

# thalvorn_test(<name> [DIRECTORY dir] USES <targets…>): a folder of tests/ as one GoogleTest program.
function(thalvorn_test name)
  cmake_parse_arguments(TEST "" "DIRECTORY" "USES" ${ARGN})
  if(NOT TEST_DIRECTORY)
    set(TEST_DIRECTORY "${CMAKE_SOURCE_DIR}/tests/${name}")
  endif()
  file(GLOB sources CONFIGURE_DEPENDS "${TEST_DIRECTORY}/*.cpp" "${TEST_DIRECTORY}/*.h")
  file(GLOB units CONFIGURE_DEPENDS "${TEST_DIRECTORY}/*.cpp")
  if(NOT units)
    return()
  endif()
  set(target "thalvorn_test_${name}")
  add_executable(${target} ${sources})
  target_include_directories(${target} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_compile_definitions(${target} PRIVATE THALVORN_TEST_DATA="${TEST_DIRECTORY}/data")
  target_link_libraries(${target} PRIVATE thalvorn_flags ${TEST_USES} GTest::gmock)
  # Tests run where a sailor's computer might be: a comma-decimal locale and a zone with daylight saving.
  add_test(NAME ${name} COMMAND ${target})
  set_tests_properties(${name} PROPERTIES TIMEOUT 600
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_QUICK_BACKEND=software;TZ=Europe/Rome;LC_ALL=C.UTF-8")
endfunction()

# thalvorn_embed(<target> <file> <variable>): the text of a file as `extern const std::string_view thalvorn::<variable>`
# in the target, so that the program needs no file beside it.
function(thalvorn_embed target file variable)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
  file(READ "${file}" text)
  set(unit "${CMAKE_CURRENT_BINARY_DIR}/embedded/${variable}.cpp")
  file(GENERATE OUTPUT "${unit}" CONTENT "#include <string_view>

namespace thalvorn {
extern const std::string_view ${variable};
const std::string_view ${variable} = R\"embedded(${text})embedded\";
}  // namespace thalvorn
")
  target_sources(${target} PRIVATE "${unit}")
endfunction()
