// Writes every image to FOLDER/NAME.bin, for scripts/compare-images.sh.
#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>

#include "tests/images/ExchangeImages.h"
#include "tests/support/PrivateSharedMemory.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "Usage: write_images FOLDER\n");
        return 2;
    }
    vantric_test::enterPrivateSharedMemory();
    try {
        for (const vantric_test::Image& image : vantric_test::images()) {
            const std::string path = std::string(argv[1]) + "/" + image.name + ".bin";
            const vantric_test::Bytes content = image.make();
            std::ofstream file(path, std::ios::binary);
            for (const unsigned char byte : content) {
                file.put(static_cast<char>(byte));
            }
            if (content.empty() || !file.flush()) {
                throw std::runtime_error("cannot make " + path);
            }
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
