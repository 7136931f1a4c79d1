// Waits for its end, whatever it is called and whatever it is told: copied, it stands for any program that runs.
#include <unistd.h>

int main() {
    while (true) pause();
}
