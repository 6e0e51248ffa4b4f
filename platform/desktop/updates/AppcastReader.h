// Reads update feeds: RSS 2.0 with the elements and attributes that say which version an item is.
// Those are known by their local names, whatever prefix they have. Pure functions of bytes and
// texts, on any thread: no network, no windows.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace AppcastReader
{

constexpr qsizetype largestFeedInBytes = 1 << 20;

// All texts as they stand in the feed; empty where it says nothing.
struct Item {
    QString version; // what is compared
    QString shortVersionString; // what people read; empty: the version
    QString link; // of the item's page, or the feed's where the item has none
    QString description; // mostly HTML
    QString releaseNotesLink;
    QString enclosureURL; // empty: an item that only tells
    QString os;
    QString channel;
    bool isCritical = false;
};

// The items in the feed's order; nothing when the bytes are too many, no XML to their end, no RSS
// with a channel, or have a DOCTYPE, which no feed needs and which could define entities.
[[nodiscard]] std::optional<std::vector<Item>> read(const QByteArray& bytes);

// Of the items for this system, and for everybody rather than for a channel that one has to join,
// the one with the highest version; null when there is none.
[[nodiscard]] const Item* newestItem(const std::vector<Item>& items);

// Below, at or above 0 as the first version is lower, equal or higher. Numbers are compared as
// numbers, the missing ones being 0; letters and "~" are lower than the end, "~" lowest:
// 1.0~a < 1.0b2 < 1.0 = 1 < 1.0.1 < 1.10. What separates the parts does not count.
[[nodiscard]] int compareVersions(const QString& first, const QString& second);

} // namespace AppcastReader
