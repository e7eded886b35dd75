/** Runs the installed plug-ins as hosts do.

    Usage: ambrel_host PREFIX VST3|LV2|VST2 [window]     one format; with "window" its window alone
           ambrel_host PREFIX across                     what holds between the formats

    PREFIX is where the product was installed: formats are looked for below PREFIX/lib. Windows need a display and are
    left out, with a message, where there is none. */
#include "tests/hosts/FormatChecks.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <cstdlib>

namespace
{
const std::vector<std::string> formats = {"VST3", "LV2",
#if AMBREL_HOST_HAS_VST2
                                          "VST2"
#endif
};

hosts::Loader makeLoader(const std::string& format, const std::string& prefix)
{
#if AMBREL_HOST_HAS_VST2
    if (format == "VST2")
        return hosts::makeVst2Loader(prefix + "/lib/vst/Ambrel/Ambrel.so");
#endif
    return hosts::makeJuceLoader(format, prefix + (format == "VST3" ? "/lib/vst3" : "/lib/lv2"));
}

int checkWindow(const hosts::Loader& load)
{
    if (juce::Desktop::getInstance().isHeadless())
    {
        std::printf("There is no display: the window is left out\n");
        return 0;
    }
    return hosts::checkEditor(load);
}

int checkOne(const std::string& format, const juce::File& prefix, bool isWindowOnly)
{
    const hosts::StartUpSign startUp;
    const auto load = makeLoader(format, prefix.getFullPathName().toStdString());
    if (isWindowOnly)
        return checkWindow(load);

    hosts::Checks checks;
    checks.expect(load() != nullptr && startUp.isThere(), "its start-up code has run");
    const auto presets =
        prefix.getChildFile("share/Ambrel/Presets").findChildFiles(juce::File::findFiles, true, "*.xml");
    return checks.failures + hosts::checkFormat(load, presets.size()) + checkWindow(load);
}

int run(const juce::File& prefix, const std::string& what, bool isWindowOnly)
{
    std::vector<hosts::Loader> all;
    for (const auto& format : formats)
    {
        if (format == what)
            return checkOne(format, prefix, isWindowOnly);
        if (what == "across")
            all.push_back(makeLoader(format, prefix.getFullPathName().toStdString()));
    }
    if (!all.empty())
        return hosts::checkAcrossFormats(all);
    std::fprintf(stderr, "This host knows no %s\n", what.c_str());
    return 1;
}
} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() < 2 || arguments.size() > 3)
    {
        std::fprintf(stderr, "Usage: %s PREFIX VST3|LV2|VST2|across [window]\n", argv[0]);
        return EXIT_FAILURE;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    // By this JUCE knows a program of its own and takes X's errors calmly.
    juce::JUCEApplicationBase::createInstance = []() -> juce::JUCEApplicationBase* { return nullptr; };
    const juce::ScopedJuceInitialiser_GUI library;
    const auto prefix = juce::File::getCurrentWorkingDirectory().getChildFile(juce::String(arguments[0]));
    return run(prefix, arguments[1], arguments.size() == 3) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
