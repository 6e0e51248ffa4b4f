// How much there is to read of a job's items, added up by a thread of its own while the job begins:
// nobody waits for it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <thread>
#include <vector>

class InputSizes
{
public:
    using Path = std::filesystem::path;

    struct Reading {
        bool followsItems = false; // those that are links
        bool followsLinks = false; // all others, too; then each file is read once
        bool excludesDSStore = false;
    };

    InputSizes(std::vector<Path> items, Reading reading);

    // Of the first items, that many; nothing until that is known.
    [[nodiscard]] std::optional<std::uint64_t> ofFirst(std::size_t count) const;
    [[nodiscard]] std::optional<std::uint64_t> ofAll() const { return ofFirst(_items.size()); }

    [[nodiscard]] const std::vector<Path>& items() const { return _items; }

private:
    void _measure(const std::stop_token& stop);

    const std::vector<Path> _items;
    const Reading _reading;
    std::vector<std::uint64_t> _ofFirst; // indexed by how many; as far as:
    std::atomic<std::size_t> _known = 0;
    std::jthread _thread; // last: it uses all of the above
};
