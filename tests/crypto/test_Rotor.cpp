// The rotor cipher: round trips, restart per call, key folding worked out by hand, odometer
// stepping of the first two rotors, and (where Python is available) the whole machine against the
// reference model rotor_model.py in this folder.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "crypto_Hex.h"
#include "nex/nex_Exception.h"
#include "uti/uti_Rotor.h"

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
    uti_Rotorobj none(6, "");
    const int start[5] = {995, 577, 767, 671, 463};
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(none.KeyWord(i), start[i]);

    // One byte 0xFF enters as -1 = 0xFFFF. rot3: 995 -> 7960, 576 -> 4608, 767 -> 6136,
    // 671 -> 5368, 463 -> 3704.
    uti_Rotorobj high(6, "\xff");
    EXPECT_EQ(high.KeyWord(0), 7959);           // 7960 + 0xFFFF mod 2^16
    EXPECT_EQ(high.KeyWord(1), 4608 ^ 0xFFFF);  // already odd
    EXPECT_EQ(high.KeyWord(2), 6137);           // 6136 - 0xFFFF mod 2^16
    EXPECT_EQ(high.KeyWord(3), 65535 - 5368);
    EXPECT_EQ(high.KeyWord(4), 3704);           // xor with NOT 0xFFFF = 0

    // 'A' (65): 576 -> 4608 ^ 65 = 4673, odd already; 995 -> 7960 + 65.
    uti_Rotorobj a(6, "A");
    EXPECT_EQ(a.KeyWord(0), 8025);
    EXPECT_EQ(a.KeyWord(1), 4673);
    EXPECT_EQ(a.KeyWord(4), 3704 ^ (0xFFFF & ~65));
}

TEST(UtiRotor, OneKeyCharacterChangesEveryRotor)
{
    uti_Rotorobj x(6, "secret"), y(6, "secreu");
    x.Build();
    y.Build();
    for (int r = 0; r < 6; ++r) {
        int differing = 0;
        for (int v = 0; v < 256; ++v)
            differing += x.Wiring(r, v) != y.Wiring(r, v);
        EXPECT_GT(differing, 0) << "rotor " << r;
    }
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
    EXPECT_EQ(a0 % 2, 1);
    EXPECT_EQ(a1 % 2, 1);
    std::string data(1000, 'q');
    machine.EncryptBytes(&data[0], 1000);
    const int n = 1000;
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

struct ModelRun {
    std::vector<int> keys, positions, advances, final;
    std::string wiring, output;
};

std::vector<int> Numbers(std::istringstream& in)
{
    std::vector<int> v;
    int x;
    while (in >> x)
        v.push_back(x);
    return v;
}

ModelRun RunModel(int rotors, const std::string& key, const std::string& data, bool encrypt)
{
    const std::string command = std::string("\"") + ZUL_TEST_PYTHON + "\" \"" + ZUL_ROTOR_MODEL + "\" " +
                                std::to_string(rotors) + " \"" + Hex(key) + "\" \"" + Hex(data) + "\" " +
                                (encrypt ? "encrypt" : "decrypt");
    FILE* pipe = popen(command.c_str(), "r");
    ModelRun run;
    if (!pipe)
        return run;
    std::string text;
    char buffer[4096];
    size_t got;
    while ((got = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        text.append(buffer, got);
    pclose(pipe);
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        std::istringstream in(line);
        std::string tag;
        in >> tag;
        if (tag == "keys") run.keys = Numbers(in);
        else if (tag == "positions") run.positions = Numbers(in);
        else if (tag == "advances") run.advances = Numbers(in);
        else if (tag == "final") run.final = Numbers(in);
        else if (tag == "wiring") in >> run.wiring;
        else if (tag == "output") in >> run.output;
    }
    return run;
}

}  // namespace

TEST(UtiRotor, MatchesTheReferenceModel)
{
    Random random(4242);
    struct Case {
        int rotors;
        std::string key;
        size_t length;
        bool encrypt;
    };
    const Case cases[] = {
        {1, "", 40, true},          {2, "\xff\x41", 4, true},     {3, "odometer", 3000, true},
        {6, "secret", 700, true},   {6, "secret", 700, false},    {6, std::string("\x80\x7f\0\x01", 4), 300, true},
        {9, "many rotors", 2000, false},
    };
    for (const Case& c : cases) {
        const std::string data = random.Text(c.length);
        const ModelRun model = RunModel(c.rotors, c.key, data, c.encrypt);
        ASSERT_EQ(model.keys.size(), 5u) << "the model did not run";

        uti_Rotorobj machine(c.rotors, Cow(c.key));
        machine.Build();
        std::vector<int> keys, positions, advances, final;
        std::string wiring;
        for (int i = 0; i < 5; ++i)
            keys.push_back(machine.KeyWord(i));
        for (int r = 0; r < c.rotors; ++r) {
            positions.push_back(machine.Position(r));
            advances.push_back(machine.Advance(r));
            for (int v = 0; v < 256; ++v)
                wiring += static_cast<char>(machine.Wiring(r, v));
        }
        std::string output = data;
        if (c.encrypt)
            machine.EncryptBytes(&output[0], static_cast<int>(output.size()));
        else
            machine.DecryptBytes(&output[0], static_cast<int>(output.size()));
        for (int r = 0; r < c.rotors; ++r)
            final.push_back(machine.Position(r));

        const std::string label = "rotors " + std::to_string(c.rotors) + ", key " + Hex(c.key);
        EXPECT_EQ(keys, model.keys) << label;
        EXPECT_EQ(positions, model.positions) << label;
        EXPECT_EQ(advances, model.advances) << label;
        EXPECT_EQ(Hex(wiring), model.wiring) << label;
        EXPECT_EQ(Hex(output), model.output) << label;
        EXPECT_EQ(final, model.final) << label;

        if (c.rotors == 6) {
            uti_Rotor rotor(Cow(c.key));
            const cow_String whole = c.encrypt ? rotor.Encrypt(Cow(data)) : rotor.Decrypt(Cow(data));
            EXPECT_EQ(Hex(Bytes(whole)), model.output) << label;
        }
    }
}
#endif
