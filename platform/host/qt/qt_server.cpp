#include "platform/host/qt/qt_server.h"

#include "platform/host/qt/qt_internal.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QThread>
#include <QtGui/qguiapplication_platform.h>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>
#include <xcb/xcb.h>

namespace qthost {
namespace {

constexpr int withdrawDeadline = 200;
constexpr int patternSize = 8;

xcb_connection_t* server = nullptr;
xcb_window_t rootWindow = 0;
uint8_t inputExtension = 0;

struct FreeReply {
    void operator()(void* reply) const
    {
        std::free(reply);
    }
};

template <typename Reply>
using ReplyOf = std::unique_ptr<Reply, FreeReply>;

xcb_connection_t* QtConnection()
{
    const auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 != nullptr ? x11->connection() : nullptr;
}

xcb_window_t IdOf(const QWindow* window)
{
    return static_cast<xcb_window_t>(window->winId());
}

} // namespace

int OpenServer()
{
    int screenNumber = 0;
    server = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(server)) {
        CloseServer();
        return 1;
    }
    xcb_screen_iterator_t screen = xcb_setup_roots_iterator(xcb_get_setup(server));
    for (int i = 0; i < screenNumber && screen.rem > 1; i++) {
        xcb_screen_next(&screen);
    }
    rootWindow = screen.data->root;
    constexpr char inputName[] = "XInputExtension";
    const ReplyOf<xcb_query_extension_reply_t> reply(
        xcb_query_extension_reply(server, xcb_query_extension(server, sizeof inputName - 1, inputName), nullptr));
    inputExtension = reply && reply->present ? reply->major_opcode : 0;
    return 0;
}

void CloseServer()
{
    if (server != nullptr) {
        xcb_disconnect(server);
    }
    server = nullptr;
}

bool HasServer()
{
    return server != nullptr;
}

bool DisplayIsLost()
{
    xcb_connection_t* connection = QtConnection();
    return server != nullptr && (xcb_connection_has_error(server) != 0 ||
                                 (connection != nullptr && xcb_connection_has_error(connection) != 0));
}

bool QueryServerPointer(ServerPointer* pointer)
{
    if (server == nullptr) {
        return false;
    }
    const ReplyOf<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(server, xcb_query_pointer(server, rootWindow), nullptr));
    if (!reply) {
        return false;
    }
    *pointer = {reply->root_x, reply->root_y, reply->mask};
    return true;
}

bool KeyIsDown(unsigned scanCode)
{
    if (server == nullptr) {
        return false;
    }
    const ReplyOf<xcb_query_keymap_reply_t> reply(xcb_query_keymap_reply(server, xcb_query_keymap(server), nullptr));
    return reply && (reply->keys[scanCode / 8 % 32] >> scanCode % 8 & 1);
}

uint8_t InputExtension()
{
    return inputExtension;
}

bool LayoutHasLatinLetters(unsigned state)
{
    constexpr xcb_keysym_t firstLetter = 'a';
    constexpr xcb_keysym_t lastLetter = 'z';
    const int group = state >> 13 & 3;
    const xcb_setup_t* setup = server != nullptr ? xcb_get_setup(server) : nullptr;
    if (setup == nullptr || group > 1) {
        return true; // of the later layouts the core protocol tells nothing
    }
    const uint8_t keys = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const ReplyOf<xcb_get_keyboard_mapping_reply_t> reply(
        xcb_get_keyboard_mapping_reply(server, xcb_get_keyboard_mapping(server, setup->min_keycode, keys), nullptr));
    if (!reply) {
        return true;
    }
    // A key has two meanings in the first layout, then two in the second.
    const xcb_keysym_t* meanings = xcb_get_keyboard_mapping_keysyms(reply.get());
    const int count = xcb_get_keyboard_mapping_keysyms_length(reply.get());
    for (int i = 2 * group; i < count; i += std::max<int>(reply->keysyms_per_keycode, 1)) {
        if (meanings[i] >= firstLetter && meanings[i] <= lastLetter) {
            return true;
        }
    }
    return false;
}

bool WarpServerPointer(int x, int y)
{
    if (server == nullptr) {
        return false;
    }
    xcb_warp_pointer(server, XCB_NONE, rootWindow, 0, 0, 0, 0, static_cast<int16_t>(x), static_cast<int16_t>(y));
    xcb_flush(server);
    return true;
}

bool QueryServerPlace(const QWindow* window, int* x, int* y)
{
    if (server == nullptr) {
        return false;
    }
    const ReplyOf<xcb_translate_coordinates_reply_t> reply(xcb_translate_coordinates_reply(
        server, xcb_translate_coordinates(server, IdOf(window), rootWindow, 0, 0), nullptr));
    if (!reply) {
        return false;
    }
    *x = reply->dst_x;
    *y = reply->dst_y;
    return true;
}

bool QueryServerSize(const QWindow* window, int* width, int* height)
{
    if (server == nullptr) {
        return false;
    }
    const ReplyOf<xcb_get_geometry_reply_t> reply(
        xcb_get_geometry_reply(server, xcb_get_geometry(server, IdOf(window)), nullptr));
    if (!reply) {
        return false;
    }
    *width = reply->width;
    *height = reply->height;
    return true;
}

namespace {

ReplyOf<xcb_query_tree_reply_t> QueryTree(xcb_window_t window)
{
    return ReplyOf<xcb_query_tree_reply_t>(xcb_query_tree_reply(server, xcb_query_tree(server, window), nullptr));
}

} // namespace

WId QueryOutermost(const QWindow* window)
{
    xcb_window_t id = server != nullptr ? IdOf(window) : 0;
    while (id != 0) {
        const auto tree = QueryTree(id);
        if (!tree || tree->parent == tree->root) {
            return tree ? id : 0;
        }
        id = tree->parent;
    }
    return 0;
}

std::vector<WId> QueryStack()
{
    const auto tree = server != nullptr ? QueryTree(rootWindow) : nullptr;
    if (!tree) {
        return {};
    }
    const xcb_window_t* lowest = xcb_query_tree_children(tree.get());
    std::vector<WId> stack(lowest, lowest + xcb_query_tree_children_length(tree.get()));
    std::reverse(stack.begin(), stack.end());
    return stack;
}

WId QueryChildAt(WId parent, int x, int y)
{
    if (server == nullptr) {
        return 0;
    }
    const xcb_window_t holder = parent != 0 ? static_cast<xcb_window_t>(parent) : rootWindow;
    const ReplyOf<xcb_translate_coordinates_reply_t> reply(xcb_translate_coordinates_reply(
        server,
        xcb_translate_coordinates(server, rootWindow, holder, static_cast<int16_t>(x), static_cast<int16_t>(y)),
        nullptr));
    return reply ? reply->child : 0;
}

void WaitForServer()
{
    if (xcb_connection_t* connection = QtConnection()) {
        const ReplyOf<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    }
}

void FlushDisplay()
{
    if (xcb_connection_t* connection = QtConnection()) {
        xcb_flush(connection);
    }
}

void WaitUntilWithdrawn(const QWindow* window)
{
    FlushDisplay();
    if ((server == nullptr) || (window == nullptr)) {
        return;
    }
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < withdrawDeadline) {
        const ReplyOf<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(server, xcb_query_tree(server, IdOf(window)), nullptr));
        if (!tree || tree->parent == tree->root) {
            break;
        }
        QThread::msleep(1);
    }
    HandleQtEvents();
}

void ClearServerTitle(const QWindow* window)
{
    if ((server == nullptr) || (window == nullptr)) {
        return;
    }
    // After what Qt has asked for on its own connection.
    if (xcb_connection_t* connection = QtConnection()) {
        std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    }
    static const char* const names[] = {"_NET_WM_NAME", "_NET_WM_ICON_NAME", "WM_NAME", "WM_ICON_NAME"};
    for (const char* name : names) {
        const ReplyOf<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
            server, xcb_intern_atom(server, 0, static_cast<uint16_t>(std::strlen(name)), name), nullptr));
        if (atom) {
            xcb_delete_property(server, IdOf(window), atom->atom);
        }
    }
    xcb_flush(server);
}

void SetDashedGround(WId window)
{
    xcb_connection_t* connection = QtConnection();
    if (connection == nullptr) {
        return;
    }
    const xcb_window_t id = static_cast<xcb_window_t>(window);
    const ReplyOf<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, id), nullptr));
    if (!geometry) {
        return;
    }
    const uint32_t black = 0xFF000000;
    const uint32_t white = 0xFFFFFFFF;
    const xcb_pixmap_t pattern = xcb_generate_id(connection);
    const xcb_gcontext_t context = xcb_generate_id(connection);
    xcb_create_pixmap(connection, geometry->depth, pattern, id, patternSize, patternSize);
    xcb_create_gc(connection, context, pattern, XCB_GC_FOREGROUND, &black);
    const xcb_rectangle_t all = {0, 0, patternSize, patternSize};
    xcb_poly_fill_rectangle(connection, pattern, context, 1, &all);
    xcb_change_gc(connection, context, XCB_GC_FOREGROUND, &white);
    std::vector<xcb_point_t> points;
    for (int y = 0; y < patternSize; y++) {
        for (int x = 0; x < patternSize; x++) {
            if ((x + y) % patternSize < patternSize / 2) {
                points.push_back({static_cast<int16_t>(x), static_cast<int16_t>(y)});
            }
        }
    }
    xcb_poly_point(connection, XCB_COORD_MODE_ORIGIN, pattern, context, static_cast<uint32_t>(points.size()),
                   points.data());
    xcb_change_window_attributes(connection, id, XCB_CW_BACK_PIXMAP, &pattern);
    xcb_free_gc(connection, context);
    xcb_free_pixmap(connection, pattern); // the window keeps its contents
}

} // namespace qthost
