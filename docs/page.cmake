# SPDX-License-Identifier: GPL-3.0-or-later
# cmake -D LOWDOWN=program -D TEXT=file.md -D PAGE=file.html -P page.cmake
# Makes a page for a browser of a text in Markdown: page.html.in with the text in it. Links to other texts become links
# to their pages.
execute_process(COMMAND "${LOWDOWN}" -thtml --out-no-smarty "${TEXT}" OUTPUT_VARIABLE body
  COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "href=\"([^\":]*)\\.md([\"#])" "href=\"\\1.html\\2" body "${body}")
string(REGEX MATCH "<h1[^>]*>([^<]*)" heading "${body}")
set(title "${CMAKE_MATCH_1}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/page.html.in" "${PAGE}" @ONLY NEWLINE_STYLE UNIX)
file(TOUCH "${PAGE}")
