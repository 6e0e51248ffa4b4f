// What tests do with files. All of these throw std::system_error when the system refuses.
#pragma once

#include <chrono>
#include <filesystem>
#include <string_view>
#include <thread>
#include <vector>

namespace support
{

using Names = std::vector<std::string>;
using Lines = Names;
inline const Names nothing = {};
inline bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}
Lines linesOf(const std::string& text);

// The result of a system call, which is not negative unless it failed.
int checked(int result, const std::string& what);
// Makes or replaces a file; missing parent folders are made too.
void writeFile(const std::filesystem::path& file, std::string_view content);
// To its end, whatever its size is said to be.
std::string readFile(const std::filesystem::path& file);
// The modification (and access) time; of a link itself, not of what it leads to.
void setTime(
    const std::filesystem::path& file, std::int64_t secondsSince1970, long nanoseconds = 0);
void makeFifo(const std::filesystem::path& file);
// A folder with `levels` folders of one name inside each other and the file "leaf" in the last.
void makeNestedFolders(
    const std::filesystem::path& folder, const std::string& name, unsigned levels);
// The same bytes for the same seed; nothing compresses them.
std::string randomBytes(std::size_t sizeInBytes, unsigned seed);
// Text that compresses to about a third, the same for the same seed.
std::string someText(std::size_t sizeInBytes, unsigned seed = 1);
// The names in a folder, sorted by bytes.
Names namesIn(const std::filesystem::path& folder);

// Polls until `condition` holds; false when it did not come true in time.
template <typename Condition>
bool waitUntil(Condition condition, std::chrono::milliseconds timeout = std::chrono::seconds(20))
{
    const auto end = std::chrono::steady_clock::now() + timeout;
    bool holds = condition();
    for (; !holds && std::chrono::steady_clock::now() < end; holds = condition())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return holds;
}

} // namespace support
