// Between paths, which are bytes, and the text that Qt shows. Qt cannot hold a name that is not
// UTF-8, so a path is turned to text for people to read and text to a path only where people typed
// it.
#pragma once

#include <QString>

#include <filesystem>

namespace PathText
{

// Bytes that are no UTF-8 become U+FFFD.
[[nodiscard]] QString textOf(const std::filesystem::path& path);

[[nodiscard]] std::filesystem::path pathOf(const QString& text);

// "~" in place of the home folder that a path begins with.
[[nodiscard]] QString abbreviatedWithTilde(const QString& path);

} // namespace PathText
