# Helpers that give every folder of src/ and tests/ the same shape: one library
# target a folder, built from every source file in it, and one test executable
# a module.

set(LUMENOTE_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wno-missing-field-initializers)

function(lumenote_apply_common target)
  target_compile_options(${target} PRIVATE ${LUMENOTE_WARNINGS})
  if(LUMENOTE_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=address,undefined -fno-omit-frame-pointer
                                             -fno-sanitize-recover=all)
    target_link_options(${target} PRIVATE -fsanitize=address,undefined)
  endif()
endfunction()

# lumenote_record_module(FOLDER dependency...) writes the folder's declared
# dependencies (the lumenote_ targets among them, by folder name) into the
# module graph that the architecture test checks the includes against. A
# target of a nested folder joins the folders with "_" (lumenote_platform_linux
# for src/platform/linux).
function(lumenote_record_module folder)
  set(modules "")
  foreach(dependency IN LISTS ARGN)
    if(dependency MATCHES "^lumenote_(.+)$")
      string(REPLACE "_" "/" module "${CMAKE_MATCH_1}")
      list(APPEND modules ${module})
    endif()
  endforeach()
  list(JOIN modules "," joined)
  string(REPLACE "_" "/" folder "${folder}")
  set_property(GLOBAL APPEND PROPERTY LUMENOTE_MODULE_GRAPH "${folder}:${joined}")
endfunction()

# lumenote_module(NAME [QT] [DEPS target...] [SWITCHED_DEPS target...]) builds
# lumenote_NAME from the .cpp files of the current folder (not its
# subfolders). QT runs Qt's meta-object compiler over the folder (for the
# folders that may use Qt). SWITCHED_DEPS are modules that only code under a
# build switch includes: recorded in the module graph whether or not the
# switch is on (the include check reads the files, not the preprocessor), and
# linked by the caller when it is.
function(lumenote_module name)
  cmake_parse_arguments(ARG "QT" "" "DEPS;SWITCHED_DEPS" ${ARGN})
  lumenote_record_module(${name} ${ARG_DEPS} ${ARG_SWITCHED_DEPS})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(NOT sources)
    # A folder whose code has not landed yet still names its target, so that
    # the dependency graph stays the same as it fills in.
    add_library(lumenote_${name} INTERFACE)
    target_include_directories(lumenote_${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(lumenote_${name} INTERFACE ${ARG_DEPS})
    return()
  endif()
  add_library(lumenote_${name} STATIC ${sources})
  target_include_directories(lumenote_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(lumenote_${name} PUBLIC ${ARG_DEPS})
  if(ARG_QT)
    set_target_properties(lumenote_${name} PROPERTIES AUTOMOC ON)
  endif()
  lumenote_apply_common(lumenote_${name})
  if(LUMENOTE_SANITIZE)
    target_link_options(lumenote_${name} INTERFACE -fsanitize=address,undefined)
  endif()
endfunction()

# lumenote_tests(NAME LABEL label [DEPS target...]) builds NAME_tests from the
# .cpp files of the current folder and registers each GoogleTest case with ctest.
function(lumenote_tests name)
  cmake_parse_arguments(ARG "" "LABEL" "DEPS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${name}_tests ${sources})
  target_include_directories(${name}_tests PRIVATE ${PROJECT_SOURCE_DIR}/tests ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name}_tests PRIVATE ${ARG_DEPS} GTest::gmock GTest::gtest GTest::gtest_main)
  lumenote_apply_common(${name}_tests)
  target_compile_definitions(${name}_tests PRIVATE LUMENOTE_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
                                                   LUMENOTE_BINARY_DIR="${PROJECT_BINARY_DIR}")
  gtest_discover_tests(${name}_tests
    DISCOVERY_MODE PRE_TEST
    PROPERTIES LABELS ${ARG_LABEL} ENVIRONMENT "LUMENOTE_BIN_DIR=${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
endfunction()

# lumenote_standalone_sources(file...) compiles the named .cpp files of the
# current folder on their own instead of in the folder's unity batches: test
# files whose file-local helpers share names with a neighbour's (each test
# keeps its own fixed instant `kNow`, its own `at(...)`), which one batch
# could not hold together.
function(lumenote_standalone_sources)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
