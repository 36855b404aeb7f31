/// @file
/// utl_BinOStream / utl_BinIStream: the library's binary record format on an open descriptor.
///
/// Format: fixed widths, little-endian, no padding, headers or tags. 1-, 2-, 4- and 8-byte
/// integers; a string is a 4-byte signed length n followed by n bytes (no terminator; an empty
/// string is just the length 0); int, float and double arrays are their elements back to back
/// with NO count (the caller writes n itself). A single real is an array of length 1.
///
/// The streams do not own the descriptor and keep no buffer: every item is one system call (a
/// string two). The EndianType argument is accepted and ignored: values are always written in
/// the machine's order, little-endian on every target. Failures raise utl_BinStreamException or
/// one of its subclasses; end of file (utl_BinStreamEOF) is not a read error.
///
/// A negative string length read from a stream raises utl_BinStreamBadLength: nothing is
/// allocated or written for it. Other lengths are taken as written.
///
/// Thread rule: a stream holds only its descriptor, so the descriptor's position is what is
/// shared. Streams on one descriptor (an input and an output stream, or one stream on two
/// threads) work item by item on that position, each item one or more system calls: used from
/// several threads, their items interleave and one thread's string length can be parted from its
/// bytes. Use a descriptor from one thread at a time. Constructing a stream sets the descriptor
/// to binary mode (Windows). The array readers and writers take n elements at p, unchecked.
#ifndef UTL_BINSTREAM_H
#define UTL_BINSTREAM_H

#include <cstdint>

#include "cow/cow_String.h"
#include "nex/nex_Exception.h"
#include "omi/omi_Swapper.h"
#include "zul_BasicExport.h"

/// Any failure of a binary stream; the base of the others.
NEX_TEXT_EXCEPTION(utl_BinStreamException, nex_TextException, 0x30201u);

/// A failed write.
NEX_TEXT_EXCEPTION(utl_BinStreamWriteError, utl_BinStreamException, 0x30202u);

/// A failed read (end of file excepted).
NEX_TEXT_EXCEPTION(utl_BinStreamReadError, utl_BinStreamException, 0x30203u);

/// End of file before the requested count; not a utl_BinStreamReadError.
NEX_TEXT_EXCEPTION(utl_BinStreamEOF, utl_BinStreamException, 0x30204u);

/// A string length below zero in the data.
NEX_TEXT_EXCEPTION(utl_BinStreamBadLength, utl_BinStreamException, 0x30205u);

/// Writes the binary record format to a descriptor (see utl_BinStream.h).
class ZUL_BASIC_API utl_BinOStream {
public:
    utl_BinOStream(int fd, omi_Swapper::EndianType);

    /// Writes count bytes (count <= 0 writes nothing); short writes are continued.
    void Write(const char* data, int count);

    void WriteSchar(signed char v) { Write(reinterpret_cast<const char*>(&v), 1); }
    void WriteUchar(unsigned char v) { Write(reinterpret_cast<const char*>(&v), 1); }
    void WriteShort(short v) { WriteScalar(v); }
    void WriteUShort(const unsigned short& v) { WriteScalar(v); }
    void WriteInt(const int& v) { WriteScalar(v); }
    void WriteUInt(const unsigned int& v) { WriteScalar(v); }
    void WriteInt64(const int64_t& v) { WriteScalar(v); }
    void WriteUInt64(const uint64_t& v) { WriteScalar(v); }
    void WriteString(const cow_String& s);
    void WriteIntArray(const int* p, int n) { WriteArray(p, n); }
    void WriteFloatArray(const float* p, int n) { WriteArray(p, n); }
    void WriteDoubleArray(const double* p, int n) { WriteArray(p, n); }

    int Descriptor() const { return m_fd; }

private:
    template <class T>
    void WriteScalar(const T& v)
    {
        Write(reinterpret_cast<const char*>(&v), static_cast<int>(sizeof(T)));
    }
    template <class T>
    void WriteArray(const T* p, int n)
    {
        if (n > 0)
            Write(reinterpret_cast<const char*>(p), n * static_cast<int>(sizeof(T)));
    }

    int m_fd;
};

/// Reads the binary record format from a descriptor (see utl_BinStream.h).
class ZUL_BASIC_API utl_BinIStream {
public:
    utl_BinIStream(int fd, omi_Swapper::EndianType);

    /// Reads count bytes (count <= 0 reads nothing); short reads are continued. Bytes read before
    /// an end of file stay in the buffer.
    void Read(char* data, int count) const;

    signed char ReadSchar() const { return ReadScalar<signed char>(); }
    unsigned char ReadUchar() const { return ReadScalar<unsigned char>(); }
    short ReadShort() const { return ReadScalar<short>(); }
    unsigned short ReadUShort() const { return ReadScalar<unsigned short>(); }
    int ReadInt() const { return ReadScalar<int>(); }
    unsigned int ReadUInt() const { return ReadScalar<unsigned int>(); }
    int64_t ReadInt64() const { return ReadScalar<int64_t>(); }
    uint64_t ReadUInt64() const { return ReadScalar<uint64_t>(); }
    cow_String ReadString() const;
    void ReadIntArray(int* p, int n) const { ReadArray(p, n); }
    void ReadFloatArray(float* p, int n) const { ReadArray(p, n); }
    void ReadDoubleArray(double* p, int n) const { ReadArray(p, n); }

    int Descriptor() const { return m_fd; }

private:
    template <class T>
    T ReadScalar() const
    {
        T v = T();
        Read(reinterpret_cast<char*>(&v), static_cast<int>(sizeof(T)));
        return v;
    }
    template <class T>
    void ReadArray(T* p, int n) const
    {
        if (n > 0)
            Read(reinterpret_cast<char*>(p), n * static_cast<int>(sizeof(T)));
    }

    int m_fd;
};

#endif
