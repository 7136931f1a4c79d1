#include "App/Views/Colours.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace ravik::app {

namespace {

/// What the neutral colours are made of.
struct Surfaces {
    QColor window;
    QColor sidebar;
    QColor content;
    QColor panel;
    QColor text;
    QColor text2;
};

QColor faint(QColor ink, double alpha) {
    ink.setAlphaF(static_cast<float>(alpha));
    return ink;
}

Surfaces ownSurfaces(const ColourScheme& scheme) {
    if (scheme.highContrast) {
        const QColor paper = scheme.dark ? "#000000" : "#FFFFFF";
        const QColor ink = scheme.dark ? "#FFFFFF" : "#000000";
        return {paper, paper, paper, paper, ink, over(faint(ink, 0.85), paper)};
    }
    if (scheme.dark) return {"#1E1E20", "#252527", "#28282B", "#242427", "#F1F1F2", "#ABABB1"};
    return {"#F7F7F5", "#EFEFEC", "#FFFFFF", "#FCFCFB", "#1B1B1D", "#5B5B60"};
}

/// The ink, as faint as can be read on each of these, and not fainter than `alpha`.
QColor readable(const QColor& ink, double alpha, double wanted, std::initializer_list<QColor> surfaces) {
    for (;; alpha += 0.04) {
        QColor out = over(faint(ink, std::min(alpha, 1.0)), *surfaces.begin());
        const auto isRead = [&](const QColor& surface) { return contrast(out, surface) >= wanted; };
        if (alpha >= 1 || std::all_of(surfaces.begin(), surfaces.end(), isRead)) return out;
    }
}

Surfaces desktopSurfaces(const QPalette& desktop, double wanted) {
    Surfaces out;
    out.window = desktop.color(QPalette::Active, QPalette::Window);
    out.content = desktop.color(QPalette::Active, QPalette::Base);
    out.text = desktop.color(QPalette::Active, QPalette::Text);
    out.sidebar = over(faint(out.text, 0.035), out.window);
    out.panel = over(faint(out.content, 0.6), out.window);
    const QColor placeholder = over(desktop.color(QPalette::Active, QPalette::PlaceholderText), out.content);
    const QColor row = over(faint(out.text, 0.1), out.sidebar);
    const bool isRead = contrast(placeholder, out.content) >= wanted && contrast(placeholder, row) >= wanted;
    out.text2 = isRead ? placeholder : readable(out.text, 0.72, wanted, {out.content, out.window, row});
    return out;
}

void signalColours(Colours& out, const ColourScheme& scheme) {
    out.tolvaneOnSignal = "#24180A";
    if (scheme.dark) {
        out.tolvaneSignalText = scheme.highContrast ? "#FFD08A" : "#F2B458";
        out.tolvaneSignalFill = "#F2B458";
        out.tolvaneSignalFillHover = "#F7C473";
        out.signalPressed = scheme.highContrast ? "#E9AC52" : "#DFA349";
        out.tolvaneSafe = scheme.highContrast ? "#A9E8BF" : "#88D1A2";
        out.tolvaneCaution = scheme.highContrast ? "#FFCBA8" : "#EDA97C";
        out.tolvaneNever = scheme.highContrast ? "#FFC2B8" : "#F2A294";
        out.tolvaneSafeFill = "#88D1A2";
        out.tolvaneCautionFill = "#EDA97C";
        return;
    }
    out.tolvaneSignalText = scheme.highContrast ? "#5A3500" : "#854F00";
    out.tolvaneSignalFill = "#EBA941";
    out.tolvaneSignalFillHover = scheme.highContrast ? "#F0B65C" : "#E29A2C";
    out.signalPressed = scheme.highContrast ? "#E5A23A" : "#D78F24";
    out.tolvaneSafe = scheme.highContrast ? "#0D4526" : "#1B683E";
    out.tolvaneCaution = scheme.highContrast ? "#632C04" : "#91450D";
    out.tolvaneNever = scheme.highContrast ? "#7A1B14" : "#A5342B";
    out.tolvaneSafeFill = "#7CC89A";
    out.tolvaneCautionFill = "#EAA77A";
}

Colours assemble(const ColourScheme& scheme, const Surfaces& surfaces) {
    Colours out;
    signalColours(out, scheme);
    const bool dark = scheme.dark;
    const bool strong = scheme.highContrast;
    const QColor ink = surfaces.text;
    out.window = surfaces.window;
    out.sidebar = surfaces.sidebar;
    out.panel = surfaces.panel;
    out.tolvaneContent = surfaces.content;
    out.text = surfaces.text;
    out.text2 = surfaces.text2;
    out.text3 = faint(ink, strong ? 0.55 : dark ? 0.38 : 0.40);
    out.tolvaneSwap = surfaces.text2;
    out.tolvaneData = faint(ink, 0.16);
    out.rest = faint(ink, dark ? 0.085 : 0.08);
    out.track = faint(ink, 0.035);
    out.onData = readable(ink, 0.74, strong ? 7 : 4.5,
                          {over(out.tolvaneData, surfaces.content), over(out.tolvaneData, surfaces.window),
                           over(out.tolvaneData, surfaces.sidebar)});
    out.tolvaneSeparator = faint(ink, strong ? 0.6 : 0.10);
    out.controlBorder = faint(ink, strong ? 0.8 : dark ? 0.17 : 0.18);
    out.control = dark ? faint(ink, 0.065) : surfaces.content;
    out.controlHover = dark ? faint(ink, 0.10) : over(faint(ink, 0.05), surfaces.content);
    out.controlPressed = dark ? faint(ink, 0.14) : over(faint(ink, 0.10), surfaces.content);
    out.hover = faint(ink, dark ? 0.05 : 0.045);
    out.select = faint(ink, dark ? 0.10 : 0.085);
    out.wash = faint(out.tolvaneSignalFill, dark ? 0.09 : 0.12);
    out.picked = dark ? over(faint(ink, strong ? 0.2 : 0.17), surfaces.content) : surfaces.content;
    out.edge = faint(ink, strong ? 0.8 : 0.16);
    out.shade = QColor(0, 0, 0, dark ? 128 : 82);
    out.safeWash = faint(out.tolvaneSafe, dark ? 0.08 : 0.07);
    out.cautionWash = faint(out.tolvaneCaution, dark ? 0.09 : 0.08);
    return out;
}

/// The least contrast that any text has on the plain surfaces, and on a selected row and a control on them.
double worst(const Colours& all) {
    double least = 21;
    for (const QColor& surface : {all.window, all.sidebar, all.tolvaneContent, all.panel}) {
        const QColor row = over(all.select, surface);
        const QColor pressed = over(all.controlPressed, surface);
        for (const QColor& text :
             {all.text, all.text2, all.tolvaneSignalText, all.tolvaneSafe, all.tolvaneCaution, all.tolvaneNever}) {
            least = std::min({least, contrast(text, surface), contrast(text, row)});
        }
        least = std::min({least, contrast(all.text, pressed), contrast(all.tolvaneSignalText, pressed),
                          contrast(all.onData, over(all.tolvaneData, surface))});
    }
    return least;
}

double luminance(const QColor& colour) {
    const auto linear = [](float channel) {
        return channel <= 0.04045F ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

}  // namespace

Colours colours(const ColourScheme& scheme, const QPalette& desktop) {
    if (isDark(desktop) == scheme.dark) {
        const double wanted = scheme.highContrast ? 7.0 : 4.5;
        const Colours out = assemble(scheme, desktopSurfaces(desktop, wanted));
        if (worst(out) >= wanted) return out;
    }
    return assemble(scheme, ownSurfaces(scheme));
}

bool isDark(const QPalette& palette) {
    return luminance(palette.color(QPalette::Active, QPalette::Window)) <
           luminance(palette.color(QPalette::Active, QPalette::WindowText));
}

QColor over(const QColor& top, const QColor& bottom) {
    const float alpha = top.alphaF();
    const auto mix = [alpha](float above, float below) { return above * alpha + below * (1 - alpha); };
    return QColor::fromRgbF(mix(top.redF(), bottom.redF()), mix(top.greenF(), bottom.greenF()),
                            mix(top.blueF(), bottom.blueF()));
}

double contrast(const QColor& one, const QColor& other) {
    const double a = luminance(one) + 0.05;
    const double b = luminance(other) + 0.05;
    return std::max(a, b) / std::min(a, b);
}

}  // namespace ravik::app
