/// @class utl_Stream
/// utl_Stream: line-wrapping text output over an aio_ostream, with number printing.
///
/// OptionalLineBreak marks a soft break point: text printed after it is held back until it is
/// known to fit in the line width (then written) or not (then a newline goes first and the held
/// text moves to the new line). LineBreak ends the line; Flush writes the held text without a
/// newline. More than 500 characters without a break point flush the output and restart the
/// column count. Reals print through FixNumericString, which marks integral values with a point
/// ("12.") and writes exponents with two digits. The destructor drops held-back text: call
/// Flush or LineBreak first.
///
/// utl_StreamSmallReal: while it lives, reals of magnitude below its threshold print as 0. Guards
/// do not nest (the end of an inner guard also ends an outer one).
///
/// Thread rule: one stream with its guards, one thread at a time; the aio_ostream under it follows
/// its own rule.
#ifndef UTL_STREAM_H
#define UTL_STREAM_H

#include "aio/aio_ostream.h"
#include "cow/cow_String.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API utl_Stream {
public:
    utl_Stream(aio_ostream& out, int lineWidth, int floatPrecision, int doublePrecision);
    ~utl_Stream();
    utl_Stream(const utl_Stream&) = delete;
    utl_Stream& operator=(const utl_Stream&) = delete;

    utl_Stream& Print(const char* text);
    utl_Stream& Print(const cow_String& text);
    utl_Stream& Print(int value, int width);
    utl_Stream& Print(unsigned int value, int width);
    utl_Stream& Print(double value, int width, int precision);
    utl_Stream& Print(float value, int width, int precision);

    void LineBreak();
    void OptionalLineBreak();
    void Flush();

    /// Makes printf output of a real look like a real (a point when it has none) and writes a
    /// three-digit exponent with two digits, keeping the field width when keepWidth is not 0.
    /// The text needs room for one more character.
    static void FixNumericString(char* text, int keepWidth);

    int Column() const { return m_column; }
    int FloatPrecision() const { return m_floatPrecision; }
    int DoublePrecision() const { return m_doublePrecision; }

private:
    friend class utl_StreamSmallReal;
    void Write(const char* text, int length);
    utl_Stream& PrintReal(double value, int width, int precision, bool single);

    aio_ostream& m_out;
    int m_lineWidth;
    bool m_breakPending;
    cow_String m_pending;
    bool m_smallRealActive;
    double m_smallRealThreshold;
    int m_floatPrecision;
    int m_doublePrecision;
    int m_column;
};

/// While it lives, reals of magnitude below its threshold print as 0 (guards do not nest).
class ZUL_BASIC_API utl_StreamSmallReal {
public:
    utl_StreamSmallReal(utl_Stream& stream, double threshold);
    ~utl_StreamSmallReal();

private:
    utl_Stream& m_stream;
};

ZUL_BASIC_API utl_Stream& operator<<(utl_Stream& s, const char* text);
ZUL_BASIC_API utl_Stream& operator<<(utl_Stream& s, const cow_String& text);
ZUL_BASIC_API utl_Stream& operator<<(utl_Stream& s, int value);
ZUL_BASIC_API utl_Stream& operator<<(utl_Stream& s, unsigned int value);
ZUL_BASIC_API utl_Stream& operator<<(utl_Stream& s, double value);
ZUL_BASIC_API utl_Stream& operator<<(utl_Stream& s, float value);
ZUL_BASIC_API utl_Stream& operator<<(utl_Stream& s, utl_Stream& (*manipulator)(utl_Stream&));
/// LineBreak().
ZUL_BASIC_API utl_Stream& endl(utl_Stream& s);

/// Output operators on the lower library's stream.
///@{
ZUL_BASIC_API aio_ostream& operator<<(aio_ostream& out, const char* text);
ZUL_BASIC_API aio_ostream& operator<<(aio_ostream& out, char c);
ZUL_BASIC_API aio_ostream& operator<<(aio_ostream& out, int value);
ZUL_BASIC_API aio_ostream& operator<<(aio_ostream& out, const cow_String& text);
///@}
/// A newline, then flush.
ZUL_BASIC_API aio_ostream& endl(aio_ostream& out);

#endif
