// What a tool says. Progress goes to standard output, one line an entry, in plain ASCII: the
// program counts the lines of chunks that are pure ASCII only. Everything else goes to standard
// error, one line a message, with names as people write them. Control bytes are shown as ^X, bytes
// that are not text as \ooo, so that no file name can forge a line. Failures to write either are
// ignored: the one who listens may have gone, the archive still gets made. One who does not take
// what is said is waited for, until a stop is asked for.
#pragma once

#include <string>
#include <string_view>

namespace Messages
{

// `name` for a progress line: everything outside ASCII escaped.
std::string progressName(std::string_view name);
// `name` for a message: well-formed UTF-8 stays.
std::string readableName(std::string_view name);

// Writes whole lines of progress.
void progress(std::string_view lines);

// Writes "ABOUT: TEXT" and the line end, as one piece; callable from any thread, and without
// memory. The text may come in parts.
void tell(std::string_view about, std::string_view text, std::string_view more = {});
// "warning: NAME: REASON".
void warn(std::string_view name, std::string_view reason);

} // namespace Messages
