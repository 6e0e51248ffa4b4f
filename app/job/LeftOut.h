// What is missing from an archive, or not in it as it was, and why. Of very many only the first are
// kept, and the others counted.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

struct LeftOut {
    struct Item {
        std::string name; // a path, or the name in the archive
        std::string reason; // in the words of the system or of a tool
    };

    static constexpr std::size_t mostItems = 10'000; // some megabytes

    std::vector<Item> items = {};
    std::size_t more = 0; // that are not kept

    [[nodiscard]] std::size_t count() const { return items.size() + more; }

    void add(Item item)
    {
        if (items.size() < mostItems)
            items.push_back(std::move(item));
        else
            ++more;
    }
    void add(LeftOut other)
    {
        for (Item& item : other.items)
            add(std::move(item));
        more += other.more;
    }
};
