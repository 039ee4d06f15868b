# Qt 6.4's meta-object compiler stumbles over some of libstdc++'s headers, which it need not read: these are the guards of
# <chrono>, <compare> and <coroutine>.
set(CMAKE_AUTOMOC_MOC_OPTIONS -D_GLIBCXX_CHRONO -D_COMPARE -D_GLIBCXX_COROUTINE)
# Told which standard the compiler follows, moc 6.4 fails to parse libstdc++'s <concepts> and <coroutine>.
set(CMAKE_AUTOMOC_COMPILER_PREDEFINES OFF)

include(cmake/Hardening.cmake)

# What every target of the project is compiled with.
add_library(ambertide_options INTERFACE)
target_compile_options(ambertide_options INTERFACE
  -pthread # as some libraries ask for: precompiled headers have to be compiled alike
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
  $<$<BOOL:${AMBERTIDE_WERROR}>:-Werror>)
target_compile_definitions(ambertide_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS
  # Else whatever includes a header of Qt, such as the precompiled ones do, needs its library.
  QT_NO_VERSION_TAGGING)
if(AMBERTIDE_SANITIZE)
  target_compile_options(ambertide_options INTERFACE -fsanitize=${AMBERTIDE_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(ambertide_options INTERFACE -fsanitize=${AMBERTIDE_SANITIZE})
else()
  ambertide_harden(ambertide_options)
endif()

include(cmake/PrecompiledHeaders.cmake)

# ambertide_targets(<variable> <path>...): the targets of these folders of src/.
function(ambertide_targets variable)
  list(TRANSFORM ARGN REPLACE "/" "_")
  list(TRANSFORM ARGN PREPEND ambertide_)
  set(${variable} ${ARGN} PARENT_SCOPE)
endfunction()

# ambertide_folder(<path> [MOC] [SEES paths...] [LINK targets...] [TESTS_SEE paths...] [LABEL label])
#
# Declares the library of src/<path>, made of its .cpp files other than main.cpp, and a Qt Test program for each .cpp file
# of tests/<path>. The compiler finds the headers of this folder and of the folders that it SEES, under their path in
# src/, and no others. MOC runs Qt's meta-object compiler over it. LABEL is given to its tests: those of the label
# "threads" also run under the thread sanitizer.
function(ambertide_folder path)
  cmake_parse_arguments(FOLDER "MOC" "LABEL" "SEES;LINK;TESTS_SEE" ${ARGN})
  ambertide_targets(library ${path})
  ambertide_targets(seen ${FOLDER_SEES})

  set(headers ${PROJECT_BINARY_DIR}/headers/${library})
  cmake_path(GET path PARENT_PATH parent)
  file(MAKE_DIRECTORY ${headers}/${parent})
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${path} ${headers}/${path} SYMBOLIC)

  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${path}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/main.cpp$")
  if(sources)
    file(GLOB member_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${path}/*.h)
    add_library(${library} STATIC ${sources} ${member_headers})
    set_target_properties(${library} PROPERTIES AUTOMOC ${FOLDER_MOC})
    precompile_headers(${library} ${seen} ${FOLDER_LINK})
    set(scope PUBLIC)
  else()
    add_library(${library} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${library} ${scope} ${headers})
  target_link_libraries(${library} ${scope} ambertide_options ${seen} ${FOLDER_LINK})

  if(BUILD_TESTING)
    file(GLOB tests RELATIVE ${PROJECT_SOURCE_DIR}/tests/${path} CONFIGURE_DEPENDS
      ${PROJECT_SOURCE_DIR}/tests/${path}/*.cpp)
    foreach(test IN LISTS tests)
      ambertide_test(${path}/${test} SEES ${path} ${FOLDER_TESTS_SEE} LABEL "${FOLDER_LABEL}")
    endforeach()
  endif()
endfunction()

# choose_source(<path> <unit> OF <units>...): of these units of src/<path> only the one is built.
function(choose_source path unit)
  ambertide_targets(library ${path})
  get_target_property(sources ${library} SOURCES)
  foreach(other IN LISTS ARGN)
    if(NOT other STREQUAL unit)
      list(FILTER sources EXCLUDE REGEX "/${other}.cpp$")
    endif()
  endforeach()
  set_target_properties(${library} PROPERTIES SOURCES "${sources}")
endfunction()

# ambertide_test(<file in tests/> [SEES paths...] [LINK targets...] [LABEL label]): the Qt Test program of one file. It
# finds the programs of the bundle, which are built before it.
function(ambertide_test file)
  cmake_parse_arguments(TEST "" "LABEL" "SEES;LINK" ${ARGN})
  cmake_path(REMOVE_EXTENSION file OUTPUT_VARIABLE name)
  string(REPLACE "/" "_" target test_${name})
  ambertide_targets(seen ${TEST_SEES})
  add_executable(${target} ${PROJECT_SOURCE_DIR}/tests/${file})
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  target_link_libraries(${target} PRIVATE ${seen} ${TEST_LINK} ambertide_test_support Qt6::Test)
  if(Qt6_VERSION VERSION_GREATER_EQUAL 6.6) # its QTRY macros shorten a number of milliseconds
    set_source_files_properties(${PROJECT_SOURCE_DIR}/tests/${file} PROPERTIES COMPILE_OPTIONS -Wno-conversion)
  endif()
  target_compile_definitions(${target} PRIVATE
    AMBERTIDE_BUNDLE="${AMBERTIDE_BUNDLE_DIR}" AMBERTIDE_SOURCES="${PROJECT_SOURCE_DIR}")
  if(AMBERTIDE_SANITIZE STREQUAL "thread")
    target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/cloneForThreadSanitizer.cpp)
    target_link_options(${target} PRIVATE LINKER:--export-dynamic-symbol=clone)
  endif()
  if(TEST_LABEL STREQUAL "threads")
    add_dependencies(tests_of_threads ${target})
  endif()
  add_test(NAME ${name} COMMAND ${target})
  set_tests_properties(${name} PROPERTIES
    TIMEOUT 120 LABELS "${TEST_LABEL}" ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8")
endfunction()

# The tests that also run under the thread sanitizer.
add_custom_target(tests_of_threads)

# Where the build puts the application: the same bundle folder that is installed.
set(AMBERTIDE_BUNDLE_DIR ${PROJECT_BINARY_DIR}/Ambertide.app)
# The programs of the bundle, and all that lies beside them there.
add_custom_target(bundle)

# ambertide_program(<path> <name> [SEES paths...] [LINK targets...]): the program src/<path>/main.cpp, over the folder's
# library when it has one, put among the bundle's programs.
function(ambertide_program path name)
  cmake_parse_arguments(PROGRAM "" "" "SEES;LINK" ${ARGN})
  ambertide_targets(seen ${path} ${PROGRAM_SEES})
  add_executable(${name} ${PROJECT_SOURCE_DIR}/src/${path}/main.cpp)
  target_link_libraries(${name} PRIVATE ${seen} ${PROGRAM_LINK})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${AMBERTIDE_BUNDLE_DIR}/Contents/MacOS)
  add_dependencies(bundle ${name})
  install(TARGETS ${name} RUNTIME DESTINATION ${AMBERTIDE_INSTALLED_BUNDLE}/Contents/MacOS)
endfunction()
