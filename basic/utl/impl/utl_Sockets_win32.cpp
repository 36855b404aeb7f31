#include "utl/impl/utl_Sockets.h"

#include <winsock2.h>

int utl_SocketsStartUp()
{
    WSADATA data;
    return WSAStartup(MAKEWORD(2, 2), &data);
}

void utl_SocketsCleanUp()
{
    WSACleanup();
}
