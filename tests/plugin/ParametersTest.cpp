#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

namespace
{
/** What a host hears. */
class HostListener : public juce::AudioProcessorListener
{
public:
    void audioProcessorParameterChanged(juce::AudioProcessor*, int index, float value) override
    {
        changes.emplace_back(index, value);
    }
    void audioProcessorChanged(juce::AudioProcessor*, const ChangeDetails&) override {}

    std::vector<std::pair<int, float>> changes;
};
} // namespace

TEST(ParametersTest, MapsLinearlyAndLogarithmically)
{
    TestPlugIn plugIn;
    EXPECT_EQ(plugIn.getParameterDefaultValue(0), 0.25f);
    EXPECT_NEAR(plugIn.getParameterDefaultValue(1), 0.566323f, 1e-6f);
    struct Row
    {
        int index;
        float normalized;
        float engineValue;
    };
    for (const auto& row : {Row{0, 0.25f, 25.0f}, Row{0, 1.0f, 100.0f}, Row{1, 0.0f, 20.0f},
                            Row{1, 0.5f, 632.4555f}, Row{1, 1.0f, 20000.0f}, Row{2, 1.0f, 1.0f}})
    {
        plugIn.setParameter(row.index, row.normalized);
        EXPECT_NEAR(plugIn.engine.values[static_cast<std::size_t>(row.index)], row.engineValue,
                    1e-6f * row.engineValue);
        EXPECT_NEAR(plugIn.getParameter(row.index), row.normalized, 1e-6f);
    }
}

TEST(ParametersTest, IndicesOutOfRangeGetNeutralAnswers)
{
    TestPlugIn plugIn;
    EXPECT_EQ(plugIn.getNumParameters(), 3);
    for (const int index : {-1, 3})
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
    HostListener host;
    CountingListener listener;
    plugIn.addListener(static_cast<juce::AudioProcessorListener*>(&host));
    plugIn.addListener(&listener);

    plugIn.setParameter(0, 1.0f);
    EXPECT_TRUE(host.changes.empty());
    EXPECT_EQ(listener.heard, std::vector<int>{0});

    plugIn.resetParameter(0, false);
    EXPECT_TRUE(host.changes.empty());
    plugIn.resetParameter(0, true);
    plugIn.notifyInternalParameterChange(2);
    plugIn.notifyInternalParameterChange(3);
    EXPECT_EQ(host.changes, (std::vector<std::pair<int, float>>{{0, 0.25f}, {2, 0.0f}}));
    EXPECT_EQ(listener.heard.size(), 1u);

    plugIn.removeListener(static_cast<juce::AudioProcessorListener*>(&host));
    plugIn.removeListener(&listener);
}

TEST(ParametersTest, ListenersMayLeaveWhileTheyAreCalled)
{
    TestPlugIn plugIn;
    CountingListener first, second, third;
    second.onChange = [&] { plugIn.removeListener(&second); };
    third.onChange = [&] { plugIn.removeListener(&third); };
    for (auto* listener : {&first, &second, &third, &first})
        plugIn.addListener(listener);
    plugIn.addListener(static_cast<CountingListener*>(nullptr));

    plugIn.setParameter(1, 0.5f);
    plugIn.setParameter(2, 1.0f);
    EXPECT_EQ(first.heard, (std::vector<int>{1, 2})) << "adding twice keeps one entry";
    EXPECT_EQ(second.heard, std::vector<int>{1});
    EXPECT_EQ(third.heard, std::vector<int>{1});
}
