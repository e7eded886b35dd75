#include "tests/editor/WindowTest.h"
#include "core/MathEx.h"

#include <thread>

using vesk::audio::Reverberation;

TEST_F(WindowTest, buttonsAndControlsCanBeReachedAndReadOut)
{
    const auto order = window->createKeyboardFocusTraverser()->getAllComponents(window.get());
    ASSERT_EQ(order.size(), 12u) << "ten buttons and the two controls";
    EXPECT_EQ(order[10], knob);
    EXPECT_EQ(order[11], fader);
    knob->setValue(2.0, juce::dontSendNotification);
    fader->setValue(33.3, juce::dontSendNotification);
    EXPECT_EQ(knob->getTitle() + " " + knob->getTextFromValue(knob->getValue()), "Reverb character 25 %");
    EXPECT_EQ(fader->getTitle() + " " + fader->getTextFromValue(fader->getValue()), "Reverb mix 33 %");
    EXPECT_EQ(knob->getValueFromText("25 %"), 2.0);
    EXPECT_EQ(fader->getValueFromText("33 %"), 33.0);

    juce::StringArray titles;
    juce::RectangleList<int> taken;
    for (auto* button : header->getChildren())
    {
        EXPECT_FALSE(taken.intersectsRectangle(button->getBounds())) << button->getName();
        taken.add(button->getBounds());
        EXPECT_TRUE(juce::CharacterFunctions::isLetter(button->getTitle()[0])) << button->getName();
        EXPECT_FALSE(button->getMouseClickGrabsKeyboardFocus()) << "the keyboard is the host's";
        titles.addIfNotAlreadyThere(button->getTitle());
    }
    EXPECT_EQ(titles.size(), 10);
}

TEST_F(WindowTest, movingAControlSetsItsPairOfEngineParameters)
{
    for (const double seconds : {0.5, 2.37, 8.0})
    {
        knob->setValue(seconds, juce::sendNotificationSync);
        EXPECT_FLOAT_EQ(processor.engineValue(Reverberation::reverbTime), static_cast<float>(seconds));
        EXPECT_NEAR(processor.engineValue(Reverberation::lowPassFrequency), 500.0 / (seconds / 8.0 + 0.05),
                    0.01);
        tick();
        EXPECT_DOUBLE_EQ(knob->getValue(), seconds);
    }

    // All dry: the engine's least gain is not zero, and that is what shows afterwards.
    const auto level = [](double mix) { return mix > 0.0 ? 20.0 * std::log10(mix / 100.0) : -48.0; };
    for (const double mix : {12.5, 90.0, 0.0})
    {
        fader->setValue(mix, juce::sendNotificationSync);
        EXPECT_NEAR(processor.engineValue(Reverberation::wetGain), level(mix), mix > 0.0 ? 1.0e-4 : 0.0);
        EXPECT_NEAR(processor.engineValue(Reverberation::dryGain), level(100.0 - mix), 1.0e-4);
        tick();
        EXPECT_NEAR(fader->getValue(), 100.0 * std::pow(10.0, level(mix) / 20.0), 1.0e-4);
    }
}

TEST_F(WindowTest, changesFromTheHostShowAtTheNextTickAndPassThere)
{
    std::thread([this] { processor.setParameter(0, 0.5f); }).join();
    processor.setParameter(1, 0.25f);
    EXPECT_NE(knob->getValue(), 4.0);

    // The window's own timer, in its own time.
    for (int i = 0; i < 200 && knob->getValue() != 4.0; ++i)
        runMessages(20);
    EXPECT_EQ(knob->getValue(), 4.0);
    EXPECT_NEAR(fader->getValue(), 25.0, 1.0e-4);
}

TEST_F(WindowTest, showingAParameterWritesBackOnlyWhatCannotBeShown)
{
    constexpr float own = 7777.0f; // what a preset has set beside the macro
    auto engine = processor.getBaseProcessor();
    for (const auto& [reverbTime, shown, isWrittenBack] : {std::tuple{2.37f, 2.37, false},
                                                           {8.0f, 8.0, false},
                                                           {0.5f, 0.5, false},
                                                           {0.1f, 0.5, true},
                                                           {2.374f, 2.37, true},
                                                           {20.0f, 8.0, false}})
    {
        knob->setValue(5.0, juce::sendNotificationSync);
        runMessages();
        engine->setParameterValue(Reverberation::reverbTime, reverbTime, false);
        engine->setParameterValue(Reverberation::lowPassFrequency, own, true);
        window->updateParameterControls();
        runMessages();

        EXPECT_DOUBLE_EQ(knob->getValue(), shown);
        EXPECT_FLOAT_EQ(processor.engineValue(Reverberation::reverbTime),
                        isWrittenBack ? static_cast<float>(shown) : reverbTime);
        EXPECT_EQ(processor.engineValue(Reverberation::lowPassFrequency) != own, isWrittenBack) << reverbTime;
    }

    // What changes again before the notification arrives is not overwritten, and shows at the next tick.
    engine->setParameterValue(Reverberation::reverbTime, 0.2f, false);
    window->updateParameterControls();
    processor.setParameter(0, 0.75f);
    runMessages();
    EXPECT_EQ(processor.engineValue(Reverberation::reverbTime), 6.0f);
    tick();
    EXPECT_EQ(knob->getValue(), 6.0);

    // The user's own move counts even if it goes to where the control was before.
    engine->setParameterValue(Reverberation::lowPassFrequency, own, true);
    knob->setValue(5.0, juce::sendNotificationSync);
    knob->setValue(6.0, juce::sendNotificationSync);
    EXPECT_NE(processor.engineValue(Reverberation::lowPassFrequency), own);
}

TEST_F(WindowTest, openingLeavesEveryEngineParameterAlone)
{
    juce::Random random(11);
    auto engine = processor.getBaseProcessor();
    const auto getValues = [&]
    {
        std::vector<float> values;
        for (int parameter = 0; parameter < Reverberation::numParameters; ++parameter)
            values.push_back(engine->getParameterValue(parameter));
        return values;
    };
    for (int round = 0; round < 20; ++round)
    {
        window.reset();
        for (int parameter = 0; parameter < Reverberation::numParameters; ++parameter)
        {
            float low = 0.0f, high = 0.0f;
            engine->getParameterRange(parameter, low, high);
            auto value = juce::jmap(random.nextFloat(), low, high);
            // What the two controls can show.
            if (parameter == Reverberation::reverbTime)
                value = 0.5f + 0.01f * static_cast<float>(random.nextInt(751));
            if (parameter == Reverberation::wetGain)
                value = std::min(value, 0.0f);
            engine->setParameterValue(parameter, value, false);
        }
        const auto before = getValues();
        open();
        tick();
        tick();
        EXPECT_EQ(getValues(), before);
    }
}

TEST_F(WindowTest, headersButtonsMoveTheControls)
{
    processor.addPreset("First", {{Reverberation::reverbTime, 1.0}, {Reverberation::wetGain, -6.0}});
    processor.addPreset("Second", {{Reverberation::reverbTime, 3.0}, {Reverberation::wetGain, -12.0}});
    const auto expectShown = [&](const char* name, double seconds, float gain)
    {
        EXPECT_EQ(findChild<juce::Button>(*header, "currentPresetButton").getButtonText(), name);
        EXPECT_DOUBLE_EQ(knob->getValue(), seconds);
        EXPECT_NEAR(fader->getValue(), 100.0 * vesk::MathEx::fromDecibel(gain), 1.0e-3);
    };

    BasePluginEditor::plugInMenuCallback(8448, window.get());
    tick();
    expectShown("First", 1.0, -6.0f);
    pressHeader("nextPresetButton");
    expectShown("Second", 3.0, -12.0f);
    pressHeader("undoButton");
    expectShown("First", 1.0, -6.0f);

    // A drag makes one undo state, when it starts.
    const auto states = processor.undoStates.size();
    drag(*knob, {20.0f, 10.0f}, {40.0f, 0.0f});
    drag(*fader, {20.0f, 10.0f}, {40.0f, 0.0f});
    EXPECT_EQ(processor.undoStates.size(), states + 2);
    pressHeader("undoButton");
    pressHeader("undoButton");
    expectShown("First", 1.0, -6.0f);
}

TEST_F(WindowTest, menuIgnoresForeignIdsAndAWindowThatHasGone)
{
    const auto states = processor.undoStates.size();
    for (const int id : {0, 1, 8207, 8210, 8447})
        BasePluginEditor::plugInMenuCallback(id, window.get());
    BasePluginEditor::plugInMenuCallback(8448, nullptr);
    EXPECT_EQ(processor.undoStates.size(), states);
}

TEST_F(WindowTest, presetFilesAreSavedAndLoaded)
{
    const auto path = [this](const char* name) { return processor.user.path(name); };
    const auto file = path("My hall 1.5.xml");
    knob->setValue(4.5, juce::sendNotificationSync);
    window->savePresetFile(file);
    EXPECT_TRUE(describe(window->getPresetMenu()).contains("8448 My hall 1.5\n"));
    auto& name = findChild<juce::Button>(*header, "currentPresetButton");
    EXPECT_EQ(name.getButtonText(), "My hall 1.5");

    window->savePresetFile(path("missing/Other.xml"));
    EXPECT_EQ(name.getButtonText(), "My hall 1.5") << "a failed export changes nothing";

    knob->setValue(1.0, juce::sendNotificationSync);
    auto states = processor.undoStates.size();
    window->loadPresetFile(file);
    tick();
    EXPECT_DOUBLE_EQ(knob->getValue(), 4.5);
    EXPECT_EQ(processor.undoStates.size(), ++states);

    window->loadPresetFile(path("None.xml"));
    EXPECT_EQ(processor.undoStates.size(), ++states) << "the undo state comes before the failure";
    EXPECT_EQ(processor.engineValue(Reverberation::reverbTime), 4.5f);

    const auto broken = processor.user.write("Broken.xml", presetText("<Parameter id=\"2\" value=\"1.5\"/>"
                                                                      "<Parameter id=\"99\" value=\"1\"/>"));
    EXPECT_NO_THROW(window->loadPresetFile(broken.getFullPathName()));
    tick();
    EXPECT_DOUBLE_EQ(knob->getValue(), 1.5) << "what was read shows";
    EXPECT_EQ(name.getButtonText(), "My hall 1.5");
    EXPECT_EQ(processor.undoStates.size(), ++states);
    pressHeader("undoButton");
    EXPECT_DOUBLE_EQ(knob->getValue(), 4.5);
}
