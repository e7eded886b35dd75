/**
    The strip across the top of the framework's editors: the maker's logo, the product's title (painted by the
    theme), the preset selector, undo and redo, the A/B comparison, and a menu.

        header.attach(this, processor);
        header.enablePresets(true, 0);
        header.setAdditionalCommand(16384, translate("Something more..."), true, false);
        header.addListener(this);                        // menuCommand(16384)

    The strip is 40 pixels high and casts a shadow of 6 more, so its owner should give it at least 46.

    What its buttons change, it changes in the processor; controls follow as they follow any other change.

    Thread: message thread.
*/
#pragma once

#include "editor/BasePluginEditor.h"
#include "editor/IconButton.h"

#include <memory>

class PlugInEditorHeader : public juce::Component, private juce::Button::Listener
{
public:
    /** Hears of the menu's commands that the header does not know itself, and of 0 for a menu dismissed. */
    class Listener
    {
    public:
        virtual ~Listener() = default;
        virtual void menuCommand(int id) = 0;
    };

    /** An item that a product adds to the menu. */
    struct MenuCommand
    {
        juce::String text;
        bool enabled = true;
        bool ticked = false;
    };

    PlugInEditorHeader();
    ~PlugInEditorHeader() override;

    /** To be called once, before the header is shown. Both must outlive the header. The B slot of the comparison
        takes a copy of the settings in force. */
    void attach(BasePluginEditor* attachedEditor, BasePlugInProcessor* attachedProcessor);

    /** Shows or hides the preset selector.
        @param offset  in pixels, by which its left end moves to the right at the next updateLayout() */
    void enablePresets(bool enable, int offset);

    void enableHelp(bool enable);

    /** Adds an item to the menu, or replaces the one with this id.
        @param id  16384 or more */
    void setAdditionalCommand(int id, const juce::String& text, bool enabled, bool ticked);

    void updatePlugInMenu();
    void updatePresetName();
    void updateLayout();
    void showAboutDialog();

    /** Null and what is in the list already are ignored. */
    void addListener(Listener* listener);
    void removeListener(Listener* listener);

    const juce::PopupMenu& getPlugInMenu() const { return plugInMenu; }

    /** Does what an item of the menu stands for. Null, for a header gone meanwhile, is ignored. */
    static void plugInMenuCallback(int result, PlugInEditorHeader* header);

    void paint(juce::Graphics& g) override;
    void resized() override;
    void lookAndFeelChanged() override;

    /** For products that want to know of commands before their listeners. */
    virtual void onMenuCommand(int id);

    /** Passes a command on to the listeners. */
    virtual void customMenuCommand(int id);

    /** Whether the menu offers the themes. Takes effect when the menu is next built. */
    bool themesEnabled = true;

private:
    void buttonClicked(juce::Button* button) override;
    void loadNeighbouringPreset(int distance);
    void switchSettings(juce::Button& from, juce::Button& to);
    void showActiveSettings();

    template <typename ButtonType>
    void addButton(std::unique_ptr<ButtonType>& button, const juce::String& tooltip, const juce::String& text,
                   const juce::String& title, int connectedEdges);
    void setIcons();

    juce::ListenerList<Listener> listeners;
    BasePluginEditor* editor = nullptr;
    BasePlugInProcessor* processor = nullptr;
    bool presetsEnabled = true;
    bool helpEnabled = true;
    int presetOffset = 0;
    juce::PopupMenu plugInMenu;
    juce::HashMap<int, MenuCommand> additionalCommands;
    juce::Component::SafePointer<juce::DialogWindow> aboutWindow;

    std::unique_ptr<juce::ImageButton> logoButton;
    std::unique_ptr<IconButton> undoButton;
    std::unique_ptr<IconButton> redoButton;
    std::unique_ptr<juce::TextButton> aSettingsButton;
    std::unique_ptr<juce::TextButton> bSettingsButton;
    std::unique_ptr<IconButton> copyButton;
    std::unique_ptr<IconButton> menuButton;
    std::unique_ptr<IconButton> nextPresetButton;
    std::unique_ptr<IconButton> previousPresetButton;
    std::unique_ptr<juce::TextButton> currentPresetButton;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(PlugInEditorHeader)
};
