// The user's folders.
#include "platform/api/kernel.h"
#include "platform/api/shell.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

bool IsFolder(const std::string& path)
{
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// With every folder on the way to it.
bool MakeFolder(const std::string& path)
{
    if (IsFolder(path)) {
        return true;
    }
    const size_t slash = path.rfind('/');
    if (slash != 0 && !MakeFolder(path.substr(0, slash))) {
        return false;
    }
    // Another process may have made it since. The last error is that of the making.
    return CreateDirectoryA(path.c_str(), nullptr) || (GetLastError() == ERROR_ALREADY_EXISTS && IsFolder(path));
}

// Absolute, without a '/' at its end; empty where the environment names none.
std::string StateFolder()
{
    const auto absolute = [](const char* variable) -> std::string {
        const char* value = std::getenv(variable);
        return value != nullptr && value[0] == '/' ? value : "";
    };
    std::string folder = absolute("XDG_STATE_HOME");
    const std::string home = absolute("HOME");
    if (folder.empty() && !home.empty()) {
        folder = home + "/.local/state";
    }
    while (folder.size() > 1 && folder.back() == '/') {
        folder.pop_back();
    }
    return folder;
}

} // namespace

HRESULT WINAPI SHGetFolderPathA(HWND, int csidl, HANDLE token, DWORD flags, LPSTR path)
{
    const bool create = (csidl & CSIDL_FLAG_CREATE) != 0;
    if (path == nullptr) {
        return E_INVALIDARG;
    }
    path[0] = 0;
    if ((csidl & ~CSIDL_FLAG_CREATE) != CSIDL_LOCAL_APPDATA || token != nullptr || flags != SHGFP_TYPE_CURRENT) {
        return E_INVALIDARG;
    }
    const std::string folder = StateFolder();
    if (folder.empty() || folder.size() >= MAX_PATH) {
        SetLastError(folder.empty() ? ERROR_PATH_NOT_FOUND : ERROR_FILENAME_EXCED_RANGE);
        return E_FAIL;
    }
    if (!(create ? MakeFolder(folder) : IsFolder(folder))) {
        return E_FAIL;
    }
    memcpy(path, folder.c_str(), folder.size() + 1);
    return S_OK;
}
