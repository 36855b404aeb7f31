// The rotor cipher: round trips, restart per call, key folding worked out by hand, odometer
// stepping of the first two rotors, and (where Python is available) the whole machine against the
// reference model rotor_model.py in this folder, which pins every rotor's wiring to the key.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "crypto_Hex.h"
#include "nex/nex_Exception.h"
#include "uti/uti_Rotor.h"
#include "zul_TestSupport.h"

using namespace crypto_test;

TEST(UtiRotor, RoundTripsAndRestartsPerCall)
{
    Random random(99);
    const std::string keys[] = {"", "k", "a longer key with spaces", std::string("z\0\xff\x80", 4)};
    for (const std::string& key : keys) {
        uti_Rotor rotor(Cow(key));
        for (size_t n : {size_t(0), size_t(1), size_t(7), size_t(256), size_t(5000)}) {
            const std::string plain = random.Text(n);  // zero bytes included
            const cow_String cipher = rotor.Encrypt(Cow(plain));
            ASSERT_EQ(static_cast<size_t>(cipher.Length()), n);
            EXPECT_EQ(Bytes(rotor.Encrypt(Cow(plain))), Bytes(cipher));  // same state at every call
            EXPECT_EQ(Bytes(rotor.Decrypt(cipher)), plain);

            std::string inPlace = Bytes(cipher);
            rotor.Decrypt(&inPlace[0], static_cast<int>(n));
            EXPECT_EQ(inPlace, plain);
            if (n >= 256) {
                EXPECT_NE(Bytes(cipher), plain);
            }
        }
    }
    uti_Rotor rotor("key");
    char byte = 'x';
    EXPECT_THROW(rotor.Decrypt(&byte, -1), nex_AssertException);
}

TEST(UtiRotor, KeyWordsTakeBytesAsSignedCharacters)
{
    auto words = [](const char* key) {
        uti_Rotorobj machine(6, key);
        std::vector<int> w;
        for (int i = 0; i < 5; ++i)
            w.push_back(machine.KeyWord(i));
        return w;
    };
    // Without a key, the start values with the second made odd. Each key byte turns every word
    // left by three bits (995 -> 7960, 576 -> 4608, 767 -> 6136, 671 -> 5368, 463 -> 3704), then
    // adds it, xors it, subtracts it, subtracts the word from it, xors its complement (mod 2^16).
    // The byte 0xFF enters as -1 = 0xFFFF.
    EXPECT_EQ(words(""), (std::vector<int>{995, 577, 767, 671, 463}));
    EXPECT_EQ(words("\xff"), (std::vector<int>{7959, 4608 ^ 0xFFFF, 6137, 65535 - 5368, 3704}));
    EXPECT_EQ(words("A"), (std::vector<int>{7960 + 65, 4608 ^ 65, 6136 - 65, 65536 + 65 - 5368, 3704 ^ (0xFFFF & ~65)}));
}

TEST(UtiRotor, FirstTwoRotorsStepLikeAnOdometer)
{
    // Rotor 0 moves by its advance after every byte; rotor 1 by its own advance plus one for
    // each time rotor 0 passed the end: after n bytes that is floor((p0 + n * a0) / 256) times.
    uti_Rotorobj machine(3, "odometer");
    machine.Build();
    ASSERT_TRUE(machine.IsBuilt());
    const int p0 = machine.Position(0), a0 = machine.Advance(0);
    const int p1 = machine.Position(1), a1 = machine.Advance(1);
    EXPECT_EQ(a0 % 2 + a1 % 2, 2);  // odd advances
    const int n = 1000;
    std::string data(n, 'q');
    machine.EncryptBytes(&data[0], n);
    EXPECT_EQ(machine.Position(0), (p0 + n * a0) % 256);
    EXPECT_EQ(machine.Position(1), (p1 + n * a1 + (p0 + n * a0) / 256) % 256);

    // Each rotor is a permutation.
    for (int r = 0; r < 3; ++r) {
        std::vector<int> seen(256, 0);
        for (int v = 0; v < 256; ++v)
            ++seen[static_cast<size_t>(machine.Wiring(r, v))];
        EXPECT_EQ(std::count(seen.begin(), seen.end(), 1), 256) << "rotor " << r;
    }
    EXPECT_THROW(uti_Rotorobj(0, "k"), nex_AssertException);
}

#ifdef ZUL_ROTOR_MODEL
namespace {

// The model's printout for one run: key words, start positions, advances, wiring (hex), the
// processed data (hex) and the end positions, one line each.
std::string RunModel(int rotors, const std::string& key, const std::string& data, bool encrypt)
{
    const std::string command = std::string("\"") + ZUL_TEST_PYTHON + "\" \"" + ZUL_ROTOR_MODEL + "\" " +
                                std::to_string(rotors) + " \"" + Hex(key) + "\" \"" + Hex(data) + "\" " +
                                (encrypt ? "encrypt" : "decrypt");
    return zul_test::CommandOutput(command);
}

// The same printout from the library's machine.
std::string RunMachine(int rotors, const std::string& key, const std::string& data, bool encrypt)
{
    uti_Rotorobj machine(rotors, Cow(key));
    machine.Build();
    std::ostringstream out;
    auto line = [&](const char* tag, int count, auto get) {
        out << tag;
        for (int i = 0; i < count; ++i)
            out << ' ' << (machine.*get)(i);
        out << '\n';
    };
    line("keys", 5, &uti_Rotorobj::KeyWord);
    line("positions", rotors, &uti_Rotorobj::Position);
    line("advances", rotors, &uti_Rotorobj::Advance);
    std::string wiring;
    for (int r = 0; r < rotors; ++r)
        for (int v = 0; v < 256; ++v)
            wiring += static_cast<char>(machine.Wiring(r, v));
    std::string output = data;
    if (encrypt)
        machine.EncryptBytes(&output[0], static_cast<int>(output.size()));
    else
        machine.DecryptBytes(&output[0], static_cast<int>(output.size()));
    out << "wiring " << Hex(wiring) << "\noutput " << Hex(output) << '\n';
    line("final", rotors, &uti_Rotorobj::Position);
    return out.str();
}

}  // namespace

TEST(UtiRotor, MatchesTheReferenceModel)
{
    Random random(4242);
    const struct {
        int rotors;
        std::string key;
        size_t length;
        bool encrypt;
    } cases[] = {
        {1, "", 40, true},          {2, "\xff\x41", 4, true},     {3, "odometer", 3000, true},
        {6, "secret", 700, true},   {6, "secret", 700, false},    {6, std::string("\x80\x7f\0\x01", 4), 300, true},
        {9, "many rotors", 2000, false},
    };
    for (const auto& c : cases) {
        const std::string data = random.Text(c.length);
        const std::string model = RunModel(c.rotors, c.key, data, c.encrypt);
        ASSERT_EQ(model.rfind("keys ", 0), 0u) << "the model did not run";
        const std::string label = "rotors " + std::to_string(c.rotors) + ", key " + Hex(c.key);
        EXPECT_EQ(RunMachine(c.rotors, c.key, data, c.encrypt), model) << label;
        if (c.rotors == 6) {
            uti_Rotor rotor(Cow(c.key));
            const cow_String whole = c.encrypt ? rotor.Encrypt(Cow(data)) : rotor.Decrypt(Cow(data));
            EXPECT_NE(model.find("\noutput " + Hex(Bytes(whole)) + "\n"), std::string::npos) << label;
        }
    }
}
#endif
