#include "tools/common/Messages.h"

#include "system/Utf8.h"
#include "tools/common/Interrupt.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <initializer_list>
#include <mutex>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace
{

// Held over a whole write: both streams may be one pipe, and a long write to a pipe is done in
// parts.
std::mutex outputMutex;

// Waits until the stream takes more. False when a stop is asked for first: a signal need not
// interrupt the thread that waits here, so that is looked for now and then.
bool takesMore(int descriptor)
{
    constexpr int milliseconds = 100;
    pollfd stream{.fd = descriptor, .events = POLLOUT, .revents = 0};
    while (true) {
        const bool isLast = Interrupt::isRequested();
        const int count = ::poll(&stream, 1, isLast ? 0 : milliseconds);
        if (count > 0)
            return true;
        if (isLast || (count < 0 && errno != EINTR))
            return false;
    }
}

void writePiece(int descriptor, std::string_view piece)
{
    while (!piece.empty() && takesMore(descriptor)) {
        const ssize_t count = ::write(descriptor, piece.data(), piece.size());
        if (count > 0)
            piece.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR && errno != EAGAIN)
            return;
    }
}

// In pieces of which a pipe that takes any takes all. Needs no memory, as there may be none.
void write(int descriptor, std::initializer_list<std::string_view> parts)
{
    const std::lock_guard lock(outputMutex);
    std::array<char, PIPE_BUF> piece{};
    std::size_t used = 0;
    for (std::string_view part : parts) {
        while (!part.empty()) {
            const std::size_t count = part.copy(piece.data() + used, piece.size() - used);
            part.remove_prefix(count);
            used += count;
            if (used == piece.size())
                writePiece(descriptor, {piece.data(), std::exchange(used, 0)});
        }
    }
    writePiece(descriptor, {piece.data(), used});
}

void appendOctal(std::string& text, unsigned byte)
{
    text += '\\';
    for (const int shift : {6, 3, 0})
        text += static_cast<char>('0' + ((byte >> shift) & 7));
}

// One byte of ASCII, control bytes as ^X.
void appendAscii(std::string& text, unsigned byte)
{
    if (byte >= 0x20 && byte != 0x7f) {
        text += static_cast<char>(byte);
        return;
    }
    text += '^';
    text += static_cast<char>(byte ^ 0x40);
}

// Control characters that take two bytes, U+0080 to U+009F.
bool isHighControl(std::string_view sequence)
{
    return sequence.size() == 2 && sequence[0] == '\xc2'
        && static_cast<unsigned char>(sequence[1]) < 0xa0;
}

bool isPlain(char byte)
{
    return byte >= 0x20 && byte < 0x7f;
}

std::string escaped(std::string_view name, bool keepsUtf8)
{
    if (std::ranges::all_of(name, isPlain)) // as most are
        return std::string(name);
    std::string text;
    text.reserve(name.size());
    while (!name.empty()) {
        const std::size_t length = Utf8::sequenceLength(name);
        const std::string_view sequence = name.substr(0, length == 0 ? 1 : length);
        if (length == 1)
            appendAscii(text, static_cast<unsigned char>(sequence[0]));
        else if (length > 1 && keepsUtf8 && !isHighControl(sequence))
            text += sequence;
        else
            for (const char byte : sequence)
                appendOctal(text, static_cast<unsigned char>(byte));
        name.remove_prefix(sequence.size());
    }
    return text;
}

} // namespace

namespace Messages
{

std::string progressName(std::string_view name)
{
    return escaped(name, false);
}

std::string readableName(std::string_view name)
{
    return escaped(name, true);
}

void progress(std::string_view lines)
{
    write(STDOUT_FILENO, {lines});
}

void tell(std::string_view about, std::string_view text, std::string_view more)
{
    write(STDERR_FILENO, {about, ": ", text, more, "\n"});
}

void warn(std::string_view name, std::string_view reason)
{
    const std::string readable = readableName(name);
    write(STDERR_FILENO, {"warning: ", readable, ": ", reason, "\n"});
}

} // namespace Messages
