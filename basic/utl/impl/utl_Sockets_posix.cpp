#include "utl/impl/utl_Sockets.h"

int utl_SocketsStartUp()
{
    return 0;
}

void utl_SocketsCleanUp() {}
