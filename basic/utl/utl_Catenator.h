/// @class utl_Catenator
/// utl_Catenator: builds a text from pieces.
///
/// Short texts grow in one string pre-sized for 992 bytes, with no reallocation; when a piece
/// would bring the text to 992 bytes or more, everything moves to an in-memory stream, which then
/// takes all further pieces (the switch is one-way). GetString of a short text (under 497 bytes)
/// returns a fresh copy, so the result does not hold on to the 992-byte buffer; longer texts share
/// it. In stream mode GetString takes the stream's buffer over; appending after that starts from
/// whatever the stream has left.
/// Thread rule: one object, one thread at a time; a string from GetString may share its text
/// (cow_String's rule).
#ifndef UTL_CATENATOR_H
#define UTL_CATENATOR_H

#include "aio/aio_ostrstream.h"
#include "cow/cow_String.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API utl_Catenator {
public:
    /// The short text's capacity, and the length from which GetString shares the buffer.
    enum { StringCapacity = 992, ShareFrom = 497 };

    utl_Catenator();
    ~utl_Catenator();
    utl_Catenator(const utl_Catenator&) = delete;
    utl_Catenator& operator=(const utl_Catenator&) = delete;

    utl_Catenator& Cat(const char* text, int length);
    /// Empties the text (the string keeps its buffer; the stream goes back to its start).
    utl_Catenator& Erase();
    cow_String GetString();

    bool InStreamMode() const { return m_stream != nullptr; }

private:
    cow_String m_text;
    aio_ostrstream* m_stream;
};

#endif
