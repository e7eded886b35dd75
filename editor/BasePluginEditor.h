/**
    The frame of the framework's editors: the theme, the tooltips, the menu of presets, and the dialogs for
    preset files. A product's editor derives from it, adds its controls, and keeps them in step with the
    processor.

    The theme is what the settings say ("ThemeId"). A product with a look of its own replaces it by
    adoptTheme().

    In a host the keyboard stays with the host. In the stand-alone program, which has nobody else to give it to,
    the editor takes it whenever the window gets it, so that the tab key leads to the controls.

    Thread: message thread.
*/
#pragma once

#include "plugin/BasePlugInProcessor.h"

#include <juce_audio_processors/juce_audio_processors.h>
#if JUCE_MAC
#include <juce_opengl/juce_opengl.h>
#endif

#include <memory>

class BasePluginEditor : public juce::AudioProcessorEditor, private juce::FocusChangeListener
{
public:
    /** Any other value, as a settings file may hold, is the dark theme. */
    enum ThemeId : juce::int32
    {
        darkTheme = 0, ///< "Simplistic dark"
        steelTheme = 1 ///< "Brushed steel"
    };

    /** The processor must outlive the editor. */
    explicit BasePluginEditor(BasePlugInProcessor* plugInProcessor);
    ~BasePluginEditor() override;

    /** The public parameter that a control of the editor moves, for hosts that show parameters on control
        surfaces; -1 for none. */
    int getControlParameterIndex(juce::Component& control) override;

    /** Brings the controls up to date with the processor. */
    virtual void updateParameterControls();

    /** Gives the editor a theme and notes it in the settings. */
    virtual void setTheme(ThemeId id);

    ThemeId getTheme() const { return themeId; }

    /** Scans the preset folders and builds the preset menu anew. */
    void updatePresetMenu();

    /** Returns at once; the menu calls plugInMenuCallback later. */
    void showPresetMenu(juce::Component* target);

    const juce::PopupMenu& getPresetMenu() const { return presetMenu; }

    /** Does what an item of the preset menu stands for. Null, for an editor gone meanwhile, is ignored. */
    static void plugInMenuCallback(int result, BasePluginEditor* editor);

    /** Loads a preset file, with an undo state before it. A file that cannot be loaded is passed over without a
        word.
        @param path  full path of the file; empty to have the user choose one */
    void loadPresetFile(const juce::String& path);

    /** Saves the settings as a preset file.
        @param path  full path of the file; empty to have the user choose one */
    void savePresetFile(const juce::String& path);

    /** Adds the presets below a node of the processor's preset tree to a menu, folders as sub-menus. */
    void loadPresetEntries(juce::PopupMenu& menu, const juce::ValueTree& tree);

protected:
    /** Puts a theme in the place of the present one. */
    void adoptTheme(std::unique_ptr<juce::LookAndFeel> newTheme);

    BasePlugInProcessor* const plugIn;
    std::unique_ptr<juce::LookAndFeel> theme;

private:
    void importPreset(const juce::File& file);
    void globalFocusChanged(juce::Component* focused) override;

#if JUCE_MAC
    juce::OpenGLContext openGlContext;
#endif
    std::unique_ptr<juce::TooltipWindow> tooltipWindow;
    juce::PopupMenu presetMenu;
    ThemeId themeId = darkTheme;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(BasePluginEditor)
};
