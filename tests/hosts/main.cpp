/** Runs the installed plug-ins as hosts do.

    Usage: ambrel_host PREFIX VST3|LV2|VST2            one format without its window
           ambrel_host PREFIX VST3|LV2|VST2 window     its window alone, which needs a display
           ambrel_host PREFIX across                   what holds between the formats

    PREFIX is where the product was installed: formats are looked for below PREFIX/lib. */
#include "tests/hosts/PlugIn.h"

#include <cstdlib>

namespace
{
/** Empty for a format that this host does not know. */
hosts::Loader makeLoader(const std::string& format, const std::string& libraries)
{
    if (format == "VST3" || format == "LV2")
        return hosts::makeJuceLoader(format, libraries + (format == "LV2" ? "/lv2" : "/vst3"));
#if AMBREL_HOST_HAS_VST2
    if (format == "VST2")
        return hosts::makeVst2Loader(libraries + "/vst/Ambrel/Ambrel.so");
#endif
    return {};
}

int run(const juce::File& prefix, const std::string& what, bool isWindowOnly)
{
    const auto libraries = prefix.getChildFile("lib").getFullPathName().toStdString();
    if (what == "across")
    {
        std::vector<hosts::Loader> all;
        for (const auto* format : {"VST3", "LV2", "VST2"})
            if (const auto load = makeLoader(format, libraries))
                all.push_back(load);
        return hosts::checkAcrossFormats(all);
    }

    juce::FloatVectorOperations::disableDenormalisedNumberSupport(false);
    const auto load = makeLoader(what, libraries);
    if (!load)
    {
        std::fprintf(stderr, "This host knows no %s\n", what.c_str());
        return 1;
    }
    if (isWindowOnly)
        return hosts::checkEditor(load);

    hosts::Checks checks;
    checks.expect(load() != nullptr, "it loads");
#if JUCE_INTEL || JUCE_ARM
    // Loading the plug-in turns denormals off on this thread: the sign that no linker has left its start-up code out.
    checks.expect(juce::FloatVectorOperations::areDenormalsDisabled(), "its start-up code has run");
#endif
    const auto presets =
        prefix.getChildFile("share/Ambrel/Presets").findChildFiles(juce::File::findFiles, true, "*.xml");
    return checks.failures + hosts::checkFormat(load, presets.size());
}
} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() < 2)
        return EXIT_FAILURE;
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    // By this JUCE knows a program of its own and takes X's errors calmly.
    juce::JUCEApplicationBase::createInstance = []() -> juce::JUCEApplicationBase* { return nullptr; };
    const juce::ScopedJuceInitialiser_GUI library;
    const auto prefix = juce::File::getCurrentWorkingDirectory().getChildFile(juce::String(arguments[0]));
    return run(prefix, arguments[1], arguments.size() == 3) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
