#include "adapters/linux/displays/randr/TintClaim.h"

#include "adapters/linux/x11/Selection.h"
#include "adapters/linux/x11/XcbReply.h"

#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>
#include <xcb/xcbext.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <string>

namespace ambertide {

namespace {

/// The process behind a window, by the X Resource extension, version 1.2; 0 where the server lacks the extension or
/// does not know. The request is spelled out here because another library in the guardian would cost too much for it.
pid_t processOf(xcb_connection_t *connection, xcb_window_t window)
{
    static xcb_extension_t resources{"X-Resource", 0};
    constexpr std::uint8_t queryClientIds = 4;
    constexpr std::uint32_t localProcess = 2;
    struct Request
    {
        std::uint32_t header = 0; ///< xcb's to fill in
        std::uint32_t count = 1;
        xcb_window_t client;
        std::uint32_t wanted = localProcess;
    };
    struct Reply
    {
        xcb_generic_reply_t header;
        std::uint32_t count;
        std::array<std::uint32_t, 5> padding;
        xcb_window_t client; ///< from here on, only if `header.length` says so
        std::uint32_t kind;
        std::uint32_t bytes;
        std::uint32_t process;
    };
    constexpr std::uint32_t oneAnswer = 4; // in words

    const auto *const extension = xcb_get_extension_data(connection, &resources);
    if (!extension || !extension->present)
        return 0;
    Request request{.client = window};
    std::array<iovec, 3> parts{{{}, {}, {&request, sizeof request}}}; // xcb uses the two before the one it is given
    const xcb_protocol_request_t kind{.count = 1, .ext = &resources, .opcode = queryClientIds, .isvoid = 0};
    const auto sequence = xcb_send_request(connection, XCB_REQUEST_CHECKED, &parts[2], &kind);
    xcb_generic_error_t *error = nullptr;
    const auto reply = owned(static_cast<Reply *>(xcb_wait_for_reply(connection, sequence, &error)));
    const auto ownedError = owned(error);
    const bool isAnswered = reply && reply->header.length >= oneAnswer && reply->count > 0 &&
                            reply->kind == localProcess && reply->bytes == sizeof reply->process;
    return isAnswered ? static_cast<pid_t>(reply->process) : 0;
}

bool isOwnAmbertide(pid_t process)
{
    const auto folder = "/proc/" + std::to_string(process);
    struct stat status = {};
    if (process <= 0 || stat(folder.c_str(), &status) != 0 || status.st_uid != geteuid())
        return false;
    std::error_code error;
    const auto program = std::filesystem::read_symlink(folder + "/exe", error).filename();
    return program == "Ambertide" || program == "Ambertide (deleted)"; // replaced by an update
}

} // namespace

xcb_atom_t TintClaim::selectionAtom(xcb_connection_t *connection)
{
    return atomNamed(connection, "_ME_TOVANU_AMBERTIDE");
}

xcb_window_t TintClaim::newest(xcb_connection_t *connection, xcb_atom_t selection)
{
    const auto owner = selectionOwner(connection, selection);
    return owner != XCB_NONE && isOwnAmbertide(processOf(connection, owner)) ? owner : XCB_NONE;
}

TintClaim::TintClaim(xcb_connection_t *connection, xcb_window_t root, xcb_atom_t selection)
    : m_connection(connection), m_window(xcb_generate_id(connection)), m_selection(selection)
{
    xcb_create_window(connection, 0, m_window, root, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                      0, nullptr);
    renew();
}

void TintClaim::renew() { xcb_set_selection_owner(m_connection, m_window, m_selection, XCB_CURRENT_TIME); }

TintClaim::~TintClaim() { xcb_destroy_window(m_connection, m_window); }

} // namespace ambertide
