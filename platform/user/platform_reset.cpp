#include "platform/user/platform_reset.h"

#include "platform/user/state.h"

void PlatformReset()
{
    if (host) {
        ReleaseCapture();
        // Newest first: pop-ups go before the window that owns them.
        for (size_t i = user.windows.size(); i-- > 0;) {
            Window& window = *user.windows[i];
            window.visible = false;
            if (window.hostBar) {
                host->destroyScrollBar(window.hostBar);
            }
            if (window.hostWindow) {
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
