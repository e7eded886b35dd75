/** What the editor's tests do over and over: messages, the mouse, children by name, and pixels. */
#pragma once

#include "product/AmbrelAudioProcessor.h"
#include "product/AmbrelAudioProcessorEditor.h"
#include "tests/artwork/Picture.h"
#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>
#include <vector>

/** Delivers what is waiting in the message queue, and what comes in within this time. */
inline void runMessages(int milliseconds = 5)
{
    juce::MessageManager::getInstance()->runDispatchLoopUntil(milliseconds);
}

/** The first child of a class, and of a name if there is one. */
template <typename ComponentType>
ComponentType& findChild(juce::Component& parent, const juce::String& name = {})
{
    for (auto* child : parent.getChildren())
        if (auto* found = dynamic_cast<ComponentType*>(child))
            if (name.isEmpty() || child->getName() == name)
                return *found;
    throw std::runtime_error("No child " + name.toStdString());
}

inline void click(juce::Button& button)
{
    button.triggerClick();
    runMessages();
}

inline juce::MouseEvent mouseEvent(juce::Component& component, juce::Point<float> position, int modifiers)
{
    const auto now = juce::Time::getCurrentTime();
    using Source = juce::MouseInputSource;
    return juce::MouseEvent(juce::Desktop::getInstance().getMainMouseSource(), position,
                            juce::ModifierKeys(modifiers), Source::defaultPressure,
                            Source::defaultOrientation, Source::defaultRotation, Source::defaultTiltX,
                            Source::defaultTiltY, &component, &component, now, position, now, 1, false);
}

inline void drag(juce::Slider& slider, juce::Point<float> from, juce::Point<float> to)
{
    constexpr int button = juce::ModifierKeys::leftButtonModifier;
    slider.mouseDown(mouseEvent(slider, from, button));
    slider.mouseDrag(mouseEvent(slider, to, button));
    slider.mouseUp(mouseEvent(slider, to, 0));
}

/** All items of a menu and of its sub-menus that can be chosen, one a line: id, text, and [x] if ticked. */
inline juce::String describe(const juce::PopupMenu& menu)
{
    juce::String text;
    for (juce::PopupMenu::MenuItemIterator iterator(menu, true); iterator.next();)
        if (const auto& item = iterator.getItem(); item.itemID != 0 && item.subMenu == nullptr)
            text << item.itemID << " " << item.text << (item.isTicked ? " [x]" : "") << "\n";
    return text;
}

/** The texts as they stand in the code, whatever the machine's language. A processor made after this loads no
    translation. */
struct InEnglish
{
    InEnglish()
    {
        setenv("LC_ALL", "C", 1);
        juce::LocalisedStrings::setCurrentMappings(nullptr);
    }
};

/** The product with presets of its own in folders that go away with it. */
class AmbrelWithPresets : private InEnglish, public AmbrelAudioProcessor
{
public:
    AmbrelWithPresets()
    {
        factoryPresetFolder = factory.folder;
        userPresetFolder = user.folder;
        // The product's own presets, which its constructor found, play no part.
        updatePresetTree();
        undoStates.clear();
        currentProgram = 0;
        setCurrentPresetName({});
    }

    /** Adds a factory preset that sets parameters of the engine. */
    void addPreset(const juce::String& name, const std::vector<std::pair<int, double>>& values)
    {
        juce::String text;
        for (const auto& [id, value] : values)
            text << "<Parameter id=\"" << id << "\" value=\"" << value << "\"/>";
        factory.write(name + ".xml", presetText(text));
        updatePresetTree();
    }

    float engineValue(int parameter) { return getBaseProcessor()->getParameterValue(parameter); }

    using BasePlugInProcessor::alternateSettings;
    using BasePlugInProcessor::redoStates;
    using BasePlugInProcessor::undoStates;

    TemporaryFolder factory, user;
};
