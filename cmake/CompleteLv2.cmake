# Completes the descriptions that JUCE writes for an LV2, until lv2_validate finds nothing: hosts list the plug-in
# among the reverbs, its licence is told, the property that presets set is declared, the empty mail address goes, and
# features and extensions stand where each belongs.
#
#   cmake -D BUNDLE=Ambrel.lv2 -P CompleteLv2.cmake

macro(open_description name)
    set(description "${BUNDLE}/${name}")
    file(READ "${description}" text)
endmacro()

macro(close_description)
    file(WRITE "${description}" "${text}")
endmacro()

function(replace_lines old new)
    string(FIND "${text}" "${old}" position)
    if(position EQUAL -1)
        message(FATAL_ERROR "${description}: no '${old}' to replace")
    endif()
    string(REPLACE "${old}" "${new}" changed "${text}")
    set(text "${changed}" PARENT_SCOPE)
endfunction()

open_description(dsp.ttl)
replace_lines("\ta lv2:Plugin ;\n"
    "\ta lv2:ReverbPlugin , lv2:Plugin , doap:Project ;\n\tdoap:license <https://spdx.org/licenses/GPL-3.0-or-later> ;\n")
replace_lines("\t\tfoaf:mbox <> ;\n" "")
string(APPEND text
    "\nplug:Program\n\ta rdf:Property ;\n\trdfs:label \"Program\" ;\n\trdfs:comment \"The preset's place in the list, from 0\" ;\n\trdfs:range xsd:int .\n")
close_description()

open_description(ui.ttl)
replace_lines("\t\topts:interface ,\n\t\tui:noUserResize ,\n\t\tui:resize ;\n" "\t\topts:interface ,\n\t\tui:resize ;\n")
replace_lines("\t\tui:noUserResize ,\n\t\topts:interface ,\n\t\topts:options ;\n" "\t\tui:noUserResize ,\n\t\topts:options ;\n")
close_description()
