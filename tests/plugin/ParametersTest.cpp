#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

TEST(ParametersTest, MapsLinearlyAndLogarithmically)
{
    TestPlugIn plugIn;
    EXPECT_EQ(plugIn.getParameterDefaultValue(0), 0.25f);
    EXPECT_NEAR(plugIn.getParameterDefaultValue(1), 0.566323f, 1e-6f);
    for (const auto& [index, normalized, engineValue] : {std::tuple{0, 0.25f, 25.0f},
                                                         {0, 1.0f, 100.0f},
                                                         {1, 0.0f, 20.0f},
                                                         {1, 0.5f, 632.4555f},
                                                         {1, 1.0f, 20000.0f},
                                                         {2, 1.0f, 1.0f}})
    {
        plugIn.setParameter(index, normalized);
        EXPECT_NEAR(plugIn.engine.getParameterValue(index), engineValue, 1e-6f * engineValue);
        EXPECT_NEAR(plugIn.getParameter(index), normalized, 1e-6f);
    }
}

TEST(ParametersTest, IndicesOutOfRangeGetNeutralAnswers)
{
    TestPlugIn plugIn;
    for (const int index : {-1, plugIn.getNumParameters()})
    {
        EXPECT_EQ(plugIn.getParameter(index), -1.0f);
        EXPECT_EQ(plugIn.getParameterDefaultValue(index), 0.0f);
        plugIn.setParameter(index, 1.0f);
        plugIn.resetParameter(index, true);
    }
    EXPECT_FALSE(plugIn.engine.pending);
}

TEST(ParametersTest, AnOpenEditorPutsTheWorkOff)
{
    TestPlugIn plugIn;
    std::unique_ptr<juce::AudioProcessorEditor> editor(plugIn.createEditorIfNeeded());
    plugIn.setParameter(0, 0.75f);
    EXPECT_EQ(plugIn.getParameter(0), 0.75f);
    plugIn.resetParameter(0, false);
    EXPECT_EQ(plugIn.engine.effectuations, 0);

    plugIn.editorBeingDeleted(editor.get());
    editor.reset();
    plugIn.setParameter(0, 0.5f);
    EXPECT_FALSE(plugIn.engine.pending);
    EXPECT_EQ(plugIn.engine.effectuations, 1);
}

TEST(ParametersTest, HostHearsOfResetsAndInternalChangesOnly)
{
    TestPlugIn plugIn;
    const HostListener host(plugIn);
    const CountingListener window(plugIn);
    plugIn.setParameter(0, 1.0f);
    plugIn.resetParameter(0, false);
    EXPECT_EQ(host.heard, "");
    plugIn.resetParameter(0, true);
    plugIn.notifyInternalParameterChange(2);
    plugIn.notifyInternalParameterChange(3);
    EXPECT_EQ(host.heard, "0=0.250 2=0.000 ");
    EXPECT_EQ(window.heard, std::vector<int>{0});
}

TEST(ParametersTest, ListenersMayLeaveWhileTheyAreCalled)
{
    TestPlugIn plugIn;
    CountingListener first(plugIn), second(plugIn), third(plugIn);
    second.onChange = [&] { plugIn.removeListener(&second); };
    third.onChange = [&] { plugIn.removeListener(&third); };
    plugIn.addListener(&first);
    plugIn.setParameter(1, 0.5f);
    plugIn.setParameter(2, 1.0f);
    EXPECT_EQ(first.heard, (std::vector<int>{1, 2})) << "adding twice keeps one entry";
    EXPECT_EQ(second.heard, std::vector<int>{1});
    EXPECT_EQ(third.heard, std::vector<int>{1});
}
