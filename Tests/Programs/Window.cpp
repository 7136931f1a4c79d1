// A program with one window: Window DISPLAY quit|refuse. Further words are for others to read.
#include <string_view>

#include "Tests/Platform/Support/XClient.h"

int main(int count, char** words) {
    using namespace ravik::platform;
    if (count < 3) return 2;
    showXClient(words[1], std::string_view(words[2]) == "quit" ? OnClose::quit : OnClose::refuse);
}
