#include "movie/pool.h"

#include <algorithm>
#include <cstddef>

#include "player/engine_services.h"

namespace qel {
namespace {

// What lies in front of every block here.
struct alignas(std::max_align_t) BlockHeader {
    std::uint32_t charged;
};

// The heap is asked again after giving back half of what is wanted, twice.
void* allocateOrPurge(Pool& pool, std::size_t size, std::uint32_t charged) {
    constexpr int retries = 2;
    for (int attempt = 0;; ++attempt) {
        if (void* block = allocateFromHeap(*pool.player, size)) return block;
        if (!pool.purge || attempt == retries) return nullptr;
        pool.purge(pool.purgeContext, charged / 2);
    }
}

// Whether the budget allows a block, where need be once something else was given back.
bool fitsBudget(Pool& pool, std::uint32_t charged) {
    if (std::uint64_t{pool.inUse} + charged < pool.budget) return true;
    return pool.purge && pool.purge(pool.purgeContext, charged);
}

void take(Pool& pool, std::uint32_t charged) {
    pool.inUse += charged;
    pool.peak = std::max(pool.peak, pool.inUse);
    pool.within = std::min(pool.peak, pool.budget);
}

}  // namespace

void* allocateBlock(Pool& pool, std::size_t size, std::uint32_t charged) {
    if (!fitsBudget(pool, charged)) return nullptr;
    void* block = allocateOrPurge(pool, sizeof(BlockHeader) + size, charged);
    if (!block) return nullptr;
    auto* header = new (block) BlockHeader{charged + blockHeaderCharge};
    take(pool, header->charged);
    return header + 1;
}

bool chargeMore(Pool& pool, std::uint32_t charge) {
    if (!fitsBudget(pool, charge)) return false;
    take(pool, charge + blockHeaderCharge);
    return true;
}

void freeBlock(Pool& pool, void* block) {
    if (!block) return;
    BlockHeader* header = static_cast<BlockHeader*>(block) - 1;
    pool.inUse -= header->charged;
    freeToHeap(*pool.player, header);
}

Result copyText(Pool& pool, std::span<const std::uint8_t> bytes, PoolText& text) {
    PoolText copy;
    if (failed(copy.assignZeros(pool, static_cast<std::uint32_t>(bytes.size()) + 1))) return Result::outOfMemory;
    for (std::uint32_t i = 0; i < bytes.size(); ++i) copy[i] = static_cast<char>(bytes[i]);
    text = std::move(copy);
    return Result::done;
}

}  // namespace qel
