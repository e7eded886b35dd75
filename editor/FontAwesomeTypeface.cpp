#include "editor/FontAwesomeTypeface.h"

#include "FontAwesomeData.h"

namespace
{
/** Goes with the library, before the library counts what was left behind. */
class IconTypeface : private juce::DeletedAtShutdown
{
public:
    ~IconTypeface() override { clearSingletonInstance(); }

    const juce::Typeface::Ptr typeface = juce::Typeface::createSystemTypefaceFor(
        FontAwesomeData::fontawesomewebfont_ttf, FontAwesomeData::fontawesomewebfont_ttfSize);

    JUCE_DECLARE_SINGLETON_SINGLETHREADED_MINIMAL(IconTypeface)
};

JUCE_IMPLEMENT_SINGLETON(IconTypeface)
} // namespace

const juce::Typeface::Ptr& FontAwesome_ptr() { return IconTypeface::getInstance()->typeface; }
