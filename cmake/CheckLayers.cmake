# SPDX-License-Identifier: GPL-3.0-or-later
# Holds the includes of every layer's files against the layers that it names. TABLE has a call of quillbox_check_layer
# for each; SOURCE_DIR is src.

cmake_minimum_required(VERSION 3.25)

# Sets `result` to the layers (folders) whose headers `file` includes. The folder that the file is in and its layer's own
# `folder`, above a system's subfolder, are left out.
function(quillbox_included_layers result file folder)
  file(STRINGS "${file}" includes REGEX "^#include \"")
  set(layers "")
  foreach(include IN LISTS includes)
    string(REGEX REPLACE "^#include \"(.*)/[^/]*\".*" "\\1" layer "${include}")
    list(APPEND layers "${layer}")
  endforeach()
  list(REMOVE_DUPLICATES layers)
  cmake_path(GET file PARENT_PATH here)
  file(RELATIVE_PATH here "${SOURCE_DIR}" "${here}")
  list(REMOVE_ITEM layers "${folder}" "${here}")
  set(${result} "${layers}" PARENT_SCOPE)
endfunction()

function(quillbox_check_files files folder named what)
  foreach(file IN LISTS files)
    quillbox_included_layers(included "${file}" "${folder}")
    foreach(layer IN LISTS included)
      if(NOT layer IN_LIST named)
        message(SEND_ERROR "${file} includes ${layer}, which ${folder}/CMakeLists.txt does not name among its ${what}")
      endif()
      set_property(GLOBAL APPEND PROPERTY USED ${layer})
    endforeach()
  endforeach()
endfunction()

# What differs from system to system is in posix/ and win32/. One platform is of one system alone, and the toolkit's
# layer has files a port of the toolkit.
function(quillbox_check_neutral files)
  foreach(file IN LISTS files)
    if(file MATCHES "/(posix|win32)/[^/]*$|/platform/windows/[^/]*$|/ui/wx/[^/]*$")
      continue()
    endif()
    file(STRINGS "${file}" lines
      REGEX "^ *# *(el)?if.*(_WIN(32|64)|__MINGW|_MSC_VER|__linux|__unix)|^#include <(windows|unistd|fcntl|dirent|sys/.*)\\.h>")
    foreach(line IN LISTS lines)
      message(SEND_ERROR "${file} is for one kind of host, which only the files in posix/ and win32/ are: ${line}")
    endforeach()
  endforeach()
endfunction()

# The headers in posix/ and win32/ are for the sources there alone, and so may include what those may. The toolkit's
# layer is built with one of its ports; all are looked at.
function(quillbox_check_layer folder sources links private_links)
  set_property(GLOBAL PROPERTY USED "")
  file(GLOB headers "${SOURCE_DIR}/${folder}/*.h")
  file(GLOB host_headers "${SOURCE_DIR}/${folder}/posix/*.h" "${SOURCE_DIR}/${folder}/win32/*.h")
  list(TRANSFORM sources PREPEND "${SOURCE_DIR}/${folder}/")
  file(GLOB ports "${SOURCE_DIR}/${folder}/port_*.cpp")
  list(APPEND sources ${ports})
  list(REMOVE_DUPLICATES sources)
  quillbox_check_files("${headers}" ${folder} "${links}" LINKS)
  list(APPEND sources ${host_headers})
  quillbox_check_files("${sources}" ${folder} "${links};${private_links}" "LINKS or PRIVATE_LINKS")
  set(files ${headers} ${sources})
  quillbox_check_neutral("${files}")
  get_property(used GLOBAL PROPERTY USED)
  foreach(layer ${links} ${private_links})
    if(NOT layer IN_LIST used)
      message(SEND_ERROR "${folder}/CMakeLists.txt names ${layer}, which none of its files includes")
    endif()
  endforeach()
endfunction()

include("${TABLE}")
