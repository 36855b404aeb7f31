// The socket layer's start-up and clean-up for the utl module (Winsock on Windows; POSIX
// sockets need neither).
#ifndef UTL_SOCKETS_H
#define UTL_SOCKETS_H

// 0 on success, else the system's error code.
int utl_SocketsStartUp();
void utl_SocketsCleanUp();

#endif
