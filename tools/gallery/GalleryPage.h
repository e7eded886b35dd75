/**
    One page of the gallery: every control that a theme draws, in the states that can be had without a mouse.

        DarkTheme theme;
        juce::LookAndFeel::setDefaultLookAndFeel(&theme);
        GalleryPage page(theme, "Simplistic dark");
        const auto picture = page.createComponentSnapshot(page.getLocalBounds(), true, 2.0f);

    The theme must be the default look-and-feel, which is where the library looks for typefaces.

    Thread: message thread.
*/
#pragma once

#include "editor/themes/BaseTheme.h"

class GalleryPage : public juce::Component
{
public:
    GalleryPage(BaseTheme& themeToShow, const juce::String& pageTitle);
    ~GalleryPage() override;

    void paint(juce::Graphics& g) override;

private:
    using Drawing = std::function<void(juce::Graphics& g, juce::Rectangle<int> area)>;

    template <typename Control>
    Control& add(std::unique_ptr<Control> control, juce::Rectangle<int> bounds);
    void addCaption(const juce::String& text, int x, int y);
    void addDrawing(juce::Rectangle<int> bounds, Drawing drawing);

    void addButtons(int y);
    void addToggles(int y);
    void addKnobs(int y);
    void addFaders(int y);
    void addBoxes(int y);
    void addBars(int y);
    void addMenus(int y);

    BaseTheme& theme;
    const juce::String title;
    juce::OwnedArray<juce::Component> controls;
    std::unique_ptr<juce::MenuBarModel> menuBarModel;
    std::unique_ptr<juce::ListBoxModel> listModel;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(GalleryPage)
};
