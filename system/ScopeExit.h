// Runs a block when a scope is left, by whatever way. The block must not throw.
#pragma once

#include <utility>

template <typename Block> class ScopeExit
{
public:
    explicit ScopeExit(Block block)
        : _block(std::move(block))
    {
    }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;
    ~ScopeExit() { _block(); }

private:
    Block _block;
};
