/** Runs the plug-in's tests with a home of their own: nobody's presets or settings are read or written, and the texts are
    those of the program, whatever language the user reads. */
#include <gtest/gtest.h>

#include <juce_events/juce_events.h>

#include <cstdlib>

int main(int argc, char** argv)
{
    const auto home = juce::File::createTempFile("home");
    home.createDirectory();
    setenv("HOME", home.getFullPathName().toRawUTF8(), 1);
    unsetenv("XDG_CONFIG_HOME");
    setenv("LC_ALL", "C", 1);

    ::testing::InitGoogleTest(&argc, argv);
    int result = EXIT_FAILURE;
    {
        const juce::ScopedJuceInitialiser_GUI library;
        result = RUN_ALL_TESTS();
    }
    home.deleteRecursively();
    return result;
}
