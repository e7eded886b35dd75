# Writes editor/FontAwesomeIcons.h from the list of icons that comes with Font Awesome.
#
#   cmake -P tools/artwork/make-font-awesome-header.cmake
#
# The list (resources/fonts/font-awesome/variables.less, from the npm package font-awesome) has one line
#   @fa-var-align-center: "\f037";
# for each published name. For another release of the font, lay its variables.less and its TrueType file over
# the ones in that folder and run this again. With -D CHECK=ON before -P nothing is written, and it is an error
# if the header is not the one that would be.

cmake_minimum_required(VERSION 3.20)

get_filename_component(root "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)
set(icon_list "${root}/resources/fonts/font-awesome/variables.less")
set(header "${root}/editor/FontAwesomeIcons.h")

file(STRINGS "${icon_list}" version_line REGEX "^@fa-version:")
string(REGEX REPLACE ".*\"([0-9.]+)\".*" "\\1" version "${version_line}")
file(STRINGS "${icon_list}" icon_lines REGEX "^@fa-var-")
list(LENGTH icon_lines icon_count)
if(icon_count EQUAL 0)
    message(FATAL_ERROR "No icons in ${icon_list}")
endif()

# Names of icons that JUCE's CMake support and some compilers define as macros on the systems of that name.
set(platform_macros ANDROID LINUX)

set(constants "")
foreach(line IN LISTS icon_lines)
    if(NOT line MATCHES "^@fa-var-([a-z0-9-]+): *\"\\\\([0-9a-f]+)\"")
        message(FATAL_ERROR "Not the line of an icon: ${line}")
    endif()
    string(TOUPPER "${CMAKE_MATCH_1}" name)
    string(REPLACE "-" "_" name "${name}")
    set(code "${CMAKE_MATCH_2}")
    if(name MATCHES "^[0-9]")
        string(PREPEND name "_")
    endif()

    # UTF-8 of a character from U+0800 to U+FFFF: 1110xxxx 10xxxxxx 10xxxxxx
    math(EXPR byte_1 "0xE0 | (0x${code} >> 12)" OUTPUT_FORMAT HEXADECIMAL)
    math(EXPR byte_2 "0x80 | ((0x${code} >> 6) & 0x3F)" OUTPUT_FORMAT HEXADECIMAL)
    math(EXPR byte_3 "0x80 | (0x${code} & 0x3F)" OUTPUT_FORMAT HEXADECIMAL)
    string(REPLACE "0x" "\\x" bytes "${byte_1}${byte_2}${byte_3}")
    string(APPEND constants "inline constexpr const char* ${name} = \"${bytes}\";\n")
endforeach()

set(undefine "")
foreach(macro IN LISTS platform_macros)
    string(APPEND undefine "#undef ${macro}\n")
endforeach()

string(CONCAT content "/**
    Names for the glyphs of the icon font Font Awesome ${version}: the published names of the icons in capitals,
    each the UTF-8 of one character of the Private Use Area. For IconButton::setIconFromFontAwesome, and for
    drawing text in the font itself; make a juce::String of one with juce::String::fromUTF8. An icon with
    several published names has several constants.

    Written by tools/artwork/make-font-awesome-header.cmake; not to be edited by hand.
*/
#pragma once

// Two systems' names are also names of icons, and some build systems define them as macros. What they say,
// the compiler's own macros (__linux__, __ANDROID__) say as well.
${undefine}
namespace FontAwesomeIcons
{
${constants}} // namespace FontAwesomeIcons
")

if(CHECK)
    file(READ "${header}" present)
    if(NOT present STREQUAL content)
        message(FATAL_ERROR "${header} is not what the list of icons gives: run this script without CHECK")
    endif()
    message(STATUS "${icon_count} icons of Font Awesome ${version}, as in ${header}")
else()
    file(WRITE "${header}" "${content}")
    message(STATUS "${icon_count} icons of Font Awesome ${version}: ${header}")
endif()
