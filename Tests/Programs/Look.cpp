// Follows how the desktop wants programs to look, in an environment that a test chooses before any library reads it.
//
//   ravik-test-look FILE
//
// Appends a line "SCHEME CONTRAST REDUCED SCALE" to FILE, now and at each change; "?" stands for unknown.

#include <cstdlib>
#include <fstream>

#include "Platform/Linux/DesktopAppearance.h"
#include "Platform/Linux/GLibLoop.h"

namespace {

const char* word(const std::optional<bool>& flag) { return !flag ? "?" : *flag ? "yes" : "no"; }

void tell(const char* file, const ravik::Look& look) {
    std::ofstream out(file, std::ios::app);
    out << (!look.scheme                               ? "?"
            : *look.scheme == ravik::ColorScheme::dark ? "dark"
                                                       : "light")
        << ' ' << word(look.highContrast) << ' ' << word(look.reducedMotion) << ' ';
    if (look.textScale) {
        out << *look.textScale << std::endl;
    } else {
        out << '?' << std::endl;
    }
}

}  // namespace

int main(int count, char** words) {
    if (count != 2) return 2;
    const char* bus = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    ravik::platform::GLibLoop loop;
    ravik::platform::DesktopAppearance appearance({bus ? bus : "", ""});
    appearance.onChange([&](const ravik::Look& look) { tell(words[1], look); });
    tell(words[1], appearance.look());
    loop.run();
}
