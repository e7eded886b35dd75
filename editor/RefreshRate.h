/**
    Gives the displays that tell no refresh rate one that is smooth to the eye.

    JUCE looks for areas to be drawn at the display's rate, and a hundred times a second where a display tells
    none, as virtual ones do (VNC, Xvfb). Each look wakes two threads, and is nearly all that an idle window costs.
    Displays that tell their rate keep it. Windows take the rate over when they are made.

    Thread: message thread.
*/
#pragma once

void supplyMissingRefreshRates();
