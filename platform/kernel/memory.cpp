// Movable memory blocks. They never move; the handle is a record that holds the address.
#include "platform/api/kernel.h"
#include "platform/kernel/heap.h"
#include "platform/kernel/system_calls.h"
#include "platform/kernel/test_hooks.h"

#include <cstdlib>
#include <new>
#include <unordered_map>

namespace {

struct MemoryBlock {
    void* address;
    int locks;
};

constexpr SIZE_T largestBlock = 0x7FFFFFFF;

std::unordered_map<const void*, MemoryBlock*> blockOfAddress;
std::unordered_map<const void*, MemoryBlock*> liveBlocks;
int successesLeft = -1;

MemoryBlock* BlockOf(HGLOBAL handle)
{
    auto found = liveBlocks.find(handle);
    if (found == liveBlocks.end()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return found->second;
}

bool AllocationMayFail()
{
    if (successesLeft < 0) {
        return false;
    }
    return successesLeft-- == 0;
}

} // namespace

void FailAllocationAfter(int successes)
{
    successesLeft = successes;
}

int GlobalBlocksInUse()
{
    return static_cast<int>(liveBlocks.size());
}

// Always zero-filled, which the flags only permit.
HGLOBAL WINAPI GlobalAlloc(UINT, SIZE_T size)
{
    void* address = nullptr;
    if (size <= largestBlock && !AllocationMayFail()) {
        address = systemCalls.allocate(1, size > 0 ? size : 1);
    }
    MemoryBlock* block = address != nullptr ? new (std::nothrow) MemoryBlock{address, 0} : nullptr;
    const bool listed = block != nullptr && WithMemory([&] {
                            blockOfAddress[address] = block;
                            liveBlocks[block] = block;
                        });
    if (!listed) {
        blockOfAddress.erase(address);
        delete block;
        free(address);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return block;
}

LPVOID WINAPI GlobalLock(HGLOBAL handle)
{
    MemoryBlock* block = BlockOf(handle);
    if (block == nullptr) {
        return nullptr;
    }
    block->locks++;
    return block->address;
}

// FALSE when the block is not locked any more, as Windows has it.
BOOL WINAPI GlobalUnlock(HGLOBAL handle)
{
    MemoryBlock* block = BlockOf(handle);
    if (block == nullptr) {
        return FALSE;
    }
    SetLastError(ERROR_SUCCESS);
    if (block->locks > 0) {
        block->locks--;
    }
    return block->locks > 0;
}

HGLOBAL WINAPI GlobalHandle(LPCVOID address)
{
    auto found = blockOfAddress.find(address);
    if (found == blockOfAddress.end()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return found->second;
}

HGLOBAL WINAPI GlobalFree(HGLOBAL handle)
{
    if (handle == nullptr) {
        return nullptr;
    }
    MemoryBlock* block = BlockOf(handle);
    if (block == nullptr) {
        return handle;
    }
    blockOfAddress.erase(block->address);
    liveBlocks.erase(block);
    free(block->address);
    delete block;
    return nullptr;
}
