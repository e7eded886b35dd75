#include "editor/PlugInEditorHeader.h"

#include "editor/AboutDialog.h"
#include "editor/themes/BaseTheme.h"
#include "plugin/companyName.h"

#include "Artwork.h"

namespace
{
constexpr auto homePage = "https://veskora.com/";

constexpr int initialWidth = 800;
constexpr int initialHeight = 200;

constexpr int stripHeight = 40;
constexpr int shadowHeight = 6;
constexpr juce::uint32 shadowColour = 0x32000000;

constexpr int rowTop = 8;
constexpr int rowHeight = 24;
constexpr int titleLeft = 120;
constexpr int titleWidthWithoutTheme = 120;

/** From the title's right end to the preset selector. */
constexpr int titleMargin = 32;

/** Left edges, counted from the right end of the header. */
constexpr int nextPresetFromRight = 216;
constexpr int undoFromRight = 176;
constexpr int redoFromRight = 152;
constexpr int aSettingsFromRight = 120;
constexpr int copyFromRight = 96;
constexpr int bSettingsFromRight = 72;
constexpr int menuFromRight = 40;

constexpr float logoOpacity = 1.0f;
constexpr float logoOpacityHovered = 0.8f;
constexpr float logoOpacityPressed = 0.6f;

constexpr int aboutId = 8193;
constexpr int helpId = 8194;
constexpr int darkThemeId = 8224;
constexpr int steelThemeId = 8225;

void setIcon(IconButton& button, const char* data, int size)
{
    button.setIcon(juce::Drawable::createFromImageData(data, static_cast<std::size_t>(size)).release());
}
} // namespace

PlugInEditorHeader::PlugInEditorHeader()
{
    using juce::translate;
    constexpr int left = juce::Button::ConnectedOnLeft;
    constexpr int right = juce::Button::ConnectedOnRight;

    logoButton = std::make_unique<juce::ImageButton>("logoButton");
    undoButton = std::make_unique<IconButton>("undoButton", juce::String());
    redoButton = std::make_unique<IconButton>("redoButton", juce::String());
    aSettingsButton = std::make_unique<juce::TextButton>("aSettingsButton");
    bSettingsButton = std::make_unique<juce::TextButton>("bSettingsButton");
    copyButton = std::make_unique<IconButton>("copyButton", juce::String());
    menuButton = std::make_unique<IconButton>("menuButton", juce::String());
    nextPresetButton = std::make_unique<IconButton>("nextPresetButton", juce::String());
    previousPresetButton = std::make_unique<IconButton>("previousPresetButton", juce::String());
    currentPresetButton = std::make_unique<juce::TextButton>("currentPresetButton");

    addButton(logoButton, translate(vesk::companyName), {}, translate(vesk::companyName), 0);
    addButton(undoButton, translate("Undo last changes"), translate("<-"), translate("Undo"), right);
    addButton(redoButton, translate("Redo changes"), translate("->"), translate("Redo"), left);
    addButton(aSettingsButton, translate("Load A settings"), translate("A"), translate("A settings"), right);
    addButton(bSettingsButton, translate("Load B settings"), translate("B"), translate("B settings"), left);
    addButton(copyButton, translate("Copy settings"), translate("->"), translate("Copy settings"),
              left | right);
    addButton(menuButton, translate("Display menu"), translate(":="), translate("Menu"), 0);
    addButton(nextPresetButton, translate("Load next preset"), translate("->"), translate("Next preset"),
              left);
    addButton(previousPresetButton, translate("Load previous preset"), translate("<-"),
              translate("Previous preset"), right);
    addButton(currentPresetButton, translate("Show available presets"), translate("Default"),
              translate("Preset"), left | right);

    setSize(initialWidth, initialHeight);

    aSettingsButton->setToggleState(true, juce::dontSendNotification);
    setIcons();
    showActiveSettings();

    setInterceptsMouseClicks(false, true);
}

PlugInEditorHeader::~PlugInEditorHeader()
{
    // A host may unload the plug-in as soon as its editor is closed.
    aboutWindow.deleteAndZero();
}

template <typename ButtonType>
void PlugInEditorHeader::addButton(std::unique_ptr<ButtonType>& button, const juce::String& tooltip,
                                   const juce::String& text, const juce::String& title, int connectedEdges)
{
    button->setTooltip(tooltip);
    button->setButtonText(text);
    button->setTitle(title);
    button->setConnectedEdges(connectedEdges);

    // The keyboard stays with the host while the mouse is used; the tab key still gets to every button.
    button->setMouseClickGrabsKeyboardFocus(false);
    button->setHasFocusOutline(true);
    button->addListener(this);
    addAndMakeVisible(*button);
}

void PlugInEditorHeader::setIcons()
{
    const auto logo = juce::ImageCache::getFromMemory(Artwork::veskoraLogo_png, Artwork::veskoraLogo_pngSize);
    const auto noOverlay = juce::Colours::transparentBlack;
    logoButton->setImages(false, true, true, logo, logoOpacity, noOverlay, logo, logoOpacityHovered,
                          noOverlay, logo, logoOpacityPressed, noOverlay, 0.0f);

    setIcon(*undoButton, Artwork::undo_svg, Artwork::undo_svgSize);
    setIcon(*redoButton, Artwork::redo_svg, Artwork::redo_svgSize);
    setIcon(*copyButton, Artwork::copyRight_svg, Artwork::copyRight_svgSize);
    setIcon(*menuButton, Artwork::menu_svg, Artwork::menu_svgSize);
    setIcon(*nextPresetButton, Artwork::arrowRight_svg, Artwork::arrowRight_svgSize);
    setIcon(*previousPresetButton, Artwork::arrowLeft_svg, Artwork::arrowLeft_svgSize);
}

void PlugInEditorHeader::attach(BasePluginEditor* attachedEditor, BasePlugInProcessor* attachedProcessor)
{
    editor = attachedEditor;
    processor = attachedProcessor;

    processor->copyToAlternate();
    updatePresetName();
    updatePlugInMenu();
    updateLayout();
}

void PlugInEditorHeader::enablePresets(bool enable, int offset)
{
    presetsEnabled = enable;
    presetOffset = offset;

    previousPresetButton->setVisible(enable);
    nextPresetButton->setVisible(enable);
    currentPresetButton->setVisible(enable);
}

void PlugInEditorHeader::enableHelp(bool enable)
{
    if (enable == helpEnabled)
        return;

    helpEnabled = enable;
    updatePlugInMenu();
}

void PlugInEditorHeader::setAdditionalCommand(int id, const juce::String& text, bool enabled, bool ticked)
{
    additionalCommands.set(id, {text, enabled, ticked});
    updatePlugInMenu();
}

void PlugInEditorHeader::updatePlugInMenu()
{
    using juce::translate;

    plugInMenu.clear();
    plugInMenu.setLookAndFeel(&getLookAndFeel());

    if (additionalCommands.size() > 0)
    {
        for (juce::HashMap<int, MenuCommand>::Iterator command(additionalCommands); command.next();)
        {
            const auto& item = command.getValue();
            plugInMenu.addItem(command.getKey(), item.text, item.enabled, item.ticked);
        }
        plugInMenu.addSeparator();
    }

    if (helpEnabled)
        plugInMenu.addItem(helpId, translate("Help..."));
    plugInMenu.addSeparator();

    if (themesEnabled)
    {
        const auto current = editor != nullptr ? editor->getTheme() : BasePluginEditor::darkTheme;
        juce::PopupMenu themes;
        themes.addItem(darkThemeId, translate("Simplistic dark"), true,
                       current == BasePluginEditor::darkTheme);
        themes.addItem(steelThemeId, translate("Brushed steel"), true,
                       current == BasePluginEditor::steelTheme);
        plugInMenu.addSubMenu(translate("Themes"), themes);
    }

    const auto name = processor != nullptr ? processor->getName() : juce::String();
    plugInMenu.addItem(aboutId, translate("About") + " " + name + "...");
}

void PlugInEditorHeader::updatePresetName()
{
    if (processor == nullptr)
        return;

    const auto name = processor->getCurrentPresetName();
    currentPresetButton->setButtonText(name);
    currentPresetButton->setTitle(juce::translate("Preset") + ": " + name);
}

void PlugInEditorHeader::updateLayout()
{
    int titleWidth = titleWidthWithoutTheme;
    if (auto* theme = dynamic_cast<BaseTheme*>(&getLookAndFeel()); theme != nullptr && processor != nullptr)
        titleWidth = static_cast<int>(theme->getTitleWidth(processor->getShortName()));

    const int left = titleLeft + titleWidth + titleMargin + presetOffset;
    previousPresetButton->setBounds(left, rowTop, rowHeight, rowHeight);
    currentPresetButton->setBounds(left + rowHeight, rowTop,
                                   getWidth() - nextPresetFromRight - left - rowHeight, rowHeight);
}

void PlugInEditorHeader::resized()
{
    const auto place = [this](juce::Component& button, int fromRight, int width)
    { button.setBounds(getWidth() - fromRight, rowTop, width, rowHeight); };

    logoButton->setBounds(8, -1, 83, 42);
    place(*nextPresetButton, nextPresetFromRight, rowHeight);
    place(*undoButton, undoFromRight, rowHeight);
    place(*redoButton, redoFromRight, rowHeight);
    place(*aSettingsButton, aSettingsFromRight, rowHeight);
    place(*copyButton, copyFromRight, rowHeight);
    place(*bSettingsButton, bSettingsFromRight, rowHeight);
    place(*menuButton, menuFromRight, 32);
    updateLayout();
}

void PlugInEditorHeader::lookAndFeelChanged()
{
    plugInMenu.setLookAndFeel(&getLookAndFeel());
    updateLayout();
}

void PlugInEditorHeader::paint(juce::Graphics& g)
{
    const auto middle = static_cast<float>(getWidth() / 2);
    g.setGradientFill(juce::ColourGradient(juce::Colour(shadowColour), middle, float(stripHeight),
                                           juce::Colours::transparentBlack, middle,
                                           float(stripHeight + shadowHeight), false));
    g.fillRect(0, stripHeight, getWidth(), shadowHeight);

    if (auto* theme = dynamic_cast<BaseTheme*>(&getLookAndFeel()); theme != nullptr && processor != nullptr)
    {
        theme->paintHeaderBackground(g, getWidth(), stripHeight, processor->getShortName());
    }
    else
    {
        g.setColour(juce::Colours::white);
        g.fillRect(0, 0, getWidth(), stripHeight);
    }
}

void PlugInEditorHeader::buttonClicked(juce::Button* button)
{
    if (button == logoButton.get())
        juce::URL(homePage).launchInDefaultBrowser();
    else if (button == menuButton.get())
        plugInMenu.showMenuAsync(juce::PopupMenu::Options().withTargetComponent(menuButton.get()),
                                 juce::ModalCallbackFunction::forComponent(plugInMenuCallback, this));
    else if (processor == nullptr)
        return;
    else if (button == undoButton.get())
        processor->undo();
    else if (button == redoButton.get())
        processor->redo();
    else if (button == aSettingsButton.get())
        switchSettings(*bSettingsButton, *aSettingsButton);
    else if (button == bSettingsButton.get())
        switchSettings(*aSettingsButton, *bSettingsButton);
    else if (button == copyButton.get())
        processor->copyToAlternate();
    else if (button == nextPresetButton.get())
        loadNeighbouringPreset(1);
    else if (button == previousPresetButton.get())
        loadNeighbouringPreset(-1);
    else if (button == currentPresetButton.get() && editor != nullptr)
        editor->showPresetMenu(currentPresetButton.get());
}

void PlugInEditorHeader::loadNeighbouringPreset(int distance)
{
    if (const int programs = processor->getNumPrograms(); programs > 0)
    {
        // A host may have set any number.
        const juce::int64 wanted = juce::int64{processor->getCurrentProgram()} + programs + distance;
        processor->setCurrentProgram(static_cast<int>(wanted % programs));
    }
}

void PlugInEditorHeader::switchSettings(juce::Button& from, juce::Button& to)
{
    if (!from.getToggleState())
        return;

    processor->switchToAlternateSettings();
    from.setToggleState(false, juce::dontSendNotification);
    to.setToggleState(true, juce::dontSendNotification);
    showActiveSettings();
}

/** The arrow of the copy button leaves the side that is in force. */
void PlugInEditorHeader::showActiveSettings()
{
    const bool isOnA = aSettingsButton->getToggleState();
    if (isOnA)
        setIcon(*copyButton, Artwork::copyRight_svg, Artwork::copyRight_svgSize);
    else
        setIcon(*copyButton, Artwork::copyLeft_svg, Artwork::copyLeft_svgSize);

    const auto active = juce::translate("Active");
    aSettingsButton->setDescription(isOnA ? active : juce::String());
    bSettingsButton->setDescription(isOnA ? juce::String() : active);
}

void PlugInEditorHeader::showAboutDialog()
{
    auto about = std::make_unique<AboutDialog>();
    about->setPlugInName(processor->getShortName());

    juce::DialogWindow::LaunchOptions options;
    const auto content = about->getLocalBounds();
    options.content.setOwned(about.release());
    options.componentToCentreAround = getParentComponent();
    options.dialogTitle = juce::translate("About") + " " + processor->getName();
    options.dialogBackgroundColour = juce::Colours::white;
    options.useNativeTitleBar = true;
    options.resizable = false;

    // What launchAsync() does, with the window complete before it is first seen: to come to the top, some systems
    // make it anew, and the library counts in a title bar of its own before it learns of the system's.
    aboutWindow = options.create();
    aboutWindow->setAlwaysOnTop(true);
    aboutWindow->setContentComponentSize(content.getWidth(), content.getHeight());
    aboutWindow->centreAroundComponent(getParentComponent(), aboutWindow->getWidth(),
                                       aboutWindow->getHeight());
    aboutWindow->enterModalState(true, nullptr, true);
}

void PlugInEditorHeader::plugInMenuCallback(int result, PlugInEditorHeader* header)
{
    if (header == nullptr)
        return;

    const auto changeTheme = [header](BasePluginEditor::ThemeId id)
    {
        header->editor->setTheme(id);
        header->updatePlugInMenu();
    };

    switch (result)
    {
    case aboutId: header->showAboutDialog(); break;
    case helpId: header->processor->showHelp(); break;
    case darkThemeId: changeTheme(BasePluginEditor::darkTheme); break;
    case steelThemeId: changeTheme(BasePluginEditor::steelTheme); break;
    default: header->customMenuCommand(result); break;
    }
}

void PlugInEditorHeader::onMenuCommand(int) {}

// The library's list keeps a pointer to its iterator while it calls, and takes it off before the iterator goes, which
// this compiler does not see.
#if JUCE_GCC && __GNUC__ >= 12
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdangling-pointer"
#endif

void PlugInEditorHeader::customMenuCommand(int id)
{
    listeners.call([id](Listener& listener) { listener.menuCommand(id); });
}

#if JUCE_GCC && __GNUC__ >= 12
#pragma GCC diagnostic pop
#endif

void PlugInEditorHeader::addListener(Listener* listener)
{
    if (listener != nullptr)
        listeners.add(listener);
}

void PlugInEditorHeader::removeListener(Listener* listener)
{
    if (listener != nullptr)
        listeners.remove(listener);
}
