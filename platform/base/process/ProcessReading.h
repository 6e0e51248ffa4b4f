// What the kernel tells (in /proc) of a running process's reading, whatever program it is.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include <sys/types.h>

namespace ProcessReading
{

// The bytes that it has read so far, with those of its children that have ended; or those of a
// child that runs, if they are more: a script reads nothing, and what it starts reads all. Nothing
// where that is not counted or not for us to know.
[[nodiscard]] std::optional<std::uint64_t> bytesRead(pid_t process);

// The regular file that a child of it, or else it, has open for nothing but reading; of several the
// one opened last. Nothing between two files.
[[nodiscard]] std::optional<std::filesystem::path> openFile(pid_t process);

} // namespace ProcessReading
