#include "utl/utl_Initialize.h"

#include "typ/typ_Module.h"
#include "utl/utl_CommandLine.h"
#include "utl/impl/utl_Sockets.h"

namespace {

int g_useCount = 0;
bool g_socketsUp = false;

// A failed socket start-up leaves the library usable without sockets.
void StartUp()
{
    g_socketsUp = utl_SocketsStartUp() == 0;
    utl_CommandLine::Instance();  // reads the process's arguments
}

void TearDown()
{
    if (g_socketsUp)
        utl_SocketsCleanUp();
    g_socketsUp = false;
}

}  // namespace

void utl_initialize(int& count)
{
    typ_InitializeModule("utl", g_useCount, count, &StartUp);
}

void utl_finalize(int& count)
{
    typ_FinalizeModule("utl", g_useCount, count, &TearDown);
}
