#include "utl/utl_Stream.h"

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

const int kUnbrokenLimit = 500;

}  // namespace

utl_Stream::utl_Stream(aio_ostream& out, int lineWidth, int floatPrecision, int doublePrecision)
    : m_out(out), m_lineWidth(lineWidth), m_breakPending(false), m_smallRealActive(false), m_smallRealThreshold(0.0),
      m_floatPrecision(floatPrecision), m_doublePrecision(doublePrecision), m_column(0)
{
}

utl_Stream::~utl_Stream() {}

void utl_Stream::Write(const char* text, int length)
{
    m_out.write(text, length);
}

utl_Stream& utl_Stream::Print(const char* text)
{
    if (!text)
        text = "";
    const int length = static_cast<int>(std::strlen(text));
    if (!m_breakPending) {
        m_column += length;
        Write(text, length);
        if (m_column > kUnbrokenLimit) {
            m_column = 0;
            m_out.flush();
        }
    } else if (m_column + m_pending.Length() + length > m_lineWidth) {
        m_out.put('\n').flush();
        Write(m_pending.c_str(), m_pending.Length());
        m_column = m_pending.Length();
        m_pending = cow_String();
        m_breakPending = false;
        m_column += length;
        Write(text, length);
    } else {
        m_pending.append(text, length);
    }
    return *this;
}

utl_Stream& utl_Stream::Print(const cow_String& text)
{
    return Print(text.c_str());
}

utl_Stream& utl_Stream::Print(int value, int width)
{
    char buffer[64];
    if (width != 0)
        std::snprintf(buffer, sizeof(buffer), "%*i", width, value);
    else
        std::snprintf(buffer, sizeof(buffer), "%i", value);
    return Print(buffer);
}

utl_Stream& utl_Stream::Print(unsigned int value, int width)
{
    char buffer[64];
    if (width != 0)
        std::snprintf(buffer, sizeof(buffer), "%*u", width, value);
    else
        std::snprintf(buffer, sizeof(buffer), "%u", value);
    return Print(buffer);
}

utl_Stream& utl_Stream::Print(double value, int width, int precision)
{
    return PrintReal(value, width, precision, false);
}

utl_Stream& utl_Stream::Print(float value, int width, int precision)
{
    return PrintReal(value, width, precision, true);
}

utl_Stream& utl_Stream::PrintReal(double value, int width, int precision, bool single)
{
    const double magnitude = single ? static_cast<double>(static_cast<float>(std::fabs(value))) : std::fabs(value);
    if (m_smallRealActive && m_smallRealThreshold > magnitude)
        value = +0.0;
    char buffer[64];
    int n;
    // Width without precision prints with precision 0 (one significant digit for %g).
    if (width != 0)
        n = std::snprintf(buffer, sizeof(buffer) - 1, "%*.*g", width, precision, value);
    else if (precision != 0)
        n = std::snprintf(buffer, sizeof(buffer) - 1, "%.*g", precision, value);
    else
        n = std::snprintf(buffer, sizeof(buffer) - 1, "%g", value);
    if (n <= 0)
        return *this;
    FixNumericString(buffer, width);
    return Print(buffer);
}

void utl_Stream::FixNumericString(char* text, int keepWidth)
{
    const size_t length = std::strlen(text);
    char* e = std::strchr(text, 'e');
    if (!std::strchr(text, '.') && !e) {
        text[length] = '.';
        text[length + 1] = '\0';
        if (text[0] == ' ')
            std::memmove(text, text + 1, length + 1);
        return;
    }
    // "e+005" -> "e+05": exactly three digits after the exponent's sign, the first of them 0.
    if (length >= 4 && e && e[1] != '\0' && std::strlen(e + 2) == 3 && e[2] == '0') {
        std::memmove(e + 2, e + 3, std::strlen(e + 3) + 1);
        if (keepWidth != 0) {
            std::memmove(text + 1, text, std::strlen(text) + 1);
            text[0] = ' ';
        }
    }
}

void utl_Stream::OptionalLineBreak()
{
    if (!m_breakPending) {
        m_breakPending = true;
        return;
    }
    Write(m_pending.c_str(), m_pending.Length());
    m_column += m_pending.Length();
    m_pending = cow_String();
}

void utl_Stream::LineBreak()
{
    m_breakPending = false;
    Write(m_pending.c_str(), m_pending.Length());
    m_column = m_pending.Length();  // the held text counts as the start of the next line
    m_pending = cow_String();
    m_out.put('\n').flush();
}

void utl_Stream::Flush()
{
    Write(m_pending.c_str(), m_pending.Length());
    m_pending = cow_String();
    m_out.flush();
    m_column = 0;
}

utl_StreamSmallReal::utl_StreamSmallReal(utl_Stream& stream, double threshold) : m_stream(stream)
{
    if (threshold > 0) {  // false for NaN as well
        m_stream.m_smallRealActive = true;
        m_stream.m_smallRealThreshold = threshold;
    } else {
        m_stream.m_smallRealActive = false;
        m_stream.m_smallRealThreshold = 0.0;
    }
}

utl_StreamSmallReal::~utl_StreamSmallReal()
{
    m_stream.m_smallRealActive = false;
    m_stream.m_smallRealThreshold = 0.0;
}

utl_Stream& operator<<(utl_Stream& s, const char* text)
{
    return s.Print(text);
}

utl_Stream& operator<<(utl_Stream& s, const cow_String& text)
{
    return s.Print(text);
}

utl_Stream& operator<<(utl_Stream& s, int value)
{
    return s.Print(value, 0);
}

utl_Stream& operator<<(utl_Stream& s, unsigned int value)
{
    return s.Print(value, 0);
}

utl_Stream& operator<<(utl_Stream& s, double value)
{
    return s.Print(value, 0, s.DoublePrecision());
}

utl_Stream& operator<<(utl_Stream& s, float value)
{
    return s.Print(value, 0, s.FloatPrecision());
}

utl_Stream& operator<<(utl_Stream& s, utl_Stream& (*manipulator)(utl_Stream&))
{
    return manipulator(s);
}

utl_Stream& endl(utl_Stream& s)
{
    s.LineBreak();
    return s;
}

aio_ostream& operator<<(aio_ostream& out, const char* text)
{
    return out.print(text);
}

aio_ostream& operator<<(aio_ostream& out, char c)
{
    return out.put(c);
}

aio_ostream& operator<<(aio_ostream& out, int value)
{
    return out.print_int(value);
}

aio_ostream& operator<<(aio_ostream& out, const cow_String& text)
{
    return out.print(text.c_str());
}

aio_ostream& endl(aio_ostream& out)
{
    return out.put('\n').flush();
}
