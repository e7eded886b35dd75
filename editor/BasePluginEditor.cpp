#include "editor/BasePluginEditor.h"

#include "editor/ParameterSlider.h"
#include "editor/RefreshRate.h"
#include "editor/themes/DarkTheme.h"
#include "editor/themes/SteelTheme.h"

#include <exception>
#include <utility>

namespace
{
constexpr auto themeKey = "ThemeId";
constexpr int tooltipDelayMilliseconds = 700;

constexpr int savePresetFileId = 8208;
constexpr int loadPresetFileId = 8209;
constexpr int firstPresetId = 8448;

constexpr auto presetFilePattern = "*.xml";
constexpr auto presetFileExtension = ".xml";

const juce::Identifier folderType("PresetFolder");
const juce::Identifier presetType("Preset");
const juce::Identifier nameProperty("Name");
const juce::Identifier indexProperty("Index");

/** The file that the user named, with the extension without which it would not show up among the presets. */
juce::File withPresetExtension(const juce::File& file)
{
    return file.hasFileExtension(presetFileExtension)
               ? file
               : file.getSiblingFile(file.getFileName() + presetFileExtension);
}

/** The dialog has asked already about the name as it was typed. */
bool mayOverwrite(const juce::File& completed, const juce::File& typed)
{
    return completed == typed || !completed.existsAsFile() ||
           juce::AlertWindow::showOkCancelBox(
               juce::MessageBoxIconType::WarningIcon, juce::translate("File already exists"),
               juce::translate("There's already a file called: FLNM")
                       .replace("FLNM", completed.getFullPathName()) +
                   "\n\n" + juce::translate("Are you sure you want to overwrite it?"),
               juce::translate("Overwrite"), juce::translate("Cancel"));
}
} // namespace

BasePluginEditor::BasePluginEditor(BasePlugInProcessor* plugInProcessor)
    : juce::AudioProcessorEditor(plugInProcessor), plugIn(plugInProcessor)
{
#if JUCE_MAC
    openGlContext.attachTo(*this);
#endif
    setTitle(plugIn->getName());
    supplyMissingRefreshRates();

    tooltipWindow = std::make_unique<juce::TooltipWindow>(this, tooltipDelayMilliseconds);
    BasePluginEditor::setTheme(static_cast<ThemeId>(plugIn->settings->getIntValue(themeKey, darkTheme)));
    updatePresetMenu();

    if (plugIn->wrapperType == juce::AudioProcessor::wrapperType_Standalone)
    {
        setWantsKeyboardFocus(true);
        juce::Desktop::getInstance().addFocusChangeListener(this);
    }
}

BasePluginEditor::~BasePluginEditor()
{
    juce::Desktop::getInstance().removeFocusChangeListener(this);
    setLookAndFeel(nullptr);
#if JUCE_MAC
    openGlContext.detach();
#endif
    presetMenu.setLookAndFeel(nullptr);
    tooltipWindow.reset();
}

/** A window that has the keyboard itself does not lead it on to its controls. */
void BasePluginEditor::globalFocusChanged(juce::Component* focused)
{
    if (focused != nullptr && focused != this && focused == getTopLevelComponent())
        grabKeyboardFocus();
}

int BasePluginEditor::getControlParameterIndex(juce::Component& control)
{
    if (const auto* slider = dynamic_cast<ParameterSlider*>(&control))
        return slider->getPublicParameterIndex();
    return -1;
}

void BasePluginEditor::updateParameterControls() {}

void BasePluginEditor::setTheme(ThemeId id)
{
    if (id == steelTheme)
        adoptTheme(std::make_unique<SteelTheme>());
    else
        adoptTheme(std::make_unique<DarkTheme>());

    themeId = id;
    plugIn->settings->setValue(themeKey, static_cast<int>(id));
}

void BasePluginEditor::adoptTheme(std::unique_ptr<juce::LookAndFeel> newTheme)
{
    const auto former = std::exchange(theme, std::move(newTheme));
    setLookAndFeel(theme.get());
    presetMenu.setLookAndFeel(theme.get());
}

void BasePluginEditor::updatePresetMenu()
{
    plugIn->updatePresetTree();
    presetMenu.clear();

    for (const auto& section : plugIn->presetTree)
    {
        presetMenu.addSectionHeader(juce::translate(section[nameProperty].toString()));
        loadPresetEntries(presetMenu, section);
    }

    presetMenu.addSectionHeader(juce::translate("Saving & loading"));
    presetMenu.addItem(savePresetFileId, juce::translate("Save user preset file..."));
    presetMenu.addItem(loadPresetFileId, juce::translate("Load user preset file..."));
}

/** Names of presets and folders are the user's own, so they are not translated. */
void BasePluginEditor::loadPresetEntries(juce::PopupMenu& menu, const juce::ValueTree& tree)
{
    for (const auto& child : tree)
    {
        const auto name = child[nameProperty].toString();

        if (child.hasType(folderType))
        {
            juce::PopupMenu subMenu;
            loadPresetEntries(subMenu, child);
            menu.addSubMenu(name, std::move(subMenu), true);
        }
        else if (child.hasType(presetType))
        {
            menu.addItem(firstPresetId + static_cast<int>(child[indexProperty]), name, true, false);
        }
    }
}

void BasePluginEditor::showPresetMenu(juce::Component* target)
{
    presetMenu.showMenuAsync(juce::PopupMenu::Options().withTargetComponent(target),
                             juce::ModalCallbackFunction::forComponent(plugInMenuCallback, this));
}

void BasePluginEditor::plugInMenuCallback(int result, BasePluginEditor* editor)
{
    if (editor == nullptr)
        return;

    if (result == savePresetFileId)
        editor->savePresetFile({});
    else if (result == loadPresetFileId)
        editor->loadPresetFile({});
    else if (result >= firstPresetId)
        editor->plugIn->setCurrentProgram(result - firstPresetId);
}

void BasePluginEditor::loadPresetFile(const juce::String& path)
{
    if (path.isNotEmpty())
    {
        importPreset(juce::File(path));
        return;
    }

    const SafePointer<BasePluginEditor> self(this);
    juce::FileChooser chooser(juce::translate("Please select the preset file you want to import..."),
                              plugIn->userPresetFolder, presetFilePattern, true);

    // The dialog runs messages of its own, and the host may close the editor meanwhile.
    if (chooser.browseForFileToOpen() && self != nullptr)
        importPreset(chooser.getResult());
}

void BasePluginEditor::importPreset(const juce::File& file)
{
    plugIn->addUndoState();
    try
    {
        plugIn->importFromPresetFile(file);
    }
    catch (const std::exception&)
    {
        // The file names a parameter that the engine does not have. What was read before it stays, as with a
        // preset from the list: it is put into force, and the controls are to show it.
        plugIn->getBaseProcessor()->effectuateParameterChanges();
        updateParameterControls();
    }
}

void BasePluginEditor::savePresetFile(const juce::String& path)
{
    juce::File file;
    if (path.isNotEmpty())
    {
        file = juce::File(path);
    }
    else
    {
        const SafePointer<BasePluginEditor> self(this);
        juce::FileChooser chooser(
            juce::translate("Please choose a file name for the preset file you want to export..."),
            plugIn->userPresetFolder, presetFilePattern, true);

        if (!chooser.browseForFileToSave(true) || self == nullptr)
            return;
        file = withPresetExtension(chooser.getResult());
        if (!mayOverwrite(file, chooser.getResult()) || self == nullptr)
            return;
    }

    if (!plugIn->exportToPresetFile(file))
        return;

    plugIn->setCurrentPresetName(file.getFileNameWithoutExtension());
    updateParameterControls();
    updatePresetMenu();
}
