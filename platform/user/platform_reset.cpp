#include "platform/user/platform_reset.h"

#include "platform/user/state.h"

void PlatformReset()
{
    if (host != nullptr) {
        ReleaseCapture();
        // Newest first: pop-ups go before the window that owns them.
        for (size_t i = user.windows.size(); i-- > 0;) {
            Window& window = *user.windows[i];
            window.visible = false;
            if (window.hostBar != nullptr) {
                host->destroyScrollBar(window.hostBar);
            }
            if (window.hostWindow != nullptr) {
                host->destroyWindow(window.hostWindow);
            }
            ReleasePicture(window);
        }
    }
    const uintptr_t nextHandle = user.nextHandle;
    user = UserState();
    user.nextHandle = nextHandle; // handles from before stay dead
    ForgetOutline();
    DestroyAllMenus();
    DestroyAllImages();
}
