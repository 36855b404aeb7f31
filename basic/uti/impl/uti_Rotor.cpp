#include "uti/uti_Rotor.h"

#include <cstring>

#include "mem/mem_Memory.h"
#include "nex/nex_Exception.h"

namespace {

inline uint16_t Rot3(uint16_t k) { return static_cast<uint16_t>((k << 3) | (k >> 13)); }

}  // namespace

uti_Rotorobj::uti_Rotorobj(int rotors, cow_String key)
    : m_Seed1(0), m_Seed2(0), m_Seed3(0), m_Initialized(0), m_Size(256), m_SizeMask(0), m_Rotors(rotors),
      m_ERotors(nullptr), m_DRotors(nullptr), m_Positions(nullptr), m_Advances(nullptr)
{
    NEX_ASSERT(rotors >= 1 && rotors <= 65536);
    m_Key[0] = 995;
    m_Key[1] = 576;
    m_Key[2] = 767;
    m_Key[3] = 671;
    m_Key[4] = 463;
    const char* text = key.c_str();
    for (int i = 0, n = key.Length(); i < n; ++i) {
        // The byte enters as a signed character: bytes above 127 are negative before the cut to 16 bits.
        const uint16_t c = static_cast<uint16_t>(static_cast<int>(static_cast<signed char>(text[i])));
        m_Key[0] = static_cast<uint16_t>(Rot3(m_Key[0]) + c);
        m_Key[1] = static_cast<uint16_t>(Rot3(m_Key[1]) ^ c);
        m_Key[2] = static_cast<uint16_t>(Rot3(m_Key[2]) - c);
        m_Key[3] = static_cast<uint16_t>(c - Rot3(m_Key[3]));
        m_Key[4] = static_cast<uint16_t>(Rot3(m_Key[4]) ^ static_cast<uint16_t>(~c));
    }
    m_Key[1] |= 1;
    Seed();

    // One block: encryption rows, decryption rows, positions, advances.
    const size_t table = static_cast<size_t>(m_Rotors) * static_cast<size_t>(m_Size);
    unsigned char* block = static_cast<unsigned char*>(mem_OperatorNewThrow(2 * table + 2 * size_t(m_Rotors)));
    m_ERotors = block;
    m_DRotors = block + table;
    m_Positions = block + 2 * table;
    m_Advances = m_Positions + m_Rotors;
}

uti_Rotorobj::~uti_Rotorobj() { mem_Free(m_ERotors); }

void uti_Rotorobj::Seed()
{
    m_Seed1 = m_Key[0];
    m_Seed2 = m_Key[1];
    m_Seed3 = m_Key[2];
    m_Initialized = 0;
}

int uti_Rotorobj::Random(int n)
{
    NEX_ASSERT(n > 0);
    // Three Wichmann-Hill sequences; their scaled sum modulo 1 is the uniform draw.
    m_Seed1 = (171 * m_Seed1) % 30269;
    m_Seed2 = (172 * m_Seed2) % 30307;
    m_Seed3 = (170 * m_Seed3) % 30323;
    if (m_Seed1 < 0)
        m_Seed1 += 30269;
    if (m_Seed2 < 0)
        m_Seed2 += 30307;
    if (m_Seed3 < 0)
        m_Seed3 += 30323;
    double u = m_Seed2 / 30307.0 + m_Seed1 / 30269.0 + m_Seed3 / 30323.0;
    u -= static_cast<double>(static_cast<int>(u));
    if (u >= 1.0)
        u = 0.0;
    return static_cast<int16_t>(static_cast<int>(n * u)) % n;
}

void uti_Rotorobj::Build()
{
    Seed();
    const size_t table = static_cast<size_t>(m_Rotors) * static_cast<size_t>(m_Size);
    std::memset(m_Positions, 1, static_cast<size_t>(m_Rotors));
    std::memset(m_Advances, 1, static_cast<size_t>(m_Rotors));
    for (size_t j = 0; j < table; ++j) {
        m_ERotors[j] = static_cast<unsigned char>(j % static_cast<size_t>(m_Size));
        m_DRotors[j] = m_ERotors[j];
    }
    for (int i = 0; i < m_Rotors; ++i) {
        m_Positions[i] = static_cast<unsigned char>(Random(m_Size));
        m_Advances[i] = static_cast<unsigned char>((2 * Random(m_Size / 2)) | 1);
        unsigned char* e = m_ERotors + static_cast<size_t>(i) * m_Size;
        unsigned char* d = m_DRotors + static_cast<size_t>(i) * m_Size;
        for (int k = m_Size; k >= 2; --k) {
            const int r = Random(k);
            const unsigned char t = e[r];
            e[r] = e[k - 1];
            e[k - 1] = t;
            d[e[k - 1]] = static_cast<unsigned char>(k - 1);
        }
        d[e[0]] = 0;
    }
    m_Initialized = 1;
}

namespace {

// Reductions modulo the rotor size: the general rule, and the usual 256 positions without a
// mask, where the compiler can see the constant.
struct ReduceBySize {
    int size, mask;
    int operator()(int x) const { return mask != 0 ? (x & mask) : (x % size); }
};

struct ReduceBy256 {
    int operator()(int x) const { return x & 255; }
};

struct Tables {
    int rotors, size;
    const unsigned char* e;
    const unsigned char* d;
    unsigned char* positions;
    const unsigned char* advances;
};

// Runs the machine over the bytes, stepping the positions like an odometer after each byte.
template <class Reduce>
void RunMachine(const Tables& m, unsigned char* data, int length, bool encrypt, Reduce reduce)
{
    const int last = m.rotors - 1;
    for (int j = 0; j < length; ++j) {
        int c = data[j];
        if (encrypt) {
            for (int i = 0; i <= last; ++i)
                c = m.e[static_cast<size_t>(i) * m.size + reduce(c ^ m.positions[i])];
        } else {
            for (int i = last; i >= 0; --i)
                c = reduce(m.d[static_cast<size_t>(i) * m.size + c] ^ m.positions[i]);
        }
        data[j] = static_cast<unsigned char>(c);
        for (int i = 0; i <= last; ++i) {
            const int t = m.positions[i] + m.advances[i];
            m.positions[i] = static_cast<unsigned char>(reduce(t));
            if (t >= m.size && i < last)
                m.positions[i + 1] = static_cast<unsigned char>(m.positions[i + 1] + 1);
        }
    }
}

}  // namespace

void uti_Rotorobj::Run(char* data, int length, bool encrypt)
{
    NEX_ASSERT(length >= 0);
    NEX_ASSERT(data != nullptr || length == 0);
    const Tables tables = {m_Rotors, m_Size, m_ERotors, m_DRotors, m_Positions, m_Advances};
    unsigned char* bytes = reinterpret_cast<unsigned char*>(data);
    if (m_Size == 256 && m_SizeMask == 0)
        RunMachine(tables, bytes, length, encrypt, ReduceBy256());
    else
        RunMachine(tables, bytes, length, encrypt, ReduceBySize{m_Size, m_SizeMask});
}

void uti_Rotorobj::EncryptBytes(char* data, int length) { Run(data, length, true); }

void uti_Rotorobj::DecryptBytes(char* data, int length) { Run(data, length, false); }

uti_Rotor::uti_Rotor(cow_String key) : m_Machine(new uti_Rotorobj(6, key)) {}

uti_Rotor::~uti_Rotor() { delete m_Machine; }

cow_String uti_Rotor::Encrypt(cow_String plain) { return Run(plain, true); }

cow_String uti_Rotor::Decrypt(cow_String cipher) { return Run(cipher, false); }

void uti_Rotor::Decrypt(char* data, int length)
{
    NEX_ASSERT(length >= 0);
    m_Machine->Build();
    m_Machine->DecryptBytes(data, length);
}

cow_String uti_Rotor::Run(const cow_String& text, bool encrypt)
{
    const int length = text.Length();
    if (length == 0)
        return cow_String();
    char* buffer = static_cast<char*>(mem_OperatorNewThrow(static_cast<size_t>(length) + 1));
    std::memcpy(buffer, text.c_str(), static_cast<size_t>(length));
    cow_String result(buffer, length, atr_StringBase::ADOPT);
    // The string owns the buffer from here on; writing through it is safe as it is unshared.
    m_Machine->Build();
    if (encrypt)
        m_Machine->EncryptBytes(buffer, length);
    else
        m_Machine->DecryptBytes(buffer, length);
    return result;
}
