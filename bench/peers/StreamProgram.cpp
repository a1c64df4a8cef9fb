// The least program that prints through the standard streams.
#include <iostream>

int main() {
    std::cout << "Usage: none.\n";
    return 0;
}
