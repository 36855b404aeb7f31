/// @class uti_MD5
/// uti_MD5: the MD5 message digest (RFC 1321), computed incrementally.
///
/// Bytes and strings are appended in any pieces; Digest() pads the message, adds its bit length
/// and answers the 16 raw digest bytes (not hexadecimal text). After Digest the object is finished:
/// further Digest calls answer the same bytes, Append raises nex_AssertException with the text
/// "m_Digest.Empty()" and appends nothing, and Reset starts a new message.
/// Thread rule: one object, one thread at a time.
#ifndef UTI_MD5_H
#define UTI_MD5_H

#include <cstdint>

#include "cow/cow_String.h"
#include "mem/mem_AllocationOperators.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API uti_MD5 : public mem_AllocationOperators {
public:
    uti_MD5();

    /// Back to the start of a new message.
    uti_MD5& Reset();
    /// A negative length raises nex_AssertException.
    ///@{
    uti_MD5& Append(const unsigned char* data, int length);
    uti_MD5& Append(const char* data, int length);
    ///@}
    /// The string's bytes, without its terminator.
    uti_MD5& Append(const cow_String& text);
    /// Finishes the message; the 16 digest bytes.
    cow_String Digest();

private:
    void CheckOpen() const;
    /// Runs the compression function over `blocks` whole 64-byte blocks.
    void Compress(const unsigned char* data, size_t blocks);

    cow_String m_Digest;
    uint32_t m_BitsLow;
    uint32_t m_BitsHigh;
    uint32_t m_A, m_B, m_C, m_D;
    unsigned char m_Buffer[64];
};

#endif
