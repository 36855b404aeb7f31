/// @file
/// Base64 text of byte strings, in the library's own alphabet.
///
/// The alphabet is the standard one except for its 64th character, which is "!" instead of "/"
/// ("ABC...XYZabc...xyz0123456789+!"); other modules of the product read the text back, so the
/// variant is part of the format. Padding with "=" is standard.
///
/// With line breaks, a newline follows every 57 input bytes (76 characters) and the text ends with
/// a newline unless its length is a multiple of 57 (then the last line's newline is the end).
///
/// The decoder accepts exactly what the encoder writes: groups of four alphabet characters, the
/// last group possibly padded ("xx==" or "xxx="), and, when line breaks are asked for, lines of
/// exactly 76 characters but the last (1 to 76), each ended by a newline. Anything else (other
/// characters, newlines without the flag, lines of another length, a missing final newline, a
/// newline inside a group, a short group, padding before the end, set bits below the last
/// character's used ones) raises utl_Base64Exception naming the offset of the fault.
///
/// Thread rule: no shared state; any thread (the strings follow cow_String's rule).
#ifndef UTL_BASE64_H
#define UTL_BASE64_H

#include <cstddef>

#include "cow/cow_String.h"
#include "nex/nex_Exception.h"
#include "zul_BasicExport.h"

/// Text that is not what the encoder writes, or a failed allocation while encoding.
NEX_TEXT_EXCEPTION(utl_Base64Exception, nex_TextException, 0x30801u);

/// The text for the bytes of `data`; empty for empty data. A failed allocation raises
/// utl_Base64Exception "memory allocation failure".
ZUL_BASIC_API cow_String utl_base64Encode(cow_String& data, bool lineBreaks);
/// The bytes that `text` encodes.
ZUL_BASIC_API cow_String utl_base64Decode(cow_String& text, bool lineBreaks);

// The same coding on caller buffers, for callers that keep their own storage.
/// Characters written for `length` input bytes (no terminator counted).
ZUL_BASIC_API size_t utl_base64EncodedLength(size_t length, bool lineBreaks);
/// Writes utl_base64EncodedLength(length, lineBreaks) characters to `out`; returns that count.
ZUL_BASIC_API size_t utl_base64EncodeTo(const unsigned char* data, size_t length, bool lineBreaks, char* out);
/// Writes at most 3 * (length / 4) bytes to `out`; returns the count written. Raises
/// utl_Base64Exception for text the encoder does not write.
ZUL_BASIC_API size_t utl_base64DecodeTo(const char* text, size_t length, bool lineBreaks, unsigned char* out);

#endif
