#include "tools/common/Messages.h"

#include "system/FileBytes.h"
#include "system/Utf8.h"

#include <mutex>

#include <unistd.h>

namespace
{

// Held over a whole write: both streams may be one pipe, and a long write to a pipe is done in
// parts.
std::mutex outputMutex;

void write(int descriptor, std::string_view text)
{
    const std::lock_guard lock(outputMutex);
    (void)FileBytes::writeAll(descriptor, text);
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

std::string escaped(std::string_view name, bool keepsUtf8)
{
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
    write(STDOUT_FILENO, lines);
}

void tell(const std::string& text)
{
    write(STDERR_FILENO, text + '\n');
}

void warn(std::string_view name, std::string_view reason)
{
    std::string text = "warning: " + readableName(name) + ": ";
    text += reason;
    tell(text);
}

} // namespace Messages
