// What the program says about bytes and log lines of any kind.

#include "tools/explain/explain.h"

#include "fuzz/fuzz.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    const std::string text = explainText(fuzz::Input(data, size).rest());
    // What comes from a file must not steer the terminal.
    fuzz::require(
        std::none_of(text.begin(), text.end(), [](unsigned char c) { return (c < 0x20 && c != 0x0A) || c == 0x7F; }),
        "printable text");
    return 0;
}
