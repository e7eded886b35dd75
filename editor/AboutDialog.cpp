#include "editor/AboutDialog.h"

#include "editor/themes/SteelTheme.h"
#include "plugin/companyName.h"

#include "Artwork.h"

namespace
{
constexpr int boxWidth = 400;
constexpr int boxHeight = 240;
const juce::Rectangle<float> wavesArea(48.0f, 20.0f, 352.0f, 100.0f);

constexpr auto nameFontName = "Segoe UI";
constexpr juce::uint32 buttonColour = 0xffffda73;

/** The library stands in for a missing font glyph by glyph, without its metrics and its bold face. Asked for the
    default font instead, it knows both. */
juce::Font nameFont(float height, int style)
{
    return juce::Font::findAllTypefaceNames().contains(nameFontName) ? juce::Font(nameFontName, height, style)
                                                                     : juce::Font(height, style);
}

constexpr auto notice = "Copyright Veskora. Free software under\nthe GNU GPL, version 3 or later.";
} // namespace

AboutDialog::AboutDialog()
{
    using juce::Justification;

    okButton = std::make_unique<juce::TextButton>("okButton");
    okButton->setButtonText(juce::translate("OK"));
    okButton->setColour(juce::TextButton::buttonColourId, juce::Colour(buttonColour));
    okButton->setColour(juce::TextButton::buttonOnColourId, juce::Colour(buttonColour));
    okButton->addShortcut(juce::KeyPress(juce::KeyPress::returnKey));
    okButton->addListener(this);
    addAndMakeVisible(*okButton);

    versionLabel =
        makeLabel("versionLabel", juce::translate("#VERSION"), juce::Font(15.0f), Justification::centredLeft);
    noticeLabel =
        makeLabel("copyrightLabel", juce::translate(notice), juce::Font(14.0f), Justification::topLeft);
    makerLabel = makeLabel("veskoraLabel", juce::translate(vesk::companyName),
                           nameFont(26.0f, juce::Font::bold), Justification::bottomLeft);
    productLabel = makeLabel("veskoraLabel", juce::translate("#NAME"), nameFont(48.0f, juce::Font::plain),
                             Justification::centredLeft);

    setSize(boxWidth, boxHeight);

    theme = std::make_unique<SteelTheme>();
    setLookAndFeel(theme.get());
    waves = juce::Drawable::createFromImageData(Artwork::logoWaves_svg,
                                                static_cast<std::size_t>(Artwork::logoWaves_svgSize));

    versionLabel->setText(juce::translate("Version") + " " + AMBREL_VERSION, juce::dontSendNotification);
}

AboutDialog::~AboutDialog() { setLookAndFeel(nullptr); }

std::unique_ptr<juce::Label> AboutDialog::makeLabel(const juce::String& name, const juce::String& text,
                                                    const juce::Font& font, juce::Justification justification)
{
    auto label = std::make_unique<juce::Label>(name, text);
    label->setFont(font);
    label->setJustificationType(justification);
    label->setEditable(false, false, false);
    label->setColour(juce::TextEditor::textColourId, juce::Colours::black);
    label->setColour(juce::TextEditor::backgroundColourId, juce::Colours::transparentBlack);
    addAndMakeVisible(*label);
    return label;
}

void AboutDialog::setPlugInName(const juce::String& plugInName)
{
    productLabel->setText(plugInName, juce::dontSendNotification);
}

void AboutDialog::paint(juce::Graphics& g)
{
    g.fillAll(juce::Colours::white);
    g.setColour(juce::Colours::black);
    if (waves != nullptr)
        waves->drawWithin(g, wavesArea, juce::RectanglePlacement::stretchToFit, 1.0f);
}

void AboutDialog::resized()
{
    okButton->setBounds(288, 200, 94, 24);
    versionLabel->setBounds(16, 112, 368, 24);
    noticeLabel->setBounds(16, 192, 256, 40);
    makerLabel->setBounds(16, 32, 368, 32);
    productLabel->setBounds(13, 64, 371, 48);
}

void AboutDialog::buttonClicked(juce::Button* button)
{
    if (button == okButton.get() && getParentComponent() != nullptr)
        getParentComponent()->setVisible(false);
}
