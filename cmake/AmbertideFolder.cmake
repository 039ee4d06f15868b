# Qt 6.4's meta-object compiler stumbles over some of libstdc++'s headers, which it need not read: these are the guards of
# <compare> and <coroutine>.
set(CMAKE_AUTOMOC_MOC_OPTIONS -D_COMPARE -D_GLIBCXX_COROUTINE)

# What every target of the project is compiled with.
add_library(ambertide_options INTERFACE)
target_include_directories(ambertide_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(ambertide_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
  $<$<BOOL:${AMBERTIDE_WERROR}>:-Werror>)
target_compile_definitions(ambertide_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS)
if(AMBERTIDE_SANITIZE)
  target_compile_options(ambertide_options INTERFACE -fsanitize=${AMBERTIDE_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(ambertide_options INTERFACE -fsanitize=${AMBERTIDE_SANITIZE})
endif()

# Told which standard the compiler follows, moc 6.4 fails to parse libstdc++'s <concepts> and <coroutine>.
set(CMAKE_AUTOMOC_COMPILER_PREDEFINES OFF)

# ambertide_folder(<name> [MOC] [SOURCES files...] [LINK targets...] [TESTS names...] [TEST_LINK targets...] [LABEL label])
#
# Declares the library ambertide_<name> of the folder that calls it and one Qt Test program for each of TESTS,
# read from tests/<name>/<test>.cpp. A folder without SOURCES holds headers alone. MOC runs Qt's meta-object
# compiler over it. LABEL is given to its tests: those of the label "threads" also run under the thread sanitizer.
function(ambertide_folder name)
  cmake_parse_arguments(FOLDER "MOC" "LABEL" "SOURCES;LINK;TESTS;TEST_LINK" ${ARGN})
  set(library ambertide_${name})
  if(FOLDER_SOURCES)
    add_library(${library} STATIC ${FOLDER_SOURCES})
    target_link_libraries(${library} PUBLIC ambertide_options ${FOLDER_LINK})
    set_target_properties(${library} PROPERTIES AUTOMOC ${FOLDER_MOC})
  else()
    add_library(${library} INTERFACE)
    target_link_libraries(${library} INTERFACE ambertide_options ${FOLDER_LINK})
  endif()
  if(NOT BUILD_TESTING)
    return()
  endif()
  foreach(test IN LISTS FOLDER_TESTS)
    ambertide_test(${name} ${test} LINK ${library} ${FOLDER_TEST_LINK} LABEL "${FOLDER_LABEL}")
  endforeach()
endfunction()

# ambertide_test(<folder> <test> [LINK targets...] [LABEL label])
function(ambertide_test folder test)
  cmake_parse_arguments(TEST "" "LABEL" "LINK" ${ARGN})
  set(target test_${folder}_${test})
  add_executable(${target} ${PROJECT_SOURCE_DIR}/tests/${folder}/${test}.cpp)
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${target} PRIVATE ${TEST_LINK} ambertide_test_support Qt6::Test)
  if(Qt6_VERSION VERSION_GREATER_EQUAL 6.6) # its QTRY macros shorten a number of milliseconds
    set_source_files_properties(${PROJECT_SOURCE_DIR}/tests/${folder}/${test}.cpp PROPERTIES
      COMPILE_OPTIONS -Wno-conversion)
  endif()
  target_compile_definitions(${target} PRIVATE
    AMBERTIDE_BUNDLE="${AMBERTIDE_BUNDLE_DIR}" AMBERTIDE_SOURCES="${PROJECT_SOURCE_DIR}")
  add_test(NAME ${folder}.${test} COMMAND ${target})
  set_tests_properties(${folder}.${test} PROPERTIES
    TIMEOUT 120 LABELS "${TEST_LABEL}"
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8")
endfunction()

# Where the build puts the application: the same bundle folder that is installed.
set(AMBERTIDE_BUNDLE_DIR ${PROJECT_BINARY_DIR}/Ambertide.app)

# ambertide_bundle_program(<target> <file name>): puts a program beside the others of the bundle.
function(ambertide_bundle_program target file)
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME ${file} RUNTIME_OUTPUT_DIRECTORY ${AMBERTIDE_BUNDLE_DIR}/Contents/MacOS)
  install(TARGETS ${target} RUNTIME DESTINATION lib/ambertide/Contents/MacOS)
endfunction()
