/**
    What every format is held to, one group after the other: a host's usual life with a plug-in, at every rate and
    block length that is met in practice, and what goes wrong in hosts at times.
*/
#pragma once

#include "tests/hosts/PlugIn.h"

namespace hosts
{

/** @param numPresets  how many preset files were installed
    @return failures */
int checkFormat(const Loader&, int numPresets);

/** Opens and closes the window while audio runs and parameters move. Needs a display. */
int checkEditor(const Loader&);

/** What holds between formats: they sound alike, name the same programs and read each other's states. All of them
    are loaded into this one process. */
int checkAcrossFormats(const std::vector<Loader>&);

/** Gives a format's message loop time for what it does on its own. */
void runMessageLoop(int milliseconds);

} // namespace hosts
