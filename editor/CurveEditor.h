/**
    A component of the framework's that shows a curve with handles to drag. This product shows no curve and has
    none of it but the interface of its listeners, by which an editor hears of the user's work on it.

    Thread: message thread.
*/
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

class CurveEditor
{
public:
    class Handle;

    /** The index in these calls is that of the curve. */
    class Listener
    {
    public:
        virtual ~Listener() = default;

        virtual void handleDragStarted(CurveEditor*, int, Handle&) {}
        virtual void handleDragEnded(CurveEditor*, int, Handle&) {}
        virtual void handlePositionChanged(CurveEditor*, int, Handle&) {}
        virtual void handleFocusChanged(CurveEditor*, int) {}
        virtual void handleDoubleClick(CurveEditor*, int, Handle&) {}
        virtual void backGroundDoubleClick(CurveEditor*, const juce::Point<float>&) {}
        virtual void backGroundClick(CurveEditor*, const juce::Point<float>&, const juce::ModifierKeys&) {}

        /** Asks for the text that stands beside the mouse pointer; empty for none. */
        virtual void getCursorInfoFromPoint(CurveEditor*, const juce::Point<float>&, juce::String& text)
        {
            text.clear();
        }
    };
};
