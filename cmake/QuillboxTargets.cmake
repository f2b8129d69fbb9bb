# SPDX-License-Identifier: GPL-3.0-or-later
# How layers and their tests are declared, so that every target has the same warnings and a layer sees only the layers
# that it links.

# Warnings are errors where CMAKE_COMPILE_WARNING_AS_ERROR says so, as our presets do; a compiler that we don't know may
# warn of more.
add_library(quillbox_warnings INTERFACE)
target_compile_options(quillbox_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
  # g++ 12 reports overlaps in optimised std::string concatenations that do not exist.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  # clang includes sign conversions in -Wconversion, g++ does not.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>)

# The kind of host that is built for, as the lists of sources are named; its folders are in small letters.
if(WIN32)
  set(QUILLBOX_HOST WIN32)
else()
  set(QUILLBOX_HOST POSIX)
endif()
string(TOLOWER "${QUILLBOX_HOST}" QUILLBOX_HOST_FOLDER)

# Where the registry editor for old disks is built, and how an installed program gets to it from its own folder. A
# Windows looks for its own in the folder of a running program first; elsewhere wine has a program of that name.
set(QUILLBOX_EDITOR_FOLDER "${CMAKE_BINARY_DIR}/bin")
set(QUILLBOX_PRIVATE_DIR "${CMAKE_INSTALL_LIBEXECDIR}/quillbox")
if(WIN32)
  string(APPEND QUILLBOX_EDITOR_FOLDER "/offline")
  set(QUILLBOX_EDITOR_FROM_PROGRAM offline)
else()
  file(RELATIVE_PATH QUILLBOX_EDITOR_FROM_PROGRAM "${CMAKE_INSTALL_FULL_BINDIR}"
    "${CMAKE_INSTALL_FULL_LIBEXECDIR}/quillbox")
endif()

# Where an installation has the manual, and how a program gets to it from its own folder.
set(QUILLBOX_MANUAL_DIR "${CMAKE_INSTALL_DATAROOTDIR}/doc/quillbox/manual")
if(WIN32)
  set(QUILLBOX_MANUAL_FROM_PROGRAM docs)
else()
  file(RELATIVE_PATH QUILLBOX_MANUAL_FROM_PROGRAM "${CMAKE_INSTALL_FULL_BINDIR}"
    "${CMAKE_INSTALL_FULL_DATAROOTDIR}/doc/quillbox/manual")
endif()

# quillbox_layer(NAME SOURCES file... [POSIX file...] [WIN32 file...] LINKS target... [PRIVATE_LINKS target...]
#   [ONLY posix|win32])
# A static library `quillbox_NAME`. LINKS names every layer that its headers include, PRIVATE_LINKS those that only its
# sources include: who uses this layer does not see them. The test "layers" holds every include against these lists.
# POSIX and WIN32 are the sources for one kind of host, by their names in the layer's folder posix/ or win32/. Headers
# there are seen by the sources of that folder alone. Both kinds are in the test on every host. ONLY: the kind of host
# that all of the layer is for.
function(quillbox_layer name)
  cmake_parse_arguments(arg "" "ONLY" "SOURCES;POSIX;WIN32;LINKS;PRIVATE_LINKS" ${ARGN})
  set(target quillbox_${name})
  if(arg_ONLY AND NOT arg_ONLY STREQUAL QUILLBOX_HOST_FOLDER)
    set(skipped TRUE)
  endif()
  list(TRANSFORM arg_POSIX PREPEND posix/)
  list(TRANSFORM arg_WIN32 PREPEND win32/)
  set(host_sources ${arg_${QUILLBOX_HOST}})
  if((arg_SOURCES OR host_sources) AND NOT skipped)
    add_library(${target} STATIC ${arg_SOURCES} ${host_sources})
    set(scope PUBLIC)
    target_link_libraries(${target} PRIVATE quillbox_warnings ${arg_PRIVATE_LINKS})
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_link_libraries(${target} ${scope} ${arg_LINKS})
  quillbox_include_root(${target} ${scope} "${CMAKE_CURRENT_SOURCE_DIR}")
  if(host_sources)
    quillbox_include_root(${target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/${QUILLBOX_HOST_FOLDER}")
  endif()
  file(RELATIVE_PATH folder "${CMAKE_SOURCE_DIR}/src" "${CMAKE_CURRENT_SOURCE_DIR}")
  set_property(GLOBAL PROPERTY QUILLBOX_FOLDER_OF_${target} "${folder}")
  set_property(GLOBAL APPEND PROPERTY QUILLBOX_LAYERS ${target})
  set_property(GLOBAL PROPERTY QUILLBOX_SOURCES_OF_${target} ${arg_SOURCES} ${arg_POSIX} ${arg_WIN32})
  set_property(GLOBAL PROPERTY QUILLBOX_LINKS_OF_${target} ${arg_LINKS})
  set_property(GLOBAL PROPERTY QUILLBOX_PRIVATE_LINKS_OF_${target} ${arg_PRIVATE_LINKS})
endfunction()

# quillbox_header_library(TARGET NAME...)
# Lets the sources of `target` include a library of headers that Debian installs as /usr/include/NAME, a file or a
# folder. For another system they are copied: the rest of that folder is this host's alone.
function(quillbox_header_library target)
  foreach(name IN LISTS ARGN)
    if(NOT EXISTS "/usr/include/${name}")
      message(FATAL_ERROR "/usr/include/${name} is not there; debian-packages.txt names its package")
    endif()
    if(CMAKE_CROSSCOMPILING)
      file(COPY "/usr/include/${name}" DESTINATION "${CMAKE_BINARY_DIR}/headers")
      target_include_directories(${target} SYSTEM PRIVATE "${CMAKE_BINARY_DIR}/headers")
    endif()
  endforeach()
endfunction()

# quillbox_program_facts(TARGET DESCRIPTION text [ICON file])
# For Windows: a program's version, manifest and icon. Elsewhere programs have none.
function(quillbox_program_facts target)
  if(NOT WIN32)
    return()
  endif()
  cmake_parse_arguments(arg "" "DESCRIPTION;ICON" "" ${ARGN})
  set(templates "${CMAKE_SOURCE_DIR}/src/app/win32")
  set(manifest "${CMAKE_CURRENT_BINARY_DIR}/${target}.manifest")
  set(icon "")
  if(arg_ICON)
    # The system takes the icon with the lowest number for the program's.
    set(icon "1 ICON \"${CMAKE_CURRENT_SOURCE_DIR}/${arg_ICON}\"")
  endif()
  configure_file("${templates}/program.manifest.in" "${manifest}" @ONLY)
  configure_file("${templates}/program.rc.in" "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc" @ONLY)
  target_sources(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
  set_source_files_properties("${CMAKE_CURRENT_BINARY_DIR}/${target}.rc" PROPERTIES
    OBJECT_DEPENDS "${manifest};${CMAKE_CURRENT_SOURCE_DIR}/${arg_ICON}")
endfunction()

# Adds the test "layers": that each layer names every layer that its files include.
function(quillbox_check_layers)
  get_property(layers GLOBAL PROPERTY QUILLBOX_LAYERS)
  set(table "")
  foreach(layer IN LISTS layers)
    get_property(folder GLOBAL PROPERTY QUILLBOX_FOLDER_OF_${layer})
    get_property(sources GLOBAL PROPERTY QUILLBOX_SOURCES_OF_${layer})
    foreach(kind LINKS PRIVATE_LINKS)
      set(${kind} "")
      get_property(targets GLOBAL PROPERTY QUILLBOX_${kind}_OF_${layer})
      foreach(target IN LISTS targets)
        get_property(linked GLOBAL PROPERTY QUILLBOX_FOLDER_OF_${target})
        list(APPEND ${kind} ${linked})
      endforeach()
    endforeach()
    string(APPEND table "quillbox_check_layer(${folder} \"${sources}\" \"${LINKS}\" \"${PRIVATE_LINKS}\")\n")
  endforeach()
  file(WRITE "${CMAKE_BINARY_DIR}/layers.cmake" "${table}")
  add_test(NAME layers COMMAND ${CMAKE_COMMAND} -D SOURCE_DIR=${CMAKE_SOURCE_DIR}/src
    -D TABLE=${CMAKE_BINARY_DIR}/layers.cmake -P ${CMAKE_SOURCE_DIR}/cmake/CheckLayers.cmake)
endfunction()

# Gives `target` an include root that holds only the headers of `source_folder`, under its path below src/.
function(quillbox_include_root target scope source_folder)
  file(RELATIVE_PATH folder "${CMAKE_SOURCE_DIR}/src" "${source_folder}")
  string(REPLACE "/" "_" flat "${folder}")
  set(root "${CMAKE_BINARY_DIR}/include/${flat}")
  file(MAKE_DIRECTORY "${root}/${folder}")
  # A link for each header and not for the folder, whose link would include its subfolders, which are other layers.
  file(GLOB headers CONFIGURE_DEPENDS "${source_folder}/*.h")
  foreach(header IN LISTS headers)
    get_filename_component(file "${header}" NAME)
    file(CREATE_LINK "${header}" "${root}/${folder}/${file}" SYMBOLIC)
  endforeach()
  target_include_directories(${target} ${scope} "${root}")
endfunction()

# quillbox_test(NAME SOURCES file... [POSIX file...] [WIN32 file...] LINKS target... [USES program...] [DISPLAY]
#   [ONLY posix|win32])
# A GoogleTest program in tests/, found by ctest test by test. DISPLAY: its tests open real windows and run one
# at a time under the virtual display that ./test starts. USES: programs of ours that the tests start. POSIX and WIN32
# are the sources for one kind of host, in posix/ and win32/ as a layer's, whose headers there they see. ONLY: as a
# layer's.
function(quillbox_test name)
  cmake_parse_arguments(arg "DISPLAY" "ONLY" "SOURCES;POSIX;WIN32;LINKS;USES" ${ARGN})
  if(NOT QUILLBOX_TESTS)
    return()
  endif()
  file(RELATIVE_PATH folder "${CMAKE_SOURCE_DIR}/src" "${CMAKE_CURRENT_SOURCE_DIR}")
  foreach(kind SOURCES POSIX WIN32)
    string(TOLOWER "${kind}/" subfolder)
    string(REPLACE "sources/" "" subfolder "${subfolder}")
    list(TRANSFORM arg_${kind} PREPEND "${CMAKE_SOURCE_DIR}/tests/${folder}/${subfolder}")
    set_property(GLOBAL APPEND PROPERTY QUILLBOX_TEST_FILES ${arg_${kind}})
  endforeach()
  if(arg_ONLY AND NOT arg_ONLY STREQUAL QUILLBOX_HOST_FOLDER)
    return()
  endif()
  set(host_sources ${arg_${QUILLBOX_HOST}})
  set(target ${name}_test)
  add_executable(${target} ${arg_SOURCES} ${host_sources})
  if(host_sources)
    quillbox_include_root(${target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/${QUILLBOX_HOST_FOLDER}")
  endif()
  target_link_libraries(${target} PRIVATE quillbox_warnings ${arg_LINKS} quillbox_host_tricks GTest::gtest GTest::gmock
    GTest::gtest_main)
  target_include_directories(${target} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  if(arg_USES)
    add_dependencies(${target} ${arg_USES})
  endif()
  quillbox_test_folder(${target} QUILLBOX_BIN_DIR "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
  quillbox_test_folder(${target} QUILLBOX_TESTS_DIR "${CMAKE_SOURCE_DIR}/tests")
  set(properties TIMEOUT 120)
  if(arg_DISPLAY)
    list(APPEND properties LABELS display RUN_SERIAL TRUE)
  endif()
  gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST PROPERTIES ${properties})
endfunction()

# Gives the tests of `target` a folder of the project as the macro `macro`, under its name for the running test.
function(quillbox_test_folder target macro folder)
  target_compile_definitions(${target} PRIVATE ${macro}="${QUILLBOX_EMULATED_ROOT}${folder}")
endfunction()

# GoogleTest as it is installed; for another system from the sources that Debian installs.
function(quillbox_find_googletest)
  if(NOT CMAKE_CROSSCOMPILING)
    find_package(GTest REQUIRED)
    return()
  endif()
  set(INSTALL_GTEST OFF)
  set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)
  add_subdirectory(/usr/src/googletest googletest EXCLUDE_FROM_ALL SYSTEM)
  foreach(library gtest gtest_main gmock)
    target_compile_options(${library} PRIVATE -w)
  endforeach()
endfunction()

# Fails when a file of tests/ is not in a test program: its tests would never run.
function(quillbox_require_all_tests)
  get_property(registered GLOBAL PROPERTY QUILLBOX_TEST_FILES)
  file(GLOB_RECURSE files CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/tests/*.cpp")
  set(paths "")
  foreach(file IN LISTS registered)
    get_filename_component(path "${file}" ABSOLUTE)
    list(APPEND paths "${path}")
  endforeach()
  foreach(file IN LISTS files)
    if(NOT file IN_LIST paths)
      message(FATAL_ERROR "${file} is in no quillbox_test(); add it to the CMakeLists.txt of the layer that it tests")
    endif()
  endforeach()
endfunction()
