#include "tools/gallery/GalleryPage.h"

#include "Artwork.h"
#include "editor/FontAwesomeIcons.h"
#include "editor/IconButton.h"

namespace
{

constexpr int pageWidth = 960, pageHeight = 1000;
constexpr int headerHeight = 40, margin = 16, captionHeight = 18;

/** A component that is drawn by the look-and-feel alone. */
class DrawnSample : public juce::Component
{
public:
    explicit DrawnSample(std::function<void(juce::Graphics&, juce::Rectangle<int>)> d) : drawing(std::move(d))
    {
    }

    void paint(juce::Graphics& g) override { drawing(g, getLocalBounds()); }

private:
    const std::function<void(juce::Graphics&, juce::Rectangle<int>)> drawing;
};

class SampleMenuBar : public juce::MenuBarModel
{
public:
    juce::StringArray getMenuBarNames() override { return {"File", "Edit", "View"}; }
    juce::PopupMenu getMenuForIndex(int, const juce::String&) override { return {}; }
    void menuItemSelected(int, int) override {}
};

class SampleList : public juce::ListBoxModel
{
public:
    int getNumRows() override { return 40; }

    void paintListBoxItem(int row, juce::Graphics& g, int width, int height, bool) override
    {
        g.setColour(juce::LookAndFeel::getDefaultLookAndFeel().findColour(juce::ListBox::textColourId));
        g.drawText("Preset " + juce::String(row + 1), 4, 0, width - 8, height,
                   juce::Justification::centredLeft);
    }
};

} // namespace

GalleryPage::GalleryPage(BaseTheme& themeToShow, const juce::String& pageTitle)
    : theme(themeToShow), title(pageTitle), menuBarModel(std::make_unique<SampleMenuBar>()),
      listModel(std::make_unique<SampleList>())
{
    setLookAndFeel(&theme);
    setSize(pageWidth, pageHeight);

    addButtons(56);
    addToggles(150);
    addKnobs(240);
    addFaders(470);
    addBoxes(630);
    addBars(780);
    addMenus(860);
}

GalleryPage::~GalleryPage()
{
    // The menu bar and the list refer to their models to the end.
    controls.clear();
    setLookAndFeel(nullptr);
}

void GalleryPage::paint(juce::Graphics& g)
{
    theme.paintBackground(g, getWidth(), getHeight());
    theme.paintHeaderBackground(g, getWidth(), headerHeight, title);
}

template <typename Control>
Control& GalleryPage::add(std::unique_ptr<Control> control, juce::Rectangle<int> bounds)
{
    auto& added = *control;
    controls.add(std::move(control));
    addAndMakeVisible(added);
    added.setBounds(bounds);
    return added;
}

void GalleryPage::addCaption(const juce::String& text, int x, int y)
{
    auto& label = add(std::make_unique<juce::Label>(juce::String(), text), {x - 5, y, 200, captionHeight});
    label.setFont(juce::Font(12.0f));
}

void GalleryPage::addDrawing(juce::Rectangle<int> bounds, Drawing drawing)
{
    add(std::make_unique<DrawnSample>(std::move(drawing)), bounds);
}

void GalleryPage::addButtons(int y)
{
    using State = juce::Button::ButtonState;

    struct Sample
    {
        const char* name;
        State state;
        bool isOn, isEnabled;
    };

    constexpr Sample samples[] = {
        {"Normal", State::buttonNormal, false, true}, {"Over", State::buttonOver, false, true},
        {"Down", State::buttonDown, false, true},     {"Disabled", State::buttonNormal, false, false},
        {"On", State::buttonNormal, true, true},      {"On, over", State::buttonOver, true, true},
        {"On, down", State::buttonDown, true, true},  {"On, disabled", State::buttonNormal, true, false}};

    addCaption("Buttons", margin, y);
    int x = margin;

    for (const auto& sample : samples)
    {
        auto& button = add(std::make_unique<juce::TextButton>(sample.name), {x, y + 20, 90, 24});
        button.setToggleState(sample.isOn, juce::dontSendNotification);
        button.setEnabled(sample.isEnabled);
        button.setState(sample.state);
        x += 100;
    }

    x = margin;

    for (const int edges :
         {juce::Button::ConnectedOnRight + 0, juce::Button::ConnectedOnLeft | juce::Button::ConnectedOnRight,
          juce::Button::ConnectedOnLeft + 0})
    {
        auto& button = add(std::make_unique<juce::TextButton>("Pill"), {x, y + 54, 60, 24});
        button.setConnectedEdges(edges);
        x += 60;
    }

    x += 40;

    struct Icon
    {
        const char* data;
        int size;
        IconButton::ButtonStyle style;
    };

    const Icon icons[] = {{Artwork::undo_svg, Artwork::undo_svgSize, IconButton::iconCentred},
                          {Artwork::menu_svg, Artwork::menu_svgSize, IconButton::iconCentred},
                          {Artwork::copyRight_svg, Artwork::copyRight_svgSize, IconButton::iconWithText},
                          {Artwork::redo_svg, Artwork::redo_svgSize, IconButton::iconOnly}};

    for (const auto& icon : icons)
    {
        const int width = icon.style == IconButton::iconWithText ? 90 : 32;
        auto& button = add(std::make_unique<IconButton>("Copy", juce::String()), {x, y + 54, width, 24});
        button.setIcon(
            juce::Drawable::createFromImageData(icon.data, static_cast<std::size_t>(icon.size)).release());
        button.setButtonStyle(icon.style);
        x += width + 10;
    }
}

void GalleryPage::addToggles(int y)
{
    using State = juce::Button::ButtonState;

    struct Sample
    {
        const char* name;
        State state;
        bool isOn, isEnabled;
    };

    constexpr Sample samples[] = {{"Off", State::buttonNormal, false, true},
                                  {"Ticked", State::buttonNormal, true, true},
                                  {"Over", State::buttonOver, true, true},
                                  {"Down", State::buttonDown, true, true},
                                  {"Disabled", State::buttonNormal, true, false}};

    addCaption("Toggle buttons and radio buttons", margin, y);

    for (int row = 0; row < 2; ++row)
    {
        int x = margin;

        for (const auto& sample : samples)
        {
            auto& button =
                add(std::make_unique<juce::ToggleButton>(sample.name), {x, y + 20 + 28 * row, 110, 24});
            button.setToggleState(sample.isOn, juce::dontSendNotification);

            // Each in a group of its own, so that all can be on.
            button.setRadioGroupId(row == 0 ? 0 : x + 1, juce::dontSendNotification);
            button.setEnabled(sample.isEnabled);
            button.setState(sample.state);
            x += 120;
        }
    }
}

void GalleryPage::addKnobs(int y)
{
    struct Sample
    {
        int size;
        double value;
        bool isEnabled;
    };

    constexpr Sample samples[] = {{200, 0.6, true}, {200, 0.6, false}, {120, 0.0, true},
                                  {120, 1.0, true}, {60, 0.5, true},   {32, 0.25, true}};

    addCaption("Knobs", margin, y);
    int x = margin;

    for (const auto& sample : samples)
    {
        auto& knob =
            add(std::make_unique<juce::Slider>(juce::Slider::RotaryVerticalDrag, juce::Slider::NoTextBox),
                {x, y + 20, sample.size, sample.size});
        knob.setRange(0.0, 1.0);
        knob.setValue(sample.value, juce::dontSendNotification);
        knob.setEnabled(sample.isEnabled);
        x += sample.size + 16;
    }
}

void GalleryPage::addFaders(int y)
{
    using Style = juce::Slider::SliderStyle;

    struct Sample
    {
        Style style;
        bool isEnabled, hasTextBox;
        juce::Rectangle<int> bounds;
    };

    const Sample samples[] = {
        {Style::LinearHorizontal, true, false, {margin, 20, 300, 32}},
        {Style::LinearHorizontal, false, false, {margin, 54, 300, 32}},
        {Style::LinearHorizontal, true, false, {margin, 90, 300, 20}},
        {Style::LinearBar, true, true, {margin, 116, 300, 24}},
        {Style::LinearHorizontal, true, true, {340, 20, 220, 32}},
        {Style::TwoValueHorizontal, true, false, {340, 60, 220, 32}},
        {Style::ThreeValueHorizontal, true, false, {340, 100, 220, 32}},
        {Style::LinearVertical, true, false, {590, 20, 40, 130}},
        {Style::LinearVertical, false, false, {640, 20, 40, 130}},
        {Style::TwoValueVertical, true, false, {690, 20, 40, 130}},
        {Style::ThreeValueVertical, true, false, {740, 20, 40, 130}},
    };

    addCaption("Faders", margin, y);

    for (const auto& sample : samples)
    {
        auto& fader =
            add(std::make_unique<juce::Slider>(sample.style, sample.hasTextBox ? juce::Slider::TextBoxRight
                                                                               : juce::Slider::NoTextBox),
                sample.bounds.translated(0, y));
        fader.setRange(0.0, 100.0, 1.0);

        if (fader.isTwoValue() || fader.isThreeValue())
            fader.setMinAndMaxValues(20.0, 80.0, juce::dontSendNotification);

        if (!fader.isTwoValue())
            fader.setValue(45.0, juce::dontSendNotification);

        fader.setEnabled(sample.isEnabled);
    }
}

void GalleryPage::addBoxes(int y)
{
    addCaption("Group, combo boxes, text, list, tooltip", margin, y);
    add(std::make_unique<juce::GroupComponent>(juce::String(), "Early reflections"),
        {margin, y + 22, 280, 110});

    for (const bool isEnabled : {true, false})
    {
        auto& box =
            add(std::make_unique<juce::ComboBox>(), {margin + 300, y + (isEnabled ? 22 : 56), 180, 26});
        box.addItemList({"Small room", "Large hall"}, 1);
        box.setSelectedId(isEnabled ? 1 : 2, juce::dontSendNotification);
        box.setEnabled(isEnabled);
    }

    auto& text = add(std::make_unique<juce::TextEditor>(), {margin + 300, y + 92, 180, 26});
    text.setText("Selected text");
    text.setHighlightedRegion({0, 8});

    auto& list = add(std::make_unique<juce::ListBox>(juce::String(), listModel.get()),
                     {margin + 500, y + 22, 220, 110});
    list.updateContent();

    addDrawing({margin + 740, y + 22, 180, 26}, [this](auto& g, auto area)
               { theme.drawTooltip(g, "Adjusts the reverb level", area.getWidth(), area.getHeight()); });
}

void GalleryPage::addBars(int y)
{
    using Header = juce::TableHeaderComponent;

    addCaption("Scroll bar, table header, toolbar", margin, y);

    auto& bar = add(std::make_unique<juce::ScrollBar>(false),
                    {margin, y + 24, 280, theme.getDefaultScrollbarWidth()});
    bar.setAutoHide(false);
    bar.setRangeLimits({0.0, 100.0});
    bar.setCurrentRange({20.0, 50.0});

    auto& header = add(std::make_unique<Header>(), {margin + 300, y + 22, 400, 24});
    header.addColumn("Name", 1, 120);
    header.addColumn("Size", 2, 100);
    header.addColumn("Time", 3, 100);
    header.addColumn("", 4, 6, 1);
    header.setSortColumnId(2, true);

    addDrawing({margin + 300, y + 50, 120, 24},
               [this, &header](auto& g, auto area)
               {
                   theme.drawTableHeaderColumn(g, header, "Pressed", 1, area.getWidth(), area.getHeight(),
                                               true, true, Header::sortedBackwards);
               });
    addDrawing({margin + 420, y + 50, 120, 24},
               [this, &header](auto& g, auto area)
               {
                   theme.drawTableHeaderColumn(g, header, "Hovered", 1, area.getWidth(), area.getHeight(),
                                               true, false, Header::sortedForwards);
               });

    add(std::make_unique<juce::Toolbar>(), {margin + 720, y + 22, 200, 32});
}

void GalleryPage::addMenus(int y)
{
    addCaption("Menus and window title bar", margin, y);
    add(std::make_unique<juce::MenuBarComponent>(menuBarModel.get()),
        {margin, y + 22, 280, theme.getDefaultMenuBarHeight()});

    addDrawing({margin, y + 50, 280, 24},
               [this](auto& g, auto area)
               {
                   juce::MenuBarComponent bar;
                   bar.setLookAndFeel(&theme);
                   bar.setSize(area.getWidth(), area.getHeight());
                   theme.drawMenuBarItem(g, area.getWidth(), area.getHeight(), 0, "Highlighted", true, false,
                                         true, bar);
                   bar.setLookAndFeel(nullptr);
               });

    addDrawing({margin + 300, y + 22, 240, 104},
               [this](auto& g, auto area)
               {
                   theme.drawPopupMenuBackground(g, area.getWidth(), area.getHeight());
                   area.reduce(2, 2);

                   const auto drawItem =
                       [&](bool isActive, bool isHighlighted, bool isTicked, const juce::String& text)
                   {
                       theme.drawPopupMenuItem(g, area.removeFromTop(25), false, isActive, isHighlighted,
                                               isTicked, false, text, {}, nullptr, nullptr);
                   };
                   theme.drawPopupMenuSectionHeader(g, area.removeFromTop(25), "Factory presets");
                   drawItem(true, false, true, "Default hall");
                   drawItem(true, true, false, "Highlighted");
                   drawItem(false, false, false, "Inactive");
               });

    auto& window = add(std::make_unique<juce::DocumentWindow>(
                           "About Ambrel", theme.findColour(juce::AlertWindow::backgroundColourId),
                           juce::DocumentWindow::allButtons, false),
                       {margin + 560, y + 22, 360, 90});
    window.setUsingNativeTitleBar(false);
    window.setIcon(juce::ImageCache::getFromMemory(Artwork::veskoraLogo_png, Artwork::veskoraLogo_pngSize));
    window.setVisible(true);
}
