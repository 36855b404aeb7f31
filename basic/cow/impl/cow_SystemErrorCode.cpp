#include "cow/cow_SystemErrorCode.h"
#include "sys/impl/sys_Os.h"

#include <cstdlib>
#include <cstring>

namespace {

struct SocketError {
    uint32_t code;
    const char* text;
};

// Ordered by code for the binary search.
const SocketError kSocketErrors[] = {
    {10004, "WSAEINTR (10004) Interrupted function call."},
    {10013, "WSAEACCES (10013) Permission denied."},
    {10014, "WSAEFAULT (10014) Bad address."},
    {10022, "WSAEINVAL (10022) Invalid argument."},
    {10024, "WSAEMFILE (10024) Too many open files."},
    {10035, "WSAEWOULDBLOCK (10035) Resource temporarily unavailable."},
    {10036, "WSAEINPROGRESS (10036) Operation now in progress."},
    {10037, "WSAEALREADY (10037) Operation already in progress."},
    {10038, "WSAENOTSOCK (10038) Socket operation on nonsocket."},
    {10039, "WSAEDESTADDRREQ (10039) Destination address required."},
    {10040, "WSAEMSGSIZE (10040) Message too long."},
    {10041, "WSAEPROTOTYPE (10041) Protocol wrong type for socket."},
    {10042, "WSAENOPROTOOPT (10042) Bad protocol option."},
    {10043, "WSAEPROTONOSUPPORT (10043) Protocol not supported."},
    {10044, "WSAESOCKTNOSUPPORT (10044) Socket type not supported."},
    {10045, "WSAEOPNOTSUPP (10045) Operation not supported."},
    {10046, "WSAEPFNOSUPPORT (10046) Protocol family not supported."},
    {10047, "WSAEAFNOSUPPORT (10047) Address family not supported by protocol family."},
    {10048, "WSAEADDRINUSE (10048) Address already in use."},
    {10049, "WSAEADDRNOTAVAIL (10049) Cannot assign requested address."},
    {10050, "WSAENETDOWN (10050) Network is down."},
    {10051, "WSAENETUNREACH (10051) Network is unreachable."},
    {10052, "WSAENETRESET (10052) Network dropped connection on reset."},
    {10053, "WSAECONNABORTED (10053) Software caused connection abort."},
    {10054, "WSAECONNRESET (10054) Connection reset by peer."},
    {10055, "WSAENOBUFS (10055) No buffer space available."},
    {10056, "WSAEISCONN (10056) Socket is already connected."},
    {10057, "WSAENOTCONN (10057) Socket is not connected."},
    {10058, "WSAESHUTDOWN (10058) Cannot send after socket shutdown."},
    {10060, "WSAETIMEDOUT (10060) Connection timed out."},
    {10061, "WSAECONNREFUSED (10061) Connection refused."},
    {10064, "WSAEHOSTDOWN (10064) Host is down."},
    {10065, "WSAEHOSTUNREACH (10065) No route to host."},
    {10067, "WSAEPROCLIM (10067) Too many processes."},
    {10091, "WSASYSNOTREADY (10091) Network subsystem is unavailable."},
    {10092, "WSAVERNOTSUPPORTED (10092) Winsock.dll version out of range."},
    {10093, "WSANOTINITIALISED (10093) Successful WSAStartup not yet performed."},
    {10101, "WSAEDISCON (10101) Graceful shutdown in progress."},
    {10107, "WSASYSCALLFAILURE (10107) System call failure."},
    {10109, "WSATYPE_NOT_FOUND (10109) Class type not found."},
    {11001, "WSAHOST_NOT_FOUND (11001) Host not found."},
    {11002, "WSATRY_AGAIN (11002) Nonauthoritative host not found."},
    {11003, "WSANO_RECOVERY (11003) This is a nonrecoverable error."},
    {11004, "WSANO_DATA (11004) Valid name, no data record of requested type."},
};

int CompareCode(const void* key, const void* row)
{
    const uint32_t k = *static_cast<const uint32_t*>(key);
    const uint32_t c = static_cast<const SocketError*>(row)->code;
    return k < c ? -1 : (k > c ? 1 : 0);
}

}  // namespace

cow_String cow_SystemErrorCode::GetText() const
{
    if (m_code == RuntimeErrno)
        return cow_String(std::strerror(static_cast<int>(m_errno)));
    const void* row = std::bsearch(&m_code, kSocketErrors, sizeof(kSocketErrors) / sizeof(kSocketErrors[0]),
                                   sizeof(SocketError), &CompareCode);
    if (row)
        return cow_String(static_cast<const SocketError*>(row)->text);
    return sys_ErrorText(m_code);
}
