// What reading and writing property lists need of libplist, with owners; for their sources alone.
#pragma once

#include "system/ReferenceDate.h"

#include <chrono>
#include <cstdlib>
#include <memory>

#include <locale.h>
#include <plist/plist.h>

namespace PropertyListNodes
{

constexpr std::chrono::seconds referenceDate{referenceDateInUnixSeconds};

struct NodeDeleter {
    void operator()(plist_t node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, NodeDeleter>;

struct MemoryDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Type> using Memory = std::unique_ptr<Type, MemoryDeleter>;

// libplist 2.2 reads real numbers by the rules of the language that is set, which may have a comma
// where the file has a point. While this lives the thread has none.
class NoLanguage
{
public:
    NoLanguage()
        : _plain(::newlocale(LC_ALL_MASK, "C", nullptr))
        , _former(::uselocale(_plain))
    {
    }
    NoLanguage(const NoLanguage&) = delete;
    NoLanguage& operator=(const NoLanguage&) = delete;
    ~NoLanguage()
    {
        ::uselocale(_former);
        ::freelocale(_plain);
    }

private:
    const locale_t _plain;
    const locale_t _former;
};

} // namespace PropertyListNodes
