#include "platform/desktop/services/StartupNotification.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QWidget>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace
{

xcb_atom_t atom(xcb_connection_t* connection, const QByteArray& name)
{
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection,
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr),
        &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_client_message_event_t messageOf(xcb_window_t window, std::uint8_t bitsOfItems)
{
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = bitsOfItems;
    message.window = window;
    return message;
}

void sendToRoot(
    xcb_connection_t* connection, const xcb_client_message_event_t& message, std::uint32_t mask)
{
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const void* const bytes = &message;
    xcb_send_event(connection, 0, root, mask, static_cast<const char*>(bytes));
}

// In pieces that a message takes, with the zero at its end.
void broadcast(xcb_connection_t* connection, xcb_window_t sender, const QByteArray& text)
{
    xcb_client_message_event_t message = messageOf(sender, 8);
    message.type = atom(connection, "_NET_STARTUP_INFO_BEGIN");
    const xcb_atom_t more = atom(connection, "_NET_STARTUP_INFO");
    const qsizetype size = text.size() + 1;
    for (qsizetype sent = 0; sent < size; sent += sizeof message.data) {
        message.data = {};
        std::ranges::copy(text.mid(sent, sizeof message.data), std::begin(message.data.data8));
        sendToRoot(connection, message, XCB_EVENT_MASK_PROPERTY_CHANGE);
        message.type = more;
    }
}

QByteArray quoted(QByteArray value)
{
    value.replace('\\', "\\\\").replace('"', "\\\"");
    return '"' + value + '"';
}

// In milliseconds of the server; an id ends with it.
std::uint32_t timeIn(const QByteArray& id)
{
    const qsizetype at = id.lastIndexOf("_TIME");
    return at < 0 ? XCB_CURRENT_TIME : id.mid(at + 5).toUInt();
}

void activate(xcb_connection_t* connection, xcb_window_t window, std::uint32_t time)
{
    constexpr std::uint32_t fromProgram = 1;
    xcb_client_message_event_t message = messageOf(window, 32);
    message.type = atom(connection, "_NET_ACTIVE_WINDOW");
    message.data.data32[0] = fromProgram;
    message.data.data32[1] = time;
    sendToRoot(connection, message,
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
}

} // namespace

void StartupNotification::complete(const QWidget& window, const QByteArray& id)
{
    const auto* const x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr || id.isEmpty())
        return;
    xcb_connection_t* const connection = x11->connection();
    const auto number = static_cast<xcb_window_t>(window.winId());
    if (const std::uint32_t time = timeIn(id); time != XCB_CURRENT_TIME)
        activate(connection, number, time);
    broadcast(connection, number, "remove: ID=" + quoted(id));
    xcb_flush(connection);
}
