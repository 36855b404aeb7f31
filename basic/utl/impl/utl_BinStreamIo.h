// The descriptor calls under the binary streams (one definition per platform).
#ifndef UTL_BINSTREAMIO_H
#define UTL_BINSTREAMIO_H

// Switches the descriptor to binary mode: 0, or the errno value of the failure.
int utl_BinStreamSetBinary(int fd);
// The runtime's write and read: bytes moved, 0, or a negative value with errno set.
int utl_BinStreamWriteFd(int fd, const char* data, int count);
int utl_BinStreamReadFd(int fd, char* data, int count);

#endif
