// Cuts a stream of bytes into lines without ever holding more than one.
#include "tools/common/lineSplitter.h"

#include <utility>

LineSplitter::LineSplitter(Handler onLine) : onLine_(std::move(onLine)) {}

void LineSplitter::push(std::string_view bytes)
{
    while (!bytes.empty())
    {
        const std::size_t end = bytes.find('\n');
        const bool whole = end != std::string_view::npos;
        const std::string_view piece = bytes.substr(0, end);
        bytes.remove_prefix(whole ? end + 1 : bytes.size());
        if (whole && held_.empty() && piece.size() <= limit)
        {
            emit(piece);
            continue;
        }
        hold(piece);
        if (whole)
            finish();
    }
}

void LineSplitter::finish()
{
    if (!held_.empty())
        emit(held_);
    held_.clear();
    cutting_ = false;
}

std::size_t LineSplitter::cutLines() const { return cutLines_; }

void LineSplitter::hold(std::string_view bytes)
{
    const std::size_t room = limit - held_.size();
    if (bytes.size() > room && !cutting_)
    {
        cutting_ = true;
        ++cutLines_;
    }
    held_.append(bytes.substr(0, room));
}

void LineSplitter::emit(std::string_view line)
{
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    onLine_(line);
}
