/**
    The about box: maker, product, version, legal notice and an OK button, over a faint drawing of waves. It is
    the content of a dialog window, which goes away when the button hides it:

        auto about = std::make_unique<AboutDialog>();
        about->setPlugInName(processor.getShortName());
        options.content.setOwned(about.release());
        options.launchAsync();

    It looks the same whichever theme the editor has. Thread: message thread.
*/
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>

class SteelTheme;

class AboutDialog : public juce::Component, private juce::Button::Listener
{
public:
    AboutDialog();
    ~AboutDialog() override;

    void setPlugInName(const juce::String& plugInName);

    void paint(juce::Graphics& g) override;
    void resized() override;

private:
    void buttonClicked(juce::Button* button) override;

    std::unique_ptr<juce::Label> makeLabel(const juce::String& name, const juce::String& text,
                                           const juce::Font& font, juce::Justification justification);

    std::unique_ptr<juce::Drawable> waves;
    std::unique_ptr<SteelTheme> theme;
    std::unique_ptr<juce::TextButton> okButton;
    std::unique_ptr<juce::Label> versionLabel;
    std::unique_ptr<juce::Label> noticeLabel;
    std::unique_ptr<juce::Label> makerLabel;
    std::unique_ptr<juce::Label> productLabel;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(AboutDialog)
};
