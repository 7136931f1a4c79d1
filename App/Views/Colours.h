#pragma once

#include <QColor>
#include <QPalette>

namespace ravik::app {

/// What the desktop says of colour.
struct ColourScheme {
    bool dark = false;
    bool highContrast = false;

    friend bool operator==(const ColourScheme&, const ColourScheme&) = default;
};

/// Every colour of the interface, sRGB. Those with an alpha lie over any of the surfaces.
struct Colours {
    QColor tolvaneSignalText;       ///< amber text, thin marks, the focus ring
    QColor tolvaneSignalFill;       ///< amber surfaces
    QColor tolvaneSignalFillHover;  ///< the same under the pointer
    QColor signalPressed;           ///< the same, pressed
    QColor tolvaneOnSignal;         ///< text on amber
    QColor tolvaneSafe;
    QColor tolvaneCaution;
    QColor tolvaneNever;
    QColor tolvaneSafeFill;     ///< charts: on track
    QColor tolvaneCautionFill;  ///< charts: wrong too often
    QColor tolvaneContent;      ///< cards, lists, fields
    QColor tolvaneSeparator;
    QColor tolvaneSwap;  ///< memory that was spilled
    QColor tolvaneData;  ///< what stays
    QColor window;
    QColor sidebar;
    QColor panel;
    QColor text;
    QColor text2;  ///< secondary
    QColor text3;  ///< disabled; the only text that may be faint
    QColor control;
    QColor controlBorder;
    QColor controlHover;
    QColor controlPressed;
    QColor hover;   ///< over a row under the pointer
    QColor select;  ///< over a selected row; the groove of a picker
    QColor wash;    ///< over a ticked row
    QColor picked;  ///< the chosen option in its groove
    QColor rest;    ///< charts: what has no name
    QColor track;   ///< charts: what is not held
    QColor onData;  ///< text on tolvaneData
    QColor edge;    ///< the line around a popup
    QColor shade;   ///< over a window behind its sheet
    QColor safeWash;
    QColor cautionWash;

    friend bool operator==(const Colours&, const Colours&) = default;
};

/// The colours for this scheme on the desktop's own surfaces; on neutral ones of our own where the desktop's palette is
/// of the other scheme, or where some text of ours could not be read on it.
Colours colours(const ColourScheme& scheme, const QPalette& desktop);

/// Whether a palette is a dark one.
bool isDark(const QPalette& palette);

/// What is seen of a colour with alpha that lies on an opaque one.
QColor over(const QColor& top, const QColor& bottom);

/// From 1 (the same) to 21 (black on white), as WCAG 2 defines it. Both opaque.
double contrast(const QColor& one, const QColor& other);

}  // namespace ravik::app
