#include "Platform/Linux/LookRules.h"

#include <gtest/gtest.h>

#include "Platform/Linux/XSettingsText.h"
#include "Tests/Platform/Support/XSettingsBytes.h"

namespace ravik::platform {

TEST(LookRules, KnowsADarkThemeByItsName) {
    for (const char* name : {"Arc-Dark", "Adwaita-dark", "Yaru-purple-dark", "Mint-Y-Dark-Aqua", "BreezeDark",
                             "Adwaita:dark", "HighContrastInverse", "dark"}) {
        EXPECT_TRUE(isDarkTheme(name)) << name;
    }
    for (const char* name : {"Arc-Darker", "Adwaita", "Darkening", "HighContrast", "Yaru-light", ""}) {
        EXPECT_FALSE(isDarkTheme(name)) << name;
    }
}

TEST(LookRules, PreferenceGoesBeforeTheTheme) {
    LookSettings settings;
    EXPECT_EQ(lookOf(settings), Look{});
    settings.theme = "Adwaita";
    EXPECT_EQ(lookOf(settings).scheme, std::nullopt) << "a dark theme may have any name";
    settings.theme = "Adwaita-dark";
    EXPECT_EQ(lookOf(settings).scheme, ColorScheme::dark);
    settings.colorScheme = 0;
    EXPECT_EQ(lookOf(settings).scheme, ColorScheme::dark);
    settings.colorScheme = 2;
    EXPECT_EQ(lookOf(settings).scheme, ColorScheme::light);
    settings.colorScheme = 1;
    settings.theme = "Adwaita";
    EXPECT_EQ(lookOf(settings).scheme, ColorScheme::dark);
}

TEST(LookRules, TurnsWhatIsToldIntoALook) {
    LookSettings settings;
    settings.theme = "HighContrast";
    settings.animations = false;
    settings.textScale = 1.25;
    EXPECT_EQ(lookOf(settings), (Look{{}, true, true, 1.25}));
    settings.theme = "Adwaita";
    settings.highContrast = true;
    settings.textScale = 100;
    EXPECT_EQ(lookOf(settings), (Look{{}, true, true, 4}));
    settings.textScale = 0;
    EXPECT_EQ(lookOf(settings).textScale, std::nullopt);
}

TEST(LookRules, FillsInOnlyWhatIsOpen) {
    EXPECT_EQ(completed({ColorScheme::light, {}, {}, 1.5}, {ColorScheme::dark, true, false, 2}),
              (Look{ColorScheme::light, true, false, 1.5}));
}

TEST(XSettingsText, ReadsNumbersAndTextsInBothByteOrders) {
    for (const bool bigEndian : {false, true}) {
        XSettingsBytes bytes(bigEndian);
        bytes.text("Net/ThemeName", "Arc-Dark").colour("Gtk/Colour").number("Xft/DPI", 98304 * 3 / 2).number("a", -1);
        const auto values = parseXSettings(bytes.bytes());
        ASSERT_TRUE(values);
        EXPECT_EQ(*values, (XSettingsValues{{"Net/ThemeName", "Arc-Dark"}, {"Xft/DPI", 147456}, {"a", -1}}));
        EXPECT_EQ(lookOf(lookSettings(*values)), (Look{ColorScheme::dark, false, {}, 1.5}));
    }
}

TEST(XSettingsText, LeavesTheScaleOfWindowsOutOfTheTexts) {
    XSettingsBytes bytes(false);
    bytes.number("Xft/DPI", 2 * 98304).number("Gdk/UnscaledDPI", 98304).number("Gtk/EnableAnimations", 0);
    EXPECT_EQ(lookOf(lookSettings(*parseXSettings(bytes.bytes()))), (Look{{}, {}, true, 1.0}));
}

TEST(XSettingsText, RefusesWhatIsCutOffOrUnknown) {
    XSettingsBytes bytes(false);
    bytes.text("Net/ThemeName", "Arc-Dark").number("Xft/DPI", 7);
    const std::string whole = bytes.bytes();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(parseXSettings(whole.substr(0, length))) << length;
    }
    std::string strange = whole;
    strange[12] = 3;  // the first one's type
    EXPECT_FALSE(parseXSettings(strange));
    strange = whole;
    strange[0] = 2;  // the byte order
    EXPECT_FALSE(parseXSettings(strange));
    strange = whole;
    strange[11] = 127;  // two thousand million settings
    EXPECT_FALSE(parseXSettings(strange));
}

TEST(XSettingsText, ValueOfAnotherTypeTellsNothing) {
    XSettingsBytes bytes(false);
    bytes.number("Net/ThemeName", 1).text("Xft/DPI", "98304").text("Gtk/EnableAnimations", "0");
    EXPECT_EQ(lookOf(lookSettings(*parseXSettings(bytes.bytes()))), Look{});
}

}  // namespace ravik::platform
