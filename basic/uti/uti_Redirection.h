/// @class uti_Redirection
/// The standard streams of a child process to redirect: three entries, input, output and error, in
/// this order, each beginning with a descriptor of the parent.
///
/// @code{.unparsed}
///   <= 0  the child inherits the parent's stream;
///   1, 2  the child's stream gets the same handle as the child's stream of that number (an error
///         entry of 1 makes the errors follow the output); a number not below the entry's own
///         stream names the parent's stream of that number;
///   >= 3  a runtime-library descriptor of the parent; starting the child hands it over and closes
///         it in the parent.
/// @endcode
/// Starting a child resets every entry it used (descriptor > 0) to -1, also when the start fails.
/// Descriptor and SetDescriptor take Input, Output or Error (0 to 2); the number is not checked.
/// Thread rule: a plain value; starting a child writes the object it is given (uti_Spawn.h).
#ifndef UTI_REDIRECTION_H
#define UTI_REDIRECTION_H

#include <cstdint>

/// One entry: a descriptor of the parent, read as the description of uti_Redirection says.
struct uti_RedirectionEntry {
    int32_t m_descriptor;
};

class uti_Redirection {
public:
    /// The entries' numbers, and how many there are.
    enum { Input = 0, Output = 1, Error = 2, Count = 3 };

    uti_Redirection() : uti_Redirection(-1, -1, -1) {}
    uti_Redirection(int input, int output, int error)
    {
        m_entries[Input].m_descriptor = input;
        m_entries[Output].m_descriptor = output;
        m_entries[Error].m_descriptor = error;
    }

    int Descriptor(int stream) const { return m_entries[stream].m_descriptor; }
    void SetDescriptor(int stream, int descriptor) { m_entries[stream].m_descriptor = descriptor; }

private:
    uti_RedirectionEntry m_entries[Count];
};

#endif
