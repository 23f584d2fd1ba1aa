// Scroll-bar controls: native bars of the host inside a framed window.
#include "platform/user/state.h"

#include <algorithm>

namespace {

int HighestPosition(const SCROLLINFO& scroll)
{
    const int page = static_cast<int>(scroll.nPage);
    return std::max(scroll.nMin, scroll.nMax - std::max(page - 1, 0));
}

void ShowScroll(const Window& bar)
{
    if (bar.hostBar != nullptr) {
        host->setScrollBar(bar.hostBar, bar.scroll.nMin, HighestPosition(bar.scroll),
                           static_cast<int>(bar.scroll.nPage), bar.scroll.nPos);
    }
}

Window* LookupScrollBar(HWND handle, int which)
{
    Window* window = Lookup(handle);
    return (window != nullptr) && which == SB_CTL && window->kind == scrollBarWindow ? window : nullptr;
}

} // namespace

void SyncScrollBar(Window& bar)
{
    if (bar.hostBar != nullptr) {
        host->destroyScrollBar(bar.hostBar);
    }
    bar.hostBar = nullptr;
    const Window* parent = Lookup(bar.parent);
    if (!bar.visible || (parent == nullptr) || (parent->hostWindow == nullptr)) {
        return;
    }
    const HostRect place = {bar.left, bar.top, bar.left + bar.width, bar.top + bar.height};
    bar.hostBar = host->createScrollBar(parent->hostWindow, (bar.style & SBS_VERT) != 0, &place);
    ShowScroll(bar);
}

int WINAPI SetScrollInfo(HWND handle, int which, const SCROLLINFO* info, BOOL)
{
    Window* bar = LookupScrollBar(handle, which);
    if ((bar == nullptr) || (info == nullptr)) {
        return 0;
    }
    SCROLLINFO& scroll = bar->scroll;
    const SCROLLINFO previous = scroll;
    if (info->fMask & SIF_RANGE) {
        scroll.nMin = info->nMin;
        scroll.nMax = std::max(info->nMin, info->nMax);
    }
    if (info->fMask & SIF_PAGE) {
        scroll.nPage = info->nPage;
    }
    if (info->fMask & SIF_POS) {
        scroll.nPos = info->nPos;
    }
    const int64_t range = static_cast<int64_t>(scroll.nMax) - scroll.nMin + 1;
    scroll.nPage = static_cast<UINT>(std::min<int64_t>(scroll.nPage, std::min<int64_t>(range, INT32_MAX)));
    scroll.nPos = std::clamp(scroll.nPos, scroll.nMin, HighestPosition(scroll));
    if (scroll.nMin != previous.nMin || scroll.nMax != previous.nMax || scroll.nPage != previous.nPage ||
        scroll.nPos != previous.nPos) {
        ShowScroll(*bar);
    }
    return scroll.nPos;
}

BOOL WINAPI GetScrollInfo(HWND handle, int which, SCROLLINFO* info)
{
    const Window* bar = LookupScrollBar(handle, which);
    if ((bar == nullptr) || (info == nullptr)) {
        return FALSE;
    }
    if (info->fMask & SIF_RANGE) {
        info->nMin = bar->scroll.nMin;
        info->nMax = bar->scroll.nMax;
    }
    if (info->fMask & SIF_PAGE) {
        info->nPage = bar->scroll.nPage;
    }
    if (info->fMask & SIF_POS) {
        info->nPos = bar->scroll.nPos;
    }
    return TRUE;
}
