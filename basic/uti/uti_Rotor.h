/// @file
/// uti_Rotorobj and uti_Rotor: a byte-oriented rotor-machine cipher keyed by a text key.
///
/// uti_Rotorobj is the machine: a number of rotors, each a keyed random permutation of the 256
/// byte values, whose positions step like an odometer after every byte. The key is folded into five
/// 16-bit words; three of them seed a Wichmann-Hill generator that draws each rotor's start
/// position, its (odd) advance and its permutation. Build() draws the rotors afresh from the key,
/// so a run always starts from the same state. uti_Rotor owns a machine of 6 rotors and ciphers
/// whole strings, each call from the key's initial state: equal inputs give equal outputs.
///
/// This obscures data; it is not a modern cipher and gives no real secrecy.
///
/// None of the inspectors checks its arguments: KeyWord(i) needs 0 <= i < 5, Position and Advance
/// 0 <= rotor < Rotors(), Wiring also 0 <= value < Size().
/// Thread rule: one machine (each byte steps it), one thread at a time; a uti_Rotor with its
/// machine likewise.
#ifndef UTI_ROTOR_H
#define UTI_ROTOR_H

#include <cstdint>

#include "cow/cow_String.h"
#include "mem/mem_AllocationOperators.h"
#include "zul_BasicExport.h"

/// The rotor machine (see uti_Rotor.h).
class ZUL_BASIC_API uti_Rotorobj : public mem_AllocationOperators {
public:
    /// A machine of `rotors` rotors (1 to 65536, else nex_AssertException) of 256 positions.
    uti_Rotorobj(int rotors, cow_String key);
    ~uti_Rotorobj();
    uti_Rotorobj(const uti_Rotorobj&) = delete;
    uti_Rotorobj& operator=(const uti_Rotorobj&) = delete;

    /// Re-seeds from the key words and draws every rotor's position, advance and permutation.
    void Build();
    /// Run the machine over the bytes in place from its current state, stepping after each byte.
    /// A negative length raises nex_AssertException.
    ///@{
    void EncryptBytes(char* data, int length);
    void DecryptBytes(char* data, int length);
    ///@}
    /// The next draw of the generator: a number in [0, n).
    int Random(int n);

    /// Inspection of the machine's state.
    ///@{
    int Rotors() const { return m_Rotors; }
    int Size() const { return m_Size; }
    bool IsBuilt() const { return m_Initialized != 0; }
    uint16_t KeyWord(int i) const { return m_Key[i]; }
    int Position(int rotor) const { return m_Positions[rotor]; }
    int Advance(int rotor) const { return m_Advances[rotor]; }
    ///@}
    /// Where rotor `rotor` sends `value` when enciphering.
    int Wiring(int rotor, int value) const { return m_ERotors[rotor * m_Size + value]; }

private:
    void Seed();
    void Run(char* data, int length, bool encrypt);

    int32_t m_Seed1, m_Seed2, m_Seed3;
    uint16_t m_Key[5];
    unsigned char m_Initialized;
    int32_t m_Size;
    int32_t m_SizeMask;
    int32_t m_Rotors;
    unsigned char* m_ERotors;    ///< m_Rotors rows of m_Size entries
    unsigned char* m_DRotors;    ///< the inverse permutations, same shape
    unsigned char* m_Positions;  ///< one per rotor
    unsigned char* m_Advances;   ///< one per rotor
};

/// A machine of 6 rotors that ciphers whole strings, each call from the key's initial state.
class ZUL_BASIC_API uti_Rotor : public mem_AllocationOperators {
public:
    explicit uti_Rotor(cow_String key);
    ~uti_Rotor();
    uti_Rotor(const uti_Rotor&) = delete;
    uti_Rotor& operator=(const uti_Rotor&) = delete;

    /// Both answer as many bytes as they are given; the result may hold zero bytes.
    ///@{
    cow_String Encrypt(cow_String plain);
    cow_String Decrypt(cow_String cipher);
    ///@}
    /// In place; a negative length raises nex_AssertException.
    void Decrypt(char* data, int length);

private:
    cow_String Run(const cow_String& text, bool encrypt);

    uti_Rotorobj* m_Machine;
};

#endif
