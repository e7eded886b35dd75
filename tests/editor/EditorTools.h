/** What the editor's tests do over and over: messages, the mouse, children by name, and pixels. */
#pragma once

#include "product/AmbrelAudioProcessor.h"
#include "product/AmbrelAudioProcessorEditor.h"
#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

#include <sstream>
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

/** Largest difference of two colours in any channel. The renderer is exact within a few steps. */
inline int difference(juce::Colour a, juce::Colour b)
{
    return std::max({std::abs(a.getRed() - b.getRed()), std::abs(a.getGreen() - b.getGreen()),
                     std::abs(a.getBlue() - b.getBlue()), std::abs(a.getAlpha() - b.getAlpha())});
}

/** Number of pixels of an area that are of about this colour. */
inline int count(const juce::Image& image, juce::Rectangle<int> area, juce::Colour colour, int tolerance = 12)
{
    int found = 0;
    for (int y = area.getY(); y < area.getBottom(); ++y)
        for (int x = area.getX(); x < area.getRight(); ++x)
            found += difference(image.getPixelAt(x, y), colour) <= tolerance ? 1 : 0;
    return found;
}

/** All items of a menu and of its sub-menus that can be chosen, one a line: id and text. */
inline juce::String describe(const juce::PopupMenu& menu)
{
    juce::String text;
    for (juce::PopupMenu::MenuItemIterator iterator(menu, true); iterator.next();)
        if (const auto& item = iterator.getItem(); item.itemID != 0 && item.subMenu == nullptr)
            text << item.itemID << " " << item.text << "\n";
    return text;
}

/** The product with presets of its own in folders that go away with it. */
class AmbrelWithPresets : public AmbrelAudioProcessor
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
    void addPreset(const std::string& name, const std::vector<std::pair<int, double>>& values)
    {
        std::ostringstream text;
        for (const auto& [id, value] : values)
            text << "<Parameter id='" << id << "' value='" << value << "'/>";
        factory.write(name + ".xml", presetText(text.str()));
        updatePresetTree();
    }

    float engineValue(int parameter) { return getBaseProcessor()->getParameterValue(parameter); }

    using BasePlugInProcessor::undoStates;

    TemporaryFolder factory, user;
};
