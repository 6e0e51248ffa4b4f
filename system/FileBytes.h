// Reading and writing with the interruptions and short counts that a system call may have, seen to
// in one place. Failures leave their reason in errno.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace FileBytes
{

// Fills `buffer` from the descriptor's position; fewer bytes mean the end of the file, -1 a
// failure.
[[nodiscard]] std::ptrdiff_t readFully(int descriptor, std::span<std::byte> buffer);

// The same from `offset`, leaving the position alone.
[[nodiscard]] std::ptrdiff_t readFullyAt(
    int descriptor, std::uint64_t offset, std::span<std::byte> buffer);

// The whole of a regular file, or of what a link leads to; nothing when it cannot be read (errno),
// is longer than `limit` bytes (EFBIG), or is no file but a pipe, say, which would hold us up
// (EINVAL).
[[nodiscard]] std::optional<std::string> readWhole(
    const std::filesystem::path& path, std::size_t limit);

// Writes all of the bytes at the descriptor's position.
[[nodiscard]] bool writeAll(int descriptor, std::span<const std::byte> bytes);
[[nodiscard]] bool writeAll(int descriptor, std::string_view text);

// The same at `offset`, leaving the position alone.
[[nodiscard]] bool writeAllAt(
    int descriptor, std::uint64_t offset, std::span<const std::byte> bytes);

// Makes sure that the system has taken what was written: some file systems tell at a close that
// there was no room, so another descriptor of the file is closed.
[[nodiscard]] bool flush(int descriptor);

} // namespace FileBytes
