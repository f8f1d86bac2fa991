// Lines of a file or of standard input.
#include "tools/common/lineInput.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "tools/common/failure.h"

namespace
{

struct FileCloser
{
    void operator()(std::FILE* file) const
    {
        if (file != stdin)
            std::fclose(file);
    }
};

} // namespace

void readLines(const std::string& path, LineSplitter& splitter)
{
    const std::unique_ptr<std::FILE, FileCloser> file(path == "-" ? stdin : std::fopen(path.c_str(), "re"));
    if (!file)
        throw Refused(path + ": " + std::strerror(errno));
    std::array<char, 65536> piece;
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), file.get()))
        splitter.push({piece.data(), count});
    if (std::ferror(file.get()) != 0)
        throw Refused(path + ": " + std::strerror(errno));
    splitter.finish();
}
