#include "editor/themes/RobotoFont.h"

#include "RobotoTypeface.h"

juce::Typeface::Ptr createRobotoTypeface(bool bold)
{
    using namespace RobotoTypeface;

    return bold ? juce::Typeface::createSystemTypefaceFor(RobotoBold_ttf, RobotoBold_ttfSize)
                : juce::Typeface::createSystemTypefaceFor(RobotoRegular_ttf, RobotoRegular_ttfSize);
}
