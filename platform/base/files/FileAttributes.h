// What there is about a file besides its contents.
#pragma once

#include <system_error>

namespace FileAttributes
{

// Gives an open file or folder the extended attributes, permissions and times of another. Goes on
// after a failure and gives the first one. None are what only the system can set (security.selinux
// and its like), and permissions and times on a file system that has none.
[[nodiscard]] std::error_code copy(int from, int to);

} // namespace FileAttributes
