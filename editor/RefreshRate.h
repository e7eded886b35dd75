/**
    Gives the displays that tell no refresh rate the one that virtual displays seldom exceed.

    JUCE looks for areas to be drawn at the display's rate, and a hundred times a second where a display tells
    none: those are the virtual ones (VNC, Xvfb). Each look wakes two threads, and is nearly all that an idle window costs.
    Displays that tell their rate keep it. Windows take the rate over when they are made.

    Thread: message thread.
*/
#pragma once

void supplyMissingRefreshRates();
