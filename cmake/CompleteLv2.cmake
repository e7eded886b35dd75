# Completes the description that JUCE writes for an LV2: hosts list the plug-in among the reverbs, its licence is
# told, and the empty mail address goes.
#
#   cmake -D DESCRIPTION=dsp.ttl -P CompleteLv2.cmake

file(READ "${DESCRIPTION}" text)

function(replace_line old new)
    string(FIND "${text}" "${old}\n" position)
    if(position EQUAL -1)
        message(FATAL_ERROR "${DESCRIPTION}: no line '${old}' to replace")
    endif()
    string(REPLACE "${old}\n" "${new}" changed "${text}")
    set(text "${changed}" PARENT_SCOPE)
endfunction()

replace_line("\ta lv2:Plugin ;"
    "\ta lv2:ReverbPlugin , lv2:Plugin ;\n\tdoap:license <https://spdx.org/licenses/GPL-3.0-or-later> ;\n")
replace_line("\t\tfoaf:mbox <> ;" "")

file(WRITE "${DESCRIPTION}" "${text}")
