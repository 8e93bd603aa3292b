# One INTERFACE target carries every flag; two helpers make libraries and tests.

add_library(vt_flags INTERFACE)
target_compile_features(vt_flags INTERFACE cxx_std_20)
target_compile_options(vt_flags INTERFACE
    -Wall -Wextra -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast)
if(VANTREL_WERROR)
    target_compile_options(vt_flags INTERFACE -Werror)
endif()
target_compile_definitions(vt_flags INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_KEYWORDS
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_STRICT_ITERATORS
    _FILE_OFFSET_BITS=64)
target_include_directories(vt_flags INTERFACE ${PROJECT_SOURCE_DIR}/src)
foreach(sanitizer IN LISTS VANTREL_SANITIZE)
    target_compile_options(vt_flags INTERFACE -fsanitize=${sanitizer})
    target_link_options(vt_flags INTERFACE -fsanitize=${sanitizer})
endforeach()
if(VANTREL_SANITIZE)
    target_compile_options(vt_flags INTERFACE -fno-omit-frame-pointer -fno-sanitize-recover=all)
endif()
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# One precompiled header for every target, where the preset asks for it.
function(vt_precompile target)
    if(VANTREL_PCH)
        target_precompile_headers(${target} PRIVATE
            <QByteArray> <QDateTime> <QHash> <QList> <QString> <QStringList> <functional> <memory>
            <optional> <vector>)
    endif()
endfunction()

# vt_library(<name> SOURCES ... [LINK ...]): a static library of one folder.
function(vt_library name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
    add_library(${name} STATIC ${arg_SOURCES})
    target_link_libraries(${name} PUBLIC vt_flags Qt6::Core ${arg_LINK})
    vt_precompile(${name})
endfunction()

# vt_forms(<name> SOURCES ... [LINK ...]): the windows of one folder; headers with Q_OBJECT are listed.
function(vt_forms name)
    vt_library(${name} ${ARGN})
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_link_libraries(${name} PUBLIC Qt6::Widgets)
endfunction()

# vt_program(<name> SOURCES ... [LINK ...])
function(vt_program name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE vt_flags Qt6::Core ${arg_LINK})
    vt_precompile(${name})
endfunction()

# vt_test(<name> SOURCES ... [LINK ...]): one Qt Test program of several cases; each source file
# declares one test class and registers it (see tests/support/TestMain.h). WINDOWS: with widgets.
function(vt_test name)
    cmake_parse_arguments(arg "WINDOWS" "TIMEOUT" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${arg_SOURCES} ${PROJECT_SOURCE_DIR}/tests/support/TestMain.cpp)
    set_target_properties(${name} PROPERTIES AUTOMOC ON UNITY_BUILD OFF)
    target_link_libraries(${name} PRIVATE vt_flags vt_test_support Qt6::Core Qt6::Test ${arg_LINK})
    target_compile_definitions(${name} PRIVATE
        VT_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data" VT_BIN="${CMAKE_BINARY_DIR}/bin")
    if(arg_WINDOWS)
        target_link_libraries(${name} PRIVATE Qt6::Widgets)
        target_compile_definitions(${name} PRIVATE VT_TEST_WINDOWS)
    endif()
    vt_precompile(${name})
    add_test(NAME ${name} COMMAND ${name})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 300)
    endif()
    if(VANTREL_SANITIZE)
        math(EXPR arg_TIMEOUT "${arg_TIMEOUT} * 3")
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT}
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8")
endfunction()
