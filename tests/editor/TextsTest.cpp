// Texts: all are there, and none is cut. The suite's name has it run once more on a system without any font.

#include "editor/AboutDialog.h"
#include "tests/editor/WindowTest.h"

namespace
{
class ThemeTexts : public WindowTest
{
protected:
    ~ThemeTexts() override { juce::LocalisedStrings::setCurrentMappings(nullptr); }

    static juce::Array<juce::File> findResources(const char* folder)
    {
        return getSourceFolder("resources").getChildFile(folder).findChildFiles(juce::File::findFiles, true);
    }

    static void expectToFit(juce::TextButton& button, const juce::String& text)
    {
        constexpr float margins = 10.0f;
        const auto font = button.getLookAndFeel().getTextButtonFont(button, button.getHeight());
        EXPECT_LE(font.getStringWidthFloat(text), static_cast<float>(button.getWidth()) - margins) << text;
    }

    static void expectToFit(const juce::Label& label)
    {
        const auto lines = juce::StringArray::fromLines(label.getText());
        const auto room = label.getBorderSize().subtractedFrom(label.getLocalBounds()).toFloat();
        for (const auto& line : lines)
            EXPECT_LE(label.getFont().getStringWidthFloat(line), room.getWidth()) << line;
        EXPECT_LE(label.getFont().getHeight() * static_cast<float>(lines.size()),
                  static_cast<float>(label.getHeight()))
            << label.getText();
    }

    void expectToolTipToFit(juce::Component& component)
    {
        constexpr int twoLines = 40;
        const auto tip = dynamic_cast<juce::TooltipClient&>(component).getTooltip();
        EXPECT_TRUE(tip.isNotEmpty()) << component.getName();
        const auto bounds = window->getLookAndFeel().getTooltipBounds(tip, {}, {10000, 10000});
        EXPECT_LE(bounds.getWidth(), window->getWidth()) << tip;
        EXPECT_LE(bounds.getHeight(), twoLines) << tip;
    }
};
} // namespace

TEST_F(ThemeTexts, fitTheirBoxesInEveryLanguage)
{
    auto translations = findResources("translations");
    EXPECT_GE(translations.size(), 7);
    translations.add({}); // English

    for (const auto& translation : translations)
    {
        SCOPED_TRACE(translation.getFileName());
        juce::LocalisedStrings::setCurrentMappings(
            translation.existsAsFile() ? new juce::LocalisedStrings(translation, false) : nullptr);
        open();

        for (auto* button : header->getChildren())
            expectToolTipToFit(*button);
        expectToolTipToFit(*knob);
        expectToolTipToFit(*fader);

        expectToFit(findChild<juce::TextButton>(*header, "currentPresetButton"), juce::translate("Default"));
        expectToFit(findChild<juce::TextButton>(*header, "aSettingsButton"), juce::translate("A"));
        expectToFit(findChild<juce::TextButton>(*header, "bSettingsButton"), juce::translate("B"));

        AboutDialog about;
        about.setPlugInName("Ambrel");
        expectToFit(findChild<juce::TextButton>(about, "okButton"), juce::translate("OK"));
        for (auto* child : about.getChildren())
            if (const auto* label = dynamic_cast<juce::Label*>(child))
                expectToFit(*label);
    }
}

TEST_F(ThemeTexts, presetsAndTitleFitTheHeader)
{
    auto& name = findChild<juce::TextButton>(*header, "currentPresetButton");
    const auto presets = findResources("presets");
    EXPECT_GE(presets.size(), 20);
    for (const auto& preset : presets)
        expectToFit(name, preset.getFileNameWithoutExtension());

    const auto title = juce::roundToInt(juce::Font(24.0f, juce::Font::bold).getStringWidthFloat("Ambrel"));
    EXPECT_GT(title, 50);
    EXPECT_LE(120 + title, findChild<juce::Button>(*header, "previousPresetButton").getX());
}
