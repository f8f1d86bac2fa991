// The least that a C++ library is: it needs the standard library and does nothing with it.
#include <string>

extern "C" __attribute__((visibility("default"))) std::size_t emptyLibrary(const char* text)
{
    return std::string(text).size();
}
