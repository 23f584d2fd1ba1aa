// The resources and strings that are embedded in the program, found by type and name or number.
#include "platform/api/kernel.h"
#include "platform/api/user.h"
#include "platform/kernel/resource_table.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <strings.h>

namespace {

// What a resource name argument stands for: a text, or a number (below 65536 in the pointer, or "#123").
struct ResourceName {
    const char* text;
    int number;
};

ResourceName NameOf(LPCSTR argument)
{
    uintptr_t word = reinterpret_cast<uintptr_t>(argument);
    if (word <= 0xFFFF) {
        return {nullptr, static_cast<int>(word)};
    }
    if (argument[0] == '#') {
        return {nullptr, atoi(argument + 1)};
    }
    return {argument, 0};
}

bool Matches(const ResourceName& wanted, const char* text, int number)
{
    if ((wanted.text != nullptr) && (text != nullptr)) {
        return strcasecmp(wanted.text, text) == 0;
    }
    return (wanted.text == nullptr) && (text == nullptr) && wanted.number == number;
}

bool IsOurModule(HMODULE module)
{
    return (module == nullptr) || module == GetModuleHandleA(nullptr);
}

const ModuleResource* ResourceOf(HRSRC handle)
{
    const ModuleResource* resource = static_cast<const ModuleResource*>(handle);
    std::less<const ModuleResource*> before;
    bool inside = (resource != nullptr) && !before(resource, moduleResources) &&
                  before(resource, moduleResources + moduleResourceCount);
    return inside ? resource : nullptr;
}

} // namespace

HMODULE WINAPI GetModuleHandleA(LPCSTR name)
{
    static int programModule;
    return name != nullptr ? nullptr : reinterpret_cast<HMODULE>(&programModule);
}

HRSRC WINAPI FindResourceA(HMODULE module, LPCSTR name, LPCSTR type)
{
    ResourceName wantedName = NameOf(name);
    ResourceName wantedType = NameOf(type);
    for (int i = 0; IsOurModule(module) && i < moduleResourceCount; i++) {
        const ModuleResource& resource = moduleResources[i];
        if (Matches(wantedType, resource.typeName, resource.typeNumber) &&
            Matches(wantedName, resource.name, resource.number)) {
            return const_cast<ModuleResource*>(&resource);
        }
    }
    SetLastError(ERROR_FILE_NOT_FOUND);
    return nullptr;
}

HGLOBAL WINAPI LoadResource(HMODULE, HRSRC handle)
{
    const ModuleResource* resource = ResourceOf(handle);
    return resource != nullptr ? const_cast<uint8_t*>(resource->data) : nullptr;
}

LPVOID WINAPI LockResource(HGLOBAL data)
{
    return data;
}

DWORD WINAPI SizeofResource(HMODULE, HRSRC handle)
{
    const ModuleResource* resource = ResourceOf(handle);
    return resource != nullptr ? resource->size : 0;
}

BOOL WINAPI FreeResource(HGLOBAL)
{
    return FALSE;
}

int WINAPI LoadStringA(HINSTANCE, UINT id, LPSTR buffer, int size)
{
    if ((buffer == nullptr) || size <= 0) {
        return 0;
    }
    buffer[0] = 0;
    const ModuleString* end = moduleStrings + moduleStringCount;
    const ModuleString* found = std::lower_bound(
        moduleStrings, end, id, [](const ModuleString& entry, uint32_t wanted) { return entry.id < wanted; });
    if (found == end || found->id != id) {
        return 0;
    }
    size_t length = std::min(strlen(found->text), static_cast<size_t>(size) - 1);
    memcpy(buffer, found->text, length);
    buffer[length] = 0;
    return static_cast<int>(length);
}
