# Writes one format of the GNOME Shell extension into OUTPUT (the folder named
# after the UUID):
#   cmake -DFORMAT=legacy|modules -DSOURCE=<lumenote@tallywise.com folder>
#         -DOUTPUT=<folder> -DPROJECT_VERSION=x.y.z -P build_extension.cmake
#
# modules (GNOME Shell 45 and later) copies the ES modules as they are.
# legacy (GNOME Shell 43 and 44) loads files through imports.misc's
# extension imports, which export a file's top-level `var` and `function`
# names and know no import/export statements, so each line that starts with
#   export function f     becomes  function f
#   export const X        becomes  var X
#   export class C        becomes  var C = class C
#   import * as M from "./m.js";  becomes  const M = <extension>.imports.m;
# and extension_legacy.js becomes extension.js. The sources use these forms
# only at the start of a line (the node test checks the converted files).
cmake_minimum_required(VERSION 3.25)

set(modules focus_report.js focus_service.js)
file(REMOVE_RECURSE ${OUTPUT})
file(MAKE_DIRECTORY ${OUTPUT})

if(FORMAT STREQUAL "modules")
  set(SHELL_VERSIONS "\"45\", \"46\", \"47\", \"48\", \"49\"")
  foreach(module IN LISTS modules ITEMS extension.js)
    file(COPY ${SOURCE}/${module} DESTINATION ${OUTPUT})
  endforeach()
elseif(FORMAT STREQUAL "legacy")
  set(SHELL_VERSIONS "\"43\", \"44\"")
  foreach(module IN LISTS modules)
    file(READ ${SOURCE}/${module} text)
    string(REGEX REPLACE "(^|\n)export function " "\\1function " text "${text}")
    string(REGEX REPLACE "(^|\n)export const ([A-Za-z_]+)" "\\1var \\2" text "${text}")
    string(REGEX REPLACE "(^|\n)export class ([A-Za-z_]+)" "\\1var \\2 = class \\2" text "${text}")
    string(REGEX REPLACE
      "(^|\n)import \\* as ([A-Za-z_]+) from \"\\./([A-Za-z_]+)\\.js\";"
      "\\1const \\2 = imports.misc.extensionUtils.getCurrentExtension().imports.\\3;"
      text "${text}")
    if(text MATCHES "(^|\n)(import|export) ")
      message(FATAL_ERROR "${module}: a module statement the legacy format cannot hold")
    endif()
    file(WRITE ${OUTPUT}/${module} "${text}")
  endforeach()
  file(READ ${SOURCE}/extension_legacy.js text)
  file(WRITE ${OUTPUT}/extension.js "${text}")
else()
  message(FATAL_ERROR "FORMAT must be legacy or modules, not '${FORMAT}'")
endif()

# extensions.gnome.org counts versions as whole numbers: the project's
# version x.y.z becomes x*10000 + y*100 + z.
string(REGEX MATCH "^([0-9]+)\\.([0-9]+)\\.([0-9]+)" _ "${PROJECT_VERSION}")
math(EXPR LUMENOTE_EXTENSION_VERSION "${CMAKE_MATCH_1} * 10000 + ${CMAKE_MATCH_2} * 100 + ${CMAKE_MATCH_3}")
configure_file(${SOURCE}/metadata.json.in ${OUTPUT}/metadata.json @ONLY)
