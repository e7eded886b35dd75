/**
    A curve editor of the framework's for the bands of an equalizer. As with CurveEditor, this product has the
    interface of its listeners alone.

    Thread: message thread.
*/
#pragma once

class EqualizerCurveEditor
{
public:
    struct BandDefinition;

    /** The index in these calls is that of the band. */
    class Listener
    {
    public:
        virtual ~Listener() = default;

        virtual void bandDefinitionChanged(EqualizerCurveEditor*, int, BandDefinition&) {}
        virtual void resetBand(EqualizerCurveEditor*, int) {}
        virtual void activeBandChanged(EqualizerCurveEditor*, int) {}
        virtual void newBandRequest(EqualizerCurveEditor*, float, float) {}
        virtual void bandModeChanged(EqualizerCurveEditor*, bool, bool) {}
    };
};
